#include "KavroModuleLT.h"

#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

KavroModuleLT::KavroModuleLT(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleLT::~KavroModuleLT() = default;

void KavroModuleLT::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    ApplySetting(settings, "FILTER", [this](const std::string& text) { setFilter(eFilter_FromString(text)); });
    ApplySetting(settings, "MEASURING_RATE",
                 [this](const std::string& text) { setMeasuringRate(eMeasuringRate_FromString(text)); });
}

void KavroModuleLT::SaveXML() {
    KavroModule::SaveXML();
    WriteSetting("Filter", eFilter_ToString(filter_));
    WriteSetting("Measuring_Rate", eMeasuringRate_ToString(measuringRate_));
}

}  // namespace KavroLibrary
