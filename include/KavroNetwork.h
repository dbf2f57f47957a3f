// One measurement bus behind one interface module (the controller): its link
// record, its modules in address order and its three mode controllers. The
// transport subclasses open the link in Connect and close it in Disconnect.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "KavroEnums.h"
#include "KavroErrors.h"
#include "KavroModule.h"

namespace KavroLibrary {

struct NetworkConfiguration;
class NetworkBuffered;
class NetworkDifference;
class KavroDynamic;
class KavroModuleAGM;
struct NotificationGate;

class KavroNetwork {
public:
    KavroNetwork(int networkNumber, std::string networkName);
    virtual ~KavroNetwork();
    KavroNetwork(const KavroNetwork&) = delete;
    KavroNetwork& operator=(const KavroNetwork&) = delete;

    virtual void Connect();
    virtual void Disconnect();
    virtual bool DynamicCapable();
    virtual bool Dynamic2Capable();
    virtual bool DynamicExternalSourceCapable();

    std::string Description() const;
    std::string NetworkName() const;
    void setNetworkName(std::string name);
    std::string ControllerID() const;
    eNetworkType NetworkType() const;
    bool IsConnected() const;
    eNetSpeed NetSpeed() const;
    int MaximumAllowableNumberOfModules() const;
    NetworkBuffered* Buffered() const { return buffered_.get(); }
    NetworkDifference* Difference() const { return difference_.get(); }
    KavroDynamic* Dynamic() const { return dynamic_.get(); }

    // Modules, in address order (index = address - 1).
    int ModuleCount() const;
    KavroModule* GetModule(unsigned int index) const;
    KavroModule* GetModuleByID(std::string id) const;
    int GetModuleIndexByID(std::string id) const;
    // Addresses the module with this identity as the next module, identifies
    // it and appends it; throws when the bus refuses it.
    void AddModule(std::string id, std::string name);
    // The addition itself, at the current speed; returns the set-address error.
    eKavroErrors AddModuleInternal(std::string id, std::string name);
    void DeleteModule(int index);
    void DeleteModule(std::string id);
    void ClearModules();

    bool BufferedExternalSourceCapable() const;
    bool BufferedCapable() const;
    int ReadBurstCapableCount() const;
    bool ReadBurstCapable() const;

    // Speeds that the controller and every module support.
    std::vector<eNetSpeed> AvailableSpeeds() const;
    bool SpeedAvailable(eNetSpeed speed) const;
    void setNetSpeed(eNetSpeed speed);

    // Notification: a background thread waits for one module to announce
    // itself (its button pressed) and adds it; see docs/design/network.md for what
    // the application may call meanwhile.
    void BeginNotifying();
    // The body of the notification thread.
    void NotifyProcess(eNetSpeed restoreSpeed);
    bool Notifying() const;
    // Stops the notification and waits until the thread has finished.
    void CancelNotifying();

    // Adopts the modules that took the next free addresses by themselves;
    // returns the number of identify commands sent (the failed last one too).
    unsigned int FindHotswapped();
    // Searches the unaddressed modules in the 32 ping slots and adds them;
    // returns the number of modules added.
    int Ping();
    // Moves every module with a remap index to that position (index =
    // address - 1); the others fill the free positions in their order.
    void ApplyRemap();
    // Clears every module's addressing at every controller speed and empties
    // the module list.
    void ClearTCons();
    // Reads the leading read-burst capable modules in one exchange; the
    // results go to each module's last-readburst record. `count` receives
    // the number of modules read.
    eKavroErrors Readburst(int& count);

    // Settings files: the network's name, speed and modules with their settings.
    void Save(std::string path);
    void Load(std::string path);

    // Capability flags and lists of a freshly created module.
    void setModuleCapabilities(KavroModule* module);
    // Extra offset of an air gauge: none for pressure, else the size band.
    static void agm_init(KavroModuleAGM* module);

    NetworkConfiguration* Configuration() const { return config_.get(); }

protected:
    // Takes a module out of the list without destroying it: a pointer the
    // application still holds stays valid while the network lives. Its
    // address becomes 0, where no module answers.
    void retireModule(KavroModule* module);
    // A copy of the module list, taken under the list's lock.
    std::vector<KavroModule*> moduleSnapshot() const;
    // Appends under the list's lock: the notification thread publishes its
    // module this way while the application may be looking at the list.
    void publishModule(KavroModule* module);
    // Ends a difference, buffered or dynamic run as well as the bus allows,
    // so that a network can be let go mid-run; never throws. A link calls it
    // before it closes.
    void stopRunningMode() noexcept;

    std::unique_ptr<NetworkConfiguration> config_;
    std::unique_ptr<NetworkBuffered> buffered_;
    std::unique_ptr<NetworkDifference> difference_;
    std::unique_ptr<KavroDynamic> dynamic_;
    std::vector<std::unique_ptr<KavroModule>> retiredModules_;

private:
    void waitForNotificationEnd();
    // setNetSpeed's work; the ending notification thread may call it while
    // the operation says so.
    void applyNetSpeed(eNetSpeed speed, bool fromEndingNotification);

    // Guards every change of the module list and every look at it that the
    // application may make while the notification thread runs.
    mutable std::mutex modulesLock_;
    // Shared with the notification thread, which signals through it that it
    // has finished; shared so that it outlives the network if need be.
    std::shared_ptr<NotificationGate> notificationGate_;
};

// Orderings of module lists: by bus address, and by remap index.
bool ModuleAddressOrder(KavroModule* first, KavroModule* second);
bool ModuleReMapOrder(KavroModule* first, KavroModule* second);

}  // namespace KavroLibrary
