#include "KavroModuleDIM.h"

#include "modules/ModuleIdentification.h"
#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

KavroModuleDIM::KavroModuleDIM(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleDIM::~KavroModuleDIM() = default;

void KavroModuleDIM::UpdateInfo() { IdentifyModule(config_, address_, ModuleID(), *readType_); }

void KavroModuleDIM::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    ApplySetting(settings, "READ_MODE",
                 [this](const std::string& text) { setReadMode(eDimReadMode_FromString(text)); });
}

void KavroModuleDIM::SaveXML() {
    KavroModule::SaveXML();
    WriteSetting("Read_Mode", eDimReadMode_ToString(readMode_));
}

}  // namespace KavroLibrary
