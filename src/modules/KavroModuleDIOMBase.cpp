#include "KavroModuleDIOMBase.h"

#include <stdexcept>

#include "KavroNumberText.h"
#include "modules/ModuleSettingText.h"

namespace KavroLibrary {

namespace {

std::string pinElement(int pin, const char* what) { return "Pin_" + std::to_string(pin) + "_" + what; }

}  // namespace

KavroModuleDIOMBase::KavroModuleDIOMBase(NetworkConfiguration* config, int address) : KavroModule(config, address) {
    // Every pin starts as an input, so nothing is driven until asked for.
    pinConfigs_.fill(eDiomIoPinConfig::input);
    pinStates_.fill(eDiomIoPinState::low);
}

KavroModuleDIOMBase::~KavroModuleDIOMBase() = default;

std::size_t KavroModuleDIOMBase::pinIndex(int pin) const {
    if (pin < 1 || pin > kPinCount) throw std::runtime_error("Invalid pin number.");
    return static_cast<std::size_t>(pin - 1);
}

eDiomIoPinConfig KavroModuleDIOMBase::PinConfig(int pin) const { return pinConfigs_[pinIndex(pin)]; }

void KavroModuleDIOMBase::setPinConfig(int pin, eDiomIoPinConfig config) { pinConfigs_[pinIndex(pin)] = config; }

eDiomIoPinState KavroModuleDIOMBase::PinState(int pin) const { return pinStates_[pinIndex(pin)]; }

void KavroModuleDIOMBase::setPinState(int pin, eDiomIoPinState state) {
    const std::size_t index = pinIndex(pin);
    if (pinConfigs_[index] != eDiomIoPinConfig::output) throw std::runtime_error("Pin is not an output.");
    pinStates_[index] = state;
}

void KavroModuleDIOMBase::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    // All pin directions first: a state is only taken by an output.
    for (int pin = 1; pin <= kPinCount; ++pin) {
        ApplySetting(settings, StringToUpper(pinElement(pin, "Config")),
                     [this, pin](const std::string& text) { setPinConfig(pin, eDiomIoPinConfig_FromString(text)); });
    }
    for (int pin = 1; pin <= kPinCount; ++pin) {
        ApplySetting(settings, StringToUpper(pinElement(pin, "State")),
                     [this, pin](const std::string& text) { setPinState(pin, eDiomIoPinState_FromString(text)); });
    }
    ApplySetting(settings, "DEBOUNCE_TIME",
                 [this](const std::string& text) { setDebounceTime(eDiomInputDebounceTime_FromString(text)); });
    ApplySetting(settings, "OUTPUT_MODE",
                 [this](const std::string& text) { setOutputMode(eDIOOutputMode_FromString(text)); });
}

void KavroModuleDIOMBase::SaveXML() {
    KavroModule::SaveXML();
    for (int pin = 1; pin <= kPinCount; ++pin) {
        WriteSetting(pinElement(pin, "Config"), eDiomIoPinConfig_ToString(PinConfig(pin)));
        WriteSetting(pinElement(pin, "State"), eDiomIoPinState_ToString(PinState(pin)));
    }
    WriteSetting("Debounce_Time", eDiomInputDebounceTime_ToString(debounceTime_));
    WriteSetting("Output_Mode", eDIOOutputMode_ToString(outputMode_));
}

}  // namespace KavroLibrary
