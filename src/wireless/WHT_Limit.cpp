#include "WHT_Limit.h"

#include "KavroNumberText.h"
#include "WCM_DeviceSettings_WHT.h"

namespace KavroLibrary {

WHT_Limit::WHT_Limit(WCM_DeviceSettings_WHT* settings, std::string name)
    : settings_(settings), name_(std::move(name)) {}

double WHT_Limit::Value() {
    const std::string value = settings_->GetValue("LIMIT " + name_);
    return value.empty() ? 0.0 : KavroNumberStrToDouble(value);
}

void WHT_Limit::setValue(double value) {
    settings_->SetValue("LIMIT " + name_, KavroNumberDoubleToStr(value, 10), "Unable to set limit value. ");
}

bool WHT_Limit::Enabled() { return settings_->GetNumber("LIMITON " + name_) != 0; }

void WHT_Limit::setEnabled(bool enabled) {
    settings_->SetValue("LIMITON " + name_, enabled ? "1" : "0", "Unable to enable limit. ");
}

}  // namespace KavroLibrary
