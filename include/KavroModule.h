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

class KavroModule {
public:
    KavroModule(NetworkConfiguration* config, int address);
    virtual ~KavroModule();
    KavroModule(const KavroModule&) = delete;
    KavroModule& operator=(const KavroModule&) = delete;

    virtual std::vector<eNetSpeed> AvailableSpeeds() const;
    virtual bool BufferedCapable() const;
    virtual bool BufferedMasterCapable() const;
    virtual double CPUOM() const;
    virtual std::string DeviceType() const;
    virtual bool DifferenceModeCapable() const;
    virtual bool DynamicCapable() const;
    virtual bool Dynamic2Capable() const;
    virtual bool DynamicMasterCapable() const;
    virtual bool HotSwapCapable() const;
    virtual std::string GetProbeID();
    virtual int LastReadburst_Error() const;
    virtual int LastReadburst_InCounts() const;
    virtual double LastReadburst_InUnitsOfMeasure() const;
    virtual std::string ModuleID() const;
    virtual std::string ModuleName() const;
    virtual KavroModuleStatus* ModuleStatus() const;
    virtual eModuleType ModuleType() const;
    virtual void setModuleName(std::string name);
    virtual double Offset() const;
    virtual eGeneration KavroGeneration() const;
    virtual bool ReadburstCapable() const;
    virtual int ReadingInCounts();
    virtual double ReadingInUnits();
    virtual int RemapIndex() const;
    virtual void setRemapIndex(int index);
    virtual bool SpeedAvailable(eNetSpeed speed) const;
    virtual double Stroke() const;
    virtual std::string Version() const;
    virtual std::string UnitsOfMeasure() const;
    virtual ModuleDifference* Difference() const;
    // Dynamic-master hooks: an empty text means success, anything else is the
    // reason for refusal, ending in a line feed.
    virtual std::string SetupDynamicMaster(int numberOfModules, int collectionSize, eDynamicRate rate);
    virtual std::string ValidateDynamicMaster();
    virtual void ClearDynamicMaster();
    // Settings: `settings` maps upper-case element names to unescaped texts.
    virtual void LoadXML(std::map<std::string, std::string> settings);
    virtual void SaveXML();

    ModuleBuffered* Buffered() const;

    // Used by the network, the modes and the module classes.
    int Address() const { return address_; }
    void setAddress(int address) { address_ = address; }
    NetworkConfiguration* Configuration() const { return config_; }
    KavroReadType* ReadType() const { return readType_.get(); }
    void setReadType(std::unique_ptr<KavroReadType> readType);
    // Subtracted from every good reading in counts.
    int CountOffset() const { return countOffset_; }
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
