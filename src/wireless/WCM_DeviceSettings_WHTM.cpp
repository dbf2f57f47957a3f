#include "WCM_DeviceSettings_WHTM.h"

#include <stdexcept>

#include "KavroNumberText.h"

namespace KavroLibrary {

namespace {

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// The value after the prefix, without the line end the tool may have left on it.
std::string valueAfter(const std::string& reply, const std::string& prefix) {
    std::string value = stringend(reply, prefix.size());
    while (!value.empty() && (value.back() == '\r' || value.back() == '\n')) value.pop_back();
    return StringTrim(value);
}

}  // namespace

std::string stringend(const std::string& text, std::size_t n) { return n < text.size() ? text.substr(n) : ""; }

WCM_DeviceSettings_WHTM::WCM_DeviceSettings_WHTM(WCM_Device* device) : WCM_DeviceSettingsBase(device) {}

WCM_DeviceSettings_WHTM::~WCM_DeviceSettings_WHTM() = default;

namespace {

// A getter's reply: the value text, or nothing when the prefix is missing.
template <typename Settings>
bool getValue(Settings& settings, const std::string& command, const std::string& prefix, std::string& value) {
    const std::string reply = settings.SendCommand(command, true);
    if (!startsWith(reply, prefix)) return false;
    value = valueAfter(reply, prefix);
    return true;
}

template <typename Settings>
int getNumber(Settings& settings, const std::string& command, const std::string& prefix) {
    std::string value;
    return getValue(settings, command, prefix, value) ? KavroNumberStrToInt(value) : 0;
}

template <typename Settings>
void set(Settings& settings, const std::string& command, const std::string& prefix, const char* failure) {
    if (!startsWith(settings.SendCommand(command, true), prefix)) throw std::runtime_error(failure);
}

}  // namespace

int WCM_DeviceSettings_WHTM::BluetoothClass() { return getNumber(*this, "GetBluetoothClass", ">>>BluetoothClass "); }

eWHT_M_ButtonFunction WCM_DeviceSettings_WHTM::Button1Function() {
    std::string value;
    if (!getValue(*this, "GetButton1Function ", ">>>Button1Function ", value)) return eWHT_M_ButtonFunction{};
    return eWHT_M_ButtonFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setButton1Function(eWHT_M_ButtonFunction function) {
    set(*this, "SetButton1Function " + eWHT_M_ButtonFunction_ToString(function), ">>>Button1Function ",
        "Unable to set button function. ");
}

eWHT_M_ButtonFunction WCM_DeviceSettings_WHTM::Button2Function() {
    std::string value;
    if (!getValue(*this, "GetButton2Function ", ">>>Button2Function ", value)) return eWHT_M_ButtonFunction{};
    return eWHT_M_ButtonFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setButton2Function(eWHT_M_ButtonFunction function) {
    set(*this, "SetButton2Function " + eWHT_M_ButtonFunction_ToString(function), ">>>Button2Function ",
        "Unable to set button function. ");
}

eWHT_M_BuzzerFunction WCM_DeviceSettings_WHTM::BuzzerFunction() {
    std::string value;
    if (!getValue(*this, "GetBuzzer", ">>>Buzzer ", value)) return eWHT_M_BuzzerFunction{};
    return eWHT_M_BuzzerFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setBuzzerFunction(eWHT_M_BuzzerFunction function) {
    set(*this, "SetBuzzer " + eWHT_M_BuzzerFunction_ToString(function), ">>>Buzzer ",
        "Unable to set Buzzer function. ");
}

eWHT_M_DisplayMode WCM_DeviceSettings_WHTM::DisplayMode() {
    return static_cast<eWHT_M_DisplayMode>(getNumber(*this, "GetDisplayMode", ">>>DisplayMode "));
}

void WCM_DeviceSettings_WHTM::setDisplayMode(eWHT_M_DisplayMode mode) {
    set(*this, "SetDisplayMode " + std::to_string(static_cast<int>(mode)), ">>>DisplayMode ",
        "Unable to set display mode. ");
}

eWHT_DisplayOrientation WCM_DeviceSettings_WHTM::DisplayOrientation() {
    return static_cast<eWHT_DisplayOrientation>(getNumber(*this, "GetDisplayOrientation", ">>>DisplayOrientation "));
}

void WCM_DeviceSettings_WHTM::setDisplayOrientation(eWHT_DisplayOrientation orientation) {
    // Tools confirm this one in more than one wording; naming it is enough.
    const std::string reply =
        SendCommand("SetDisplayOrientation " + std::to_string(static_cast<int>(orientation)), true);
    if (reply.find("DisplayOrientation") == std::string::npos) {
        throw std::runtime_error("Unable to set display orientation. ");
    }
}

eWHT_M_LEDFunction WCM_DeviceSettings_WHTM::LED1Function() {
    std::string value;
    if (!getValue(*this, "GetLED1Function", ">>>LED1Function ", value)) return eWHT_M_LEDFunction{};
    return eWHT_M_LEDFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setLED1Function(eWHT_M_LEDFunction function) {
    set(*this, "SetLED1Function " + eWHT_M_LEDFunction_ToString(function), ">>>LED1Function ",
        "Unable to set LED1Function. ");
}

eWHT_M_LEDFunction WCM_DeviceSettings_WHTM::LED2Function() {
    std::string value;
    if (!getValue(*this, "GetLED2Function", ">>>LED2Function ", value)) return eWHT_M_LEDFunction{};
    return eWHT_M_LEDFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setLED2Function(eWHT_M_LEDFunction function) {
    set(*this, "SetLED2Function " + eWHT_M_LEDFunction_ToString(function), ">>>LED2Function ",
        "Unable to set LED2Function. ");
}

eWHT_M_LEDFunction WCM_DeviceSettings_WHTM::LED3Function() {
    std::string value;
    if (!getValue(*this, "GetLED3Function", ">>>LED3Function ", value)) return eWHT_M_LEDFunction{};
    return eWHT_M_LEDFunction_FromString(value);
}

void WCM_DeviceSettings_WHTM::setLED3Function(eWHT_M_LEDFunction function) {
    set(*this, "SetLED3Function " + eWHT_M_LEDFunction_ToString(function), ">>>LED3Function ",
        "Unable to set LED3Function. ");
}

int WCM_DeviceSettings_WHTM::OffTime() { return getNumber(*this, "GetOffTime", ">>>OffTime "); }

void WCM_DeviceSettings_WHTM::setOffTime(int minutes) {
    // The tool may confirm without repeating the value.
    set(*this, "SetOffTime " + std::to_string(minutes), ">>>OffTime", "Unable to set OffTime. ");
}

int WCM_DeviceSettings_WHTM::GetDisplayedResolution(int channel) {
    return getNumber(*this, "GetDisplayedResolution " + std::to_string(channel), ">>>DisplayedResolution ");
}

void WCM_DeviceSettings_WHTM::SetDisplayedResolution(int channel, int value) {
    set(*this, "SetDisplayedResolution " + std::to_string(channel) + " " + std::to_string(value) + "\r\n",
        ">>>DisplayedResolution ", "Unable to set display resolution. ");
}

void WCM_DeviceSettings_WHTM::ResetFactorySettings() {
    set(*this, "AssertFactorySettings", ">>>", "Unable to ResetFactorySettings. ");
}

}  // namespace KavroLibrary
