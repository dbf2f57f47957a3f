// The base class of every module on a network: identity getters, single reads
// in counts and units, the last read-burst result, the status query, the
// difference and buffered companions, the dynamic-master hooks and the
// save/load of the module's settings.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KavroEnums.h"

namespace KavroLibrary {

struct NetworkConfiguration;
class KavroReadType;
class KavroModuleStatus;
class ModuleDifference;
class ModuleBuffered;

// One module on a network: its identity, readings, status, settings and parts in the modes.
class KavroModule {
public:
    // Made by the network when a module joins it; applications get modules from the network.
    KavroModule(NetworkConfiguration* config, int address);
    // Destroyed by its network.
    virtual ~KavroModule();
    KavroModule(const KavroModule&) = delete;
    KavroModule& operator=(const KavroModule&) = delete;

    // The bus speeds this module supports.
    virtual std::vector<eNetSpeed> AvailableSpeeds() const;
    // Whether the module can record in buffered mode.
    virtual bool BufferedCapable() const;
    // Whether the module can pace a buffered run as its master.
    virtual bool BufferedMasterCapable() const;
    // Counts per unit of measure: the scale from counts to units.
    virtual double CPUOM() const;
    // The module's description of itself ("Digital Probe" ...).
    virtual std::string DeviceType() const;
    // Whether the module can take part in difference mode.
    virtual bool DifferenceModeCapable() const;
    // Whether the module can be streamed in dynamic mode.
    virtual bool DynamicCapable() const;
    // Whether the module can be streamed at a custom interval (Dynamic2Custom).
    virtual bool Dynamic2Capable() const;
    // Whether the module can pace a dynamic run as its master.
    virtual bool DynamicMasterCapable() const;
    // Whether the module can be swapped on a running bus and adopted by FindHotswapped().
    virtual bool HotSwapCapable() const;
    // Asks a probe for the identity of its probe head.
    virtual std::string GetProbeID();
    // The error of this module's reading in the last Readburst(); throws when it had none.
    virtual int LastReadburst_Error() const;
    // The count of this module's reading in the last Readburst(); throws when it had none.
    virtual int LastReadburst_InCounts() const;
    // The value in units of this module's reading in the last Readburst(); throws when it had none.
    virtual double LastReadburst_InUnitsOfMeasure() const;
    // The module's 10-character identity.
    virtual std::string ModuleID() const;
    // The name the application gave the module.
    virtual std::string ModuleName() const;
    // The module's status: its last error and status word.
    virtual KavroModuleStatus* ModuleStatus() const;
    // The module's kind.
    virtual eModuleType ModuleType() const;
    // Names the module (kept in settings files).
    virtual void setModuleName(std::string name);
    // Added to every reading in units.
    virtual double Offset() const;
    // The generation of the module's electronics.
    virtual eGeneration KavroGeneration() const;
    // Whether the module can be read by the network's Readburst().
    virtual bool ReadburstCapable() const;
    // Reads the module once, in counts; throws on an error other than out of range.
    virtual int ReadingInCounts();
    // Reads the module once, in its units of measure; throws like ReadingInCounts().
    virtual double ReadingInUnits();
    // The position ApplyRemap() moves the module to (address - 1); -1 for none.
    virtual int RemapIndex() const;
    // Chooses the position ApplyRemap() moves the module to.
    virtual void setRemapIndex(int index);
    // Whether the module supports this bus speed.
    virtual bool SpeedAvailable(eNetSpeed speed) const;
    // The module's measuring range in its units.
    virtual double Stroke() const;
    // The module's firmware version.
    virtual std::string Version() const;
    // The units its readings are in ("mm" ...).
    virtual std::string UnitsOfMeasure() const;
    // The module's part in difference mode.
    virtual ModuleDifference* Difference() const;
    // Dynamic-master hooks: an empty text means success, anything else is the
    // reason for refusal, ending in a line feed.
    virtual std::string SetupDynamicMaster(int numberOfModules, int collectionSize, eDynamicRate rate);
    // Checks the module's set-up as a dynamic master: empty when it is fine.
    virtual std::string ValidateDynamicMaster();
    // Takes the module out of its role as dynamic master.
    virtual void ClearDynamicMaster();
    // Settings: `settings` maps upper-case element names to unescaped texts.
    virtual void LoadXML(std::map<std::string, std::string> settings);
    // Writes the module's settings into the settings file being saved.
    virtual void SaveXML();

    // The module's part in buffered mode.
    ModuleBuffered* Buffered() const;

    // Used by the network, the modes and the module classes.
    int Address() const { return address_; }
    // Library use: the module's new bus address.
    void setAddress(int address) { address_ = address; }
    // Library use: the network's link record.
    NetworkConfiguration* Configuration() const { return config_; }
    // Library use: how the module's counts become units.
    KavroReadType* ReadType() const { return readType_.get(); }
    // Library use: sets how the module's counts become units.
    void setReadType(std::unique_ptr<KavroReadType> readType);
    // Subtracted from every good reading in counts.
    int CountOffset() const { return countOffset_; }
    // Sets the count subtracted from every good reading.
    void setCountOffset(int offset) { countOffset_ = offset; }
    // True for modules whose full-scale count follows a resolution setting.
    bool ResolutionScaled() const { return resolutionScaled_; }
    // Stores the result of the network's read-burst for this module.
    void setLastReadburst(bool valid, int error, int counts, double units);

protected:
    // The module's own elements go after the common ones; both are no-ops
    // while no save runs.
    void WriteSetting(const std::string& name, const std::string& value, bool escape = true) const;

    int address_;
    NetworkConfiguration* config_;  // not owned
    std::unique_ptr<KavroReadType> readType_;
    int countOffset_ = 0;
    std::vector<eNetSpeed> speeds_;
    bool hotSwapCapable_ = false;
    bool readburstCapable_ = false;
    bool bufferedCapable_ = false;
    bool dynamicCapable_ = false;
    bool dynamic2Capable_ = false;
    bool dynamicMasterCapable_ = false;
    bool bufferedMasterCapable_ = false;
    bool getStatusCapable_ = false;
    std::vector<eResolution> resolutions_;
    std::vector<eAveraging> averagings_;
    std::unique_ptr<KavroModuleStatus> status_;
    std::unique_ptr<ModuleDifference> difference_;
    bool resolutionScaled_ = false;
    std::unique_ptr<ModuleBuffered> buffered_;
    std::string name_;
    int remapIndex_ = -1;
    bool lastReadburstValid_ = false;
    int lastReadburstError_ = 255;
    int lastReadburstCounts_ = 0;
    double lastReadburstUnits_ = 0.0;

private:
    // The network sets the capability flags and lists right after construction.
    friend class KavroNetwork;
    friend class KavroModuleStatus;
};

}  // namespace KavroLibrary
