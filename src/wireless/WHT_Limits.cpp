#include "WHT_Limits.h"

#include "WCM_DeviceSettings_WHT.h"
#include "WHT_Limit.h"

namespace KavroLibrary {

WHT_Limits::WHT_Limits(WCM_DeviceSettings_WHT* settings)
    : settings_(settings),
      lower_(std::make_unique<WHT_Limit>(settings, "LOWER")),
      upper_(std::make_unique<WHT_Limit>(settings, "UPPER")),
      warnLower_(std::make_unique<WHT_Limit>(settings, "WARNLOWER")),
      warnUpper_(std::make_unique<WHT_Limit>(settings, "WARNUPPER")) {}

WHT_Limits::~WHT_Limits() = default;

eWHT_LimitStatus WHT_Limits::Indication() { return static_cast<eWHT_LimitStatus>(settings_->GetNumber("LIMITIND")); }

void WHT_Limits::setIndication(eWHT_LimitStatus indication) {
    settings_->SetValue("LIMITIND", std::to_string(static_cast<int>(indication)), "Unable to set limit indication. ");
}

eWHT_LimitLED WHT_Limits::LED() { return static_cast<eWHT_LimitLED>(settings_->GetNumber("LIMITLED")); }

void WHT_Limits::setLED(eWHT_LimitLED led) {
    settings_->SetValue("LIMITLED", std::to_string(static_cast<int>(led)), "Unable to set limit LED. ");
}

eWHT_LimitBuzzerRate WHT_Limits::BuzzerRate() {
    return static_cast<eWHT_LimitBuzzerRate>(settings_->GetNumber("LIMITBUZZER"));
}

void WHT_Limits::setBuzzerRate(eWHT_LimitBuzzerRate rate) {
    settings_->SetValue("LIMITBUZZER", std::to_string(static_cast<int>(rate)), "Unable to set limit buzzer rate. ");
}

eWCM_DeviceLimitState WHT_Limits::State() {
    return static_cast<eWCM_DeviceLimitState>(settings_->GetNumber("LIMITSTATE"));
}

}  // namespace KavroLibrary
