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

// One measurement bus behind one interface module: connect it, put modules on it, read them, run its modes.
class KavroNetwork {
public:
    // Made through a transport class (KavroNetworkETHIM ...); `networkNumber` is what dynamic callbacks receive.
    KavroNetwork(int networkNumber, std::string networkName);
    // Ends a running mode or notification and closes the link.
    virtual ~KavroNetwork();
    KavroNetwork(const KavroNetwork&) = delete;
    KavroNetwork& operator=(const KavroNetwork&) = delete;

    // Opens the link and identifies the controller; IsConnected() says whether it answered.
    virtual void Connect();
    // Ends a running mode and closes the link.
    virtual void Disconnect();
    // Whether the controller can stream in dynamic mode and every module on the network can take part.
    virtual bool DynamicCapable();
    // Whether the controller can stream at a custom interval (Dynamic2Custom).
    virtual bool Dynamic2Capable();
    // Whether a master module may pace a dynamic run on this controller.
    virtual bool DynamicExternalSourceCapable();

    // The controller's description of itself, or the name a settings file gave.
    std::string Description() const;
    // The network's name.
    std::string NetworkName() const;
    // Renames the network.
    void setNetworkName(std::string name);
    // The controller's identity.
    std::string ControllerID() const;
    // The controller's firmware version in hundredths (150 for 1.50); 0
    // until a connection has asked it.
    int ControllerFirmware() const;
    // The kind of controller that answered.
    eNetworkType NetworkType() const;
    // Whether the link is open and the controller answered.
    bool IsConnected() const;
    // The bus speed now.
    eNetSpeed NetSpeed() const;
    // How many modules the controller's bus may hold.
    int MaximumAllowableNumberOfModules() const;
    // Buffered mode on this network.
    NetworkBuffered* Buffered() const { return buffered_.get(); }
    // Difference mode on this network.
    NetworkDifference* Difference() const { return difference_.get(); }
    // Dynamic streaming on this network.
    KavroDynamic* Dynamic() const { return dynamic_.get(); }

    // Modules, in address order (index = address - 1).
    int ModuleCount() const;
    // The module at `index` (address - 1), or null past the end.
    KavroModule* GetModule(unsigned int index) const;
    // The module with this identity, or null.
    KavroModule* GetModuleByID(std::string id) const;
    // The index of the module with this identity, or -1.
    int GetModuleIndexByID(std::string id) const;
    // Addresses the module with this identity as the next module, identifies
    // it and appends it; throws when the bus refuses it.
    void AddModule(std::string id, std::string name);
    // The addition itself, at the current speed; returns the set-address error.
    eKavroErrors AddModuleInternal(std::string id, std::string name);
    // Takes the module at `index` off the network; a pointer to it stays valid while the network lives.
    void DeleteModule(int index);
    // Takes the module with this identity off the network.
    void DeleteModule(std::string id);
    // Takes every module off the network.
    void ClearModules();

    // Whether a master module may pace a buffered run on this network.
    bool BufferedExternalSourceCapable() const;
    // Whether the network can run buffered mode.
    bool BufferedCapable() const;
    // How many leading modules Readburst() reads.
    int ReadBurstCapableCount() const;
    // Whether Readburst() reads any module.
    bool ReadBurstCapable() const;

    // Speeds that the controller and every module support.
    std::vector<eNetSpeed> AvailableSpeeds() const;
    // Whether the controller and every module support this speed.
    bool SpeedAvailable(eNetSpeed speed) const;
    // Sets the bus speed of the controller and every module; throws when one cannot.
    void setNetSpeed(eNetSpeed speed);

    // Notification: a background thread waits for one module to announce
    // itself (its button pressed) and adds it; see docs/design/network.md for what
    // the application may call meanwhile.
    void BeginNotifying();
    // The body of the notification thread.
    void NotifyProcess(eNetSpeed restoreSpeed);
    // Whether a notification is running.
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
    // Sets the network up again from a settings file: clears it and adds the file's modules.
    void Load(std::string path);

    // Capability flags and lists of a freshly created module.
    void setModuleCapabilities(KavroModule* module);
    // Extra offset of an air gauge: none for pressure, else the size band.
    static void agm_init(KavroModuleAGM* module);

    // Library use: the link record.
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
// Orders modules by remap index.
bool ModuleReMapOrder(KavroModule* first, KavroModule* second);

}  // namespace KavroLibrary
