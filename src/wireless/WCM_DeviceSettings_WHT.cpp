#include "WCM_DeviceSettings_WHT.h"

#include <stdexcept>

#include "KavroNumberText.h"
#include "WCM_DeviceSettings_WHTM.h"
#include "WHT_Limits.h"

namespace KavroLibrary {

namespace {

std::string number(int value) { return std::to_string(value); }

template <typename Enum>
std::string number(Enum value) {
    return std::to_string(static_cast<int>(value));
}

}  // namespace

WCM_DeviceSettings_WHT::WCM_DeviceSettings_WHT(WCM_Device* device)
    : WCM_DeviceSettingsBase(device), limits_(std::make_unique<WHT_Limits>(this)) {}

WCM_DeviceSettings_WHT::~WCM_DeviceSettings_WHT() = default;

std::string WCM_DeviceSettings_WHT::GetValue(const std::string& key) {
    const std::string prefix = ">>>" + key + " ";
    const std::string reply = SendCommand("GET " + key, true);
    if (reply.compare(0, prefix.size(), prefix) != 0) return "";
    std::string value = stringend(reply, prefix.size());
    while (!value.empty() && (value.back() == '\r' || value.back() == '\n')) value.pop_back();
    return StringTrim(value);
}

void WCM_DeviceSettings_WHT::SetValue(const std::string& key, const std::string& value, const std::string& failure) {
    const std::string prefix = ">>>" + key + " ";
    if (SendCommand("SET " + key + " " + value, true).compare(0, prefix.size(), prefix) != 0) {
        throw std::runtime_error(failure);
    }
}

int WCM_DeviceSettings_WHT::GetNumber(const std::string& key) {
    const std::string value = GetValue(key);
    return value.empty() ? 0 : KavroNumberStrToInt(value);
}

eWHT_DisplayOrientation WCM_DeviceSettings_WHT::DisplayOrientation() {
    return static_cast<eWHT_DisplayOrientation>(GetNumber("ORIENTATION"));
}

void WCM_DeviceSettings_WHT::setDisplayOrientation(eWHT_DisplayOrientation orientation) {
    SetValue("ORIENTATION", number(orientation), "Unable to set display orientation. ");
}

eWHT_DisplayLayout WCM_DeviceSettings_WHT::DisplayLayout() {
    return static_cast<eWHT_DisplayLayout>(GetNumber("LAYOUT"));
}

void WCM_DeviceSettings_WHT::setDisplayLayout(eWHT_DisplayLayout layout) {
    SetValue("LAYOUT", number(layout), "Unable to set display layout. ");
}

eWHT_DisplayLargeSource WCM_DeviceSettings_WHT::DisplayLargeSource() {
    return static_cast<eWHT_DisplayLargeSource>(GetNumber("LARGESOURCE"));
}

void WCM_DeviceSettings_WHT::setDisplayLargeSource(eWHT_DisplayLargeSource source) {
    SetValue("LARGESOURCE", number(source), "Unable to set display large source. ");
}

eRead3_UOM WCM_DeviceSettings_WHT::DisplayUnits() { return static_cast<eRead3_UOM>(GetNumber("UNITS")); }

void WCM_DeviceSettings_WHT::setDisplayUnits(eRead3_UOM units) {
    SetValue("UNITS", number(units), "Unable to set display units. ");
}

int WCM_DeviceSettings_WHT::DisplayedResolution() { return GetNumber("RESOLUTION"); }

void WCM_DeviceSettings_WHT::setDisplayedResolution(int decimals) {
    SetValue("RESOLUTION", number(decimals), "Unable to set display resolution. ");
}

eWHT_OperationMode WCM_DeviceSettings_WHT::OperationMode() {
    return static_cast<eWHT_OperationMode>(GetNumber("OPMODE"));
}

void WCM_DeviceSettings_WHT::setOperationMode(eWHT_OperationMode mode) {
    SetValue("OPMODE", number(mode), "Unable to set operation mode. ");
}

eWHT_MeasurementMode WCM_DeviceSettings_WHT::MeasurementMode() {
    return static_cast<eWHT_MeasurementMode>(GetNumber("MEASMODE"));
}

void WCM_DeviceSettings_WHT::setMeasurementMode(eWHT_MeasurementMode mode) {
    SetValue("MEASMODE", number(mode), "Unable to set measurement mode. ");
}

double WCM_DeviceSettings_WHT::PresetValue() {
    const std::string value = GetValue("PRESET");
    return value.empty() ? 0.0 : KavroNumberStrToDouble(value);
}

void WCM_DeviceSettings_WHT::setPresetValue(double value) {
    SetValue("PRESET", KavroNumberDoubleToStr(value, 10), "Unable to set preset value. ");
}

eWHT_ButtonFunction WCM_DeviceSettings_WHT::Button1Function() {
    return static_cast<eWHT_ButtonFunction>(GetNumber("BUTTON1"));
}

void WCM_DeviceSettings_WHT::setButton1Function(eWHT_ButtonFunction function) {
    SetValue("BUTTON1", number(function), "Unable to set button function. ");
}

eWHT_ButtonFunction WCM_DeviceSettings_WHT::Button2Function() {
    return static_cast<eWHT_ButtonFunction>(GetNumber("BUTTON2"));
}

void WCM_DeviceSettings_WHT::setButton2Function(eWHT_ButtonFunction function) {
    SetValue("BUTTON2", number(function), "Unable to set button function. ");
}

eWHT_PowerOffButtonOptions WCM_DeviceSettings_WHT::PowerOffButton() {
    return static_cast<eWHT_PowerOffButtonOptions>(GetNumber("POWEROFF"));
}

void WCM_DeviceSettings_WHT::setPowerOffButton(eWHT_PowerOffButtonOptions option) {
    SetValue("POWEROFF", number(option), "Unable to set power off button. ");
}

int WCM_DeviceSettings_WHT::OffTime() { return GetNumber("OFFTIME"); }

void WCM_DeviceSettings_WHT::setOffTime(int minutes) {
    SetValue("OFFTIME", number(minutes), "Unable to set OffTime. ");
}

}  // namespace KavroLibrary
