// The tolerance limits of a single-channel hand tool and how the tool
// indicates a reading against them (LEDs, buzzer).
#pragma once

#include <memory>

#include "KavroEnums.h"

namespace KavroLibrary {

class WCM_DeviceSettings_WHT;
class WHT_Limit;

// The tolerance limits of a single-channel hand tool and how it signals them.
class WHT_Limits {
public:
    // Made with the tool's settings; reached through WCM_DeviceSettings_WHT::Limits().
    explicit WHT_Limits(WCM_DeviceSettings_WHT* settings);
    ~WHT_Limits();
    WHT_Limits(const WHT_Limits&) = delete;
    WHT_Limits& operator=(const WHT_Limits&) = delete;

    // The reject limits and the warning limits inside them.
    WHT_Limit* Lower() const { return lower_.get(); }
    // The upper reject limit.
    WHT_Limit* Upper() const { return upper_.get(); }
    // The lower warning limit.
    WHT_Limit* WarnLower() const { return warnLower_.get(); }
    // The upper warning limit.
    WHT_Limit* WarnUpper() const { return warnUpper_.get(); }

    // When the tool signals: never, while the reading is within the limits,
    // or while it is outside them.
    eWHT_LimitStatus Indication();
    // Sets when the tool signals.
    void setIndication(eWHT_LimitStatus indication);
    // Which LED the tool lights.
    eWHT_LimitLED LED();
    // Sets which LED the tool lights.
    void setLED(eWHT_LimitLED led);
    // How fast the tool beeps.
    eWHT_LimitBuzzerRate BuzzerRate();
    // Sets how fast the tool beeps.
    void setBuzzerRate(eWHT_LimitBuzzerRate rate);
    // Where the tool's current reading lies against the enabled limits.
    eWCM_DeviceLimitState State();

private:
    WCM_DeviceSettings_WHT* settings_;  // not owned
    std::unique_ptr<WHT_Limit> lower_;
    std::unique_ptr<WHT_Limit> upper_;
    std::unique_ptr<WHT_Limit> warnLower_;
    std::unique_ptr<WHT_Limit> warnUpper_;
};

}  // namespace KavroLibrary
