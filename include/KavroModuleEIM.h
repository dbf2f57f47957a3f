// An encoder input module: an external encoder's signals counted on the bus.
// A third-generation one can pace buffered and dynamic runs as their master.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "KavroModuleEncoder.h"

namespace KavroLibrary {

// An encoder input module, which can pace buffered and dynamic runs.
class KavroModuleEIM : public KavroModuleEncoder {
public:
    // Made by the network when an encoder input module joins it.
    KavroModuleEIM(NetworkConfiguration* config, int address);
    ~KavroModuleEIM() override;

    // How the module counts the encoder's edges.
    eQuadratureMode QuadratureMode() const { return quadratureMode_; }
    // Sets how the module counts the encoder's edges.
    void setQuadratureMode(eQuadratureMode mode) { quadratureMode_ = mode; }
    // How the encoder is wired.
    eEncoderInterfaceType InterfaceType() const { return interfaceType_; }
    // Sets how the encoder is wired.
    void setInterfaceType(eEncoderInterfaceType type) { interfaceType_ = type; }
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
    eQuadratureMode quadratureMode_ = eQuadratureMode::quadX4;
    eEncoderInterfaceType interfaceType_ = eEncoderInterfaceType::Differential;
    eDynamicMasterMode dynamicMasterMode_ = eDynamicMasterMode::Instant;
    std::atomic<bool> dynamicMasterArmed_{false};  // cleared by the run's read thread
};

}  // namespace KavroLibrary
