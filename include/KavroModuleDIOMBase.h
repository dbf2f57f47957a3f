// What both generations of digital input/output module share: eight pins,
// each an input or an output, the input debounce and the output drive.
#pragma once

#include <array>
#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

// What both digital input/output modules share: eight pins, debounce and output kind.
class KavroModuleDIOMBase : public KavroModule {
public:
    // Pins of a DIOM.
    static constexpr int kPinCount = 8;

    // Made with the module of one of the derived classes.
    KavroModuleDIOMBase(NetworkConfiguration* config, int address);
    ~KavroModuleDIOMBase() override;

    // Number of pins (8).
    int PinCount() const { return kPinCount; }
    // Pins are numbered from 1; another number throws.
    eDiomIoPinConfig PinConfig(int pin) const;
    // Makes a pin an input or an output.
    void setPinConfig(int pin, eDiomIoPinConfig config);
    // A pin's level.
    eDiomIoPinState PinState(int pin) const;
    // Only an output pin takes a state.
    void setPinState(int pin, eDiomIoPinState state);
    // How long an input must hold a level.
    eDiomInputDebounceTime DebounceTime() const { return debounceTime_; }
    // Sets how long an input must hold a level.
    void setDebounceTime(eDiomInputDebounceTime time) { debounceTime_ = time; }
    // The electrical kind of the outputs.
    eDIOOutputMode OutputMode() const { return outputMode_; }
    // Sets the electrical kind of the outputs.
    void setOutputMode(eDIOOutputMode mode) { outputMode_ = mode; }

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    std::size_t pinIndex(int pin) const;

    std::array<eDiomIoPinConfig, kPinCount> pinConfigs_;
    std::array<eDiomIoPinState, kPinCount> pinStates_;
    eDiomInputDebounceTime debounceTime_ = eDiomInputDebounceTime::None;
    eDIOOutputMode outputMode_ = eDIOOutputMode::NPN;
};

}  // namespace KavroLibrary
