// Settings of a multi-channel wireless hand tool (types WHT_M and WMM_A):
// each property is one text command through the concentrator, answered by
// ">>>" + the setting's name + " " + its value.
#pragma once

#include <string>

#include "KavroEnums.h"
#include "WCM_DeviceSettingsBase.h"

namespace KavroLibrary {

// The text from position n to its end (empty when n is past it).
std::string stringend(const std::string& text, std::size_t n);

class WCM_DeviceSettings_WHTM : public WCM_DeviceSettingsBase {
public:
    explicit WCM_DeviceSettings_WHTM(WCM_Device* device);
    ~WCM_DeviceSettings_WHTM() override;

    // Getters give 0 when the reply does not start as expected; setters
    // throw std::runtime_error when the tool does not confirm the value.
    int BluetoothClass();
    eWHT_M_ButtonFunction Button1Function();
    void setButton1Function(eWHT_M_ButtonFunction function);
    eWHT_M_ButtonFunction Button2Function();
    void setButton2Function(eWHT_M_ButtonFunction function);
    eWHT_M_BuzzerFunction BuzzerFunction();
    void setBuzzerFunction(eWHT_M_BuzzerFunction function);
    eWHT_M_DisplayMode DisplayMode();
    void setDisplayMode(eWHT_M_DisplayMode mode);
    eWHT_DisplayOrientation DisplayOrientation();
    void setDisplayOrientation(eWHT_DisplayOrientation orientation);
    eWHT_M_LEDFunction LED1Function();
    void setLED1Function(eWHT_M_LEDFunction function);
    eWHT_M_LEDFunction LED2Function();
    void setLED2Function(eWHT_M_LEDFunction function);
    eWHT_M_LEDFunction LED3Function();
    void setLED3Function(eWHT_M_LEDFunction function);
    // Minutes without use before the tool switches itself off.
    int OffTime();
    void setOffTime(int minutes);
    // Decimals the tool shows for a channel (1 to 12).
    int GetDisplayedResolution(int channel);
    void SetDisplayedResolution(int channel, int value);
    void ResetFactorySettings();
};

}  // namespace KavroLibrary
