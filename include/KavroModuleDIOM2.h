// The second digital input/output module. A third-generation one can pace
// buffered and dynamic runs as their master.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "KavroModuleDIOMBase.h"

namespace KavroLibrary {

// The second digital input/output module, which can pace buffered and dynamic runs.
class KavroModuleDIOM2 : public KavroModuleDIOMBase {
public:
    // Made by the network when such a module joins it.
    KavroModuleDIOM2(NetworkConfiguration* config, int address);
    ~KavroModuleDIOM2() override;

    // When the master starts pacing a dynamic run.
    eDynamicMasterMode DynamicMasterMode() const { return dynamicMasterMode_; }
    // Chooses when the master starts pacing a dynamic run.
    void setDynamicMasterMode(eDynamicMasterMode mode) { dynamicMasterMode_ = mode; }
    // True between a successful SetupDynamicMaster and ClearDynamicMaster.
    bool DynamicMasterArmed() const { return dynamicMasterArmed_; }

    std::string SetupDynamicMaster(int numberOfModules, int collectionSize, eDynamicRate rate) override;
    std::string ValidateDynamicMaster() override;
    void ClearDynamicMaster() override;

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eDynamicMasterMode dynamicMasterMode_ = eDynamicMasterMode::Instant;
    std::atomic<bool> dynamicMasterArmed_{false};  // cleared by the run's read thread
};

}  // namespace KavroLibrary
