// What both generations of digital input/output module share: eight pins,
// each an input or an output, the input debounce and the output drive.
#pragma once

#include <array>
#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleDIOMBase : public KavroModule {
public:
    static constexpr int kPinCount = 8;

    KavroModuleDIOMBase(NetworkConfiguration* config, int address);
    ~KavroModuleDIOMBase() override;

    int PinCount() const { return kPinCount; }
    // Pins are numbered from 1; another number throws.
    eDiomIoPinConfig PinConfig(int pin) const;
    void setPinConfig(int pin, eDiomIoPinConfig config);
    eDiomIoPinState PinState(int pin) const;
    // Only an output pin takes a state.
    void setPinState(int pin, eDiomIoPinState state);
    eDiomInputDebounceTime DebounceTime() const { return debounceTime_; }
    void setDebounceTime(eDiomInputDebounceTime time) { debounceTime_ = time; }
    eDIOOutputMode OutputMode() const { return outputMode_; }
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
