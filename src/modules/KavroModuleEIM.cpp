#include "KavroModuleEIM.h"

#include "modules/DynamicMasterSetup.h"
#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

KavroModuleEIM::KavroModuleEIM(NetworkConfiguration* config, int address) : KavroModuleEncoder(config, address) {}

KavroModuleEIM::~KavroModuleEIM() = default;

// Set-mode commands make the module the run's master (docs/design/protocol.md 1.2).
std::string KavroModuleEIM::SetupDynamicMaster(int numberOfModules, int collectionSize, eDynamicRate rate) {
    if (!DynamicMasterCapable()) return KavroModule::SetupDynamicMaster(numberOfModules, collectionSize, rate);
    return armDynamicMaster(*this, dynamicMasterMode_, numberOfModules, rate, ValidateDynamicMaster(),
                            dynamicMasterArmed_);
}

std::string KavroModuleEIM::ValidateDynamicMaster() {
    if (!DynamicMasterCapable()) return KavroModule::ValidateDynamicMaster();
    // Pacing on the reference mark needs an action at the mark.
    const bool pacedByMark = dynamicMasterMode_ == eDynamicMasterMode::Refaction_Reset ||
                             dynamicMasterMode_ == eDynamicMasterMode::Refaction_Preset;
    if (pacedByMark && refAction_ == eRefAction::None) {
        return "Dynamic master mode " + eDynamicMasterMode_ToString(dynamicMasterMode_) +
               " needs a reference mark action.\n";
    }
    return "";
}

void KavroModuleEIM::ClearDynamicMaster() { disarmDynamicMaster(*this, dynamicMasterArmed_); }

void KavroModuleEIM::LoadXML(std::map<std::string, std::string> settings) {
    KavroModuleEncoder::LoadXML(settings);
    ApplySetting(settings, "QUADRATURE_MODE",
                 [this](const std::string& text) { setQuadratureMode(eQuadratureMode_FromString(text)); });
    ApplySetting(settings, "INTERFACE_TYPE",
                 [this](const std::string& text) { setInterfaceType(eEncoderInterfaceType_FromString(text)); });
    ApplySetting(settings, "DYNAMIC_MASTER_MODE",
                 [this](const std::string& text) { setDynamicMasterMode(eDynamicMasterMode_FromString(text)); });
}

void KavroModuleEIM::SaveXML() {
    KavroModuleEncoder::SaveXML();
    WriteSetting("Quadrature_Mode", eQuadratureMode_ToString(quadratureMode_));
    WriteSetting("Interface_Type", eEncoderInterfaceType_ToString(interfaceType_));
    WriteSetting("Dynamic_Master_Mode", eDynamicMasterMode_ToString(dynamicMasterMode_));
}

}  // namespace KavroLibrary
