#include "KavroModuleAGM.h"

#include <stdexcept>

#include "KavroNetwork.h"
#include "KavroNumberText.h"
#include "modules/ModuleIdentification.h"
#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

KavroModuleAGM::KavroModuleAGM(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleAGM::~KavroModuleAGM() = default;

void KavroModuleAGM::setOutputReadingAsPressure(bool pressure) {
    outputReadingAsPressure_ = pressure;
    KavroNetwork::agm_init(this);
}

void KavroModuleAGM::setMasterMinReadingInUOM(double reading) {
    masterMinReadingInUOM_ = reading;
    KavroNetwork::agm_init(this);
}

void KavroModuleAGM::setMasterMaxReadingInUOM(double reading) {
    masterMaxReadingInUOM_ = reading;
    KavroNetwork::agm_init(this);
}

void KavroModuleAGM::setEndBandSizeMicrons(double microns) {
    if (microns < 0.0) throw std::runtime_error("End band size cannot be negative.");
    endBandSizeMicrons_ = microns;
    KavroNetwork::agm_init(this);
}

void KavroModuleAGM::UpdateInfo() {
    IdentifyModule(config_, address_, ModuleID(), *readType_);
    KavroNetwork::agm_init(this);
}

void KavroModuleAGM::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    ApplySetting(settings, "OUTPUT_READING_AS_PRESSURE",
                 [this](const std::string& text) { setOutputReadingAsPressure(BoolFromText(text)); });
    ApplySetting(settings, "MASTER_MIN_READING",
                 [this](const std::string& text) { setMasterMinReadingInUOM(KavroNumberStrToDouble(text)); });
    ApplySetting(settings, "MASTER_MAX_READING",
                 [this](const std::string& text) { setMasterMaxReadingInUOM(KavroNumberStrToDouble(text)); });
    ApplySetting(settings, "END_BAND_SIZE_MICRONS",
                 [this](const std::string& text) { setEndBandSizeMicrons(KavroNumberStrToDouble(text)); });
    ApplySetting(settings, "MEASUREMENT_MODE",
                 [this](const std::string& text) { setMeasurementMode(eAGM_MeasurementMode_FromString(text)); });
}

void KavroModuleAGM::SaveXML() {
    KavroModule::SaveXML();
    WriteSetting("Output_Reading_As_Pressure", BoolText(outputReadingAsPressure_));
    WriteSetting("Master_Min_Reading", FixedText(masterMinReadingInUOM_), false);
    WriteSetting("Master_Max_Reading", FixedText(masterMaxReadingInUOM_), false);
    WriteSetting("End_Band_Size_Microns", FixedText(endBandSizeMicrons_), false);
    WriteSetting("Measurement_Mode", eAGM_MeasurementMode_ToString(measurementMode_));
}

}  // namespace KavroLibrary
