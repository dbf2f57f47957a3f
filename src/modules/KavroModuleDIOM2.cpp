#include "KavroModuleDIOM2.h"

#include "modules/DynamicMasterSetup.h"
#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

KavroModuleDIOM2::KavroModuleDIOM2(NetworkConfiguration* config, int address) : KavroModuleDIOMBase(config, address) {}

KavroModuleDIOM2::~KavroModuleDIOM2() = default;

// Set-mode commands make the module the run's master (docs/design/protocol.md 1.2).
std::string KavroModuleDIOM2::SetupDynamicMaster(int numberOfModules, int collectionSize, eDynamicRate rate) {
    if (!DynamicMasterCapable()) return KavroModule::SetupDynamicMaster(numberOfModules, collectionSize, rate);
    return armDynamicMaster(*this, dynamicMasterMode_, numberOfModules, rate, ValidateDynamicMaster(),
                            dynamicMasterArmed_);
}

std::string KavroModuleDIOM2::ValidateDynamicMaster() {
    if (!DynamicMasterCapable()) return KavroModule::ValidateDynamicMaster();
    // Pacing on a reference mark needs an encoder.
    if (dynamicMasterMode_ == eDynamicMasterMode::Refaction_Reset ||
        dynamicMasterMode_ == eDynamicMasterMode::Refaction_Preset) {
        return "Dynamic master mode " + eDynamicMasterMode_ToString(dynamicMasterMode_) +
               " is for encoder input modules.\n";
    }
    return "";
}

void KavroModuleDIOM2::ClearDynamicMaster() { disarmDynamicMaster(*this, dynamicMasterArmed_); }

void KavroModuleDIOM2::LoadXML(std::map<std::string, std::string> settings) {
    KavroModuleDIOMBase::LoadXML(settings);
    ApplySetting(settings, "DYNAMIC_MASTER_MODE",
                 [this](const std::string& text) { setDynamicMasterMode(eDynamicMasterMode_FromString(text)); });
}

void KavroModuleDIOM2::SaveXML() {
    KavroModuleDIOMBase::SaveXML();
    WriteSetting("Dynamic_Master_Mode", eDynamicMasterMode_ToString(dynamicMasterMode_));
}

}  // namespace KavroLibrary
