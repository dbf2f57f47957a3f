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

// The settings of a multi-channel hand tool.
class WCM_DeviceSettings_WHTM : public WCM_DeviceSettingsBase {
public:
    // Made by its slot for a multi-channel tool.
    explicit WCM_DeviceSettings_WHTM(WCM_Device* device);
    ~WCM_DeviceSettings_WHTM() override;

    // Getters give 0 when the reply does not start as expected; setters
    // throw std::runtime_error when the tool does not confirm the value.
    int BluetoothClass();
    // What the first button does.
    eWHT_M_ButtonFunction Button1Function();
    // Sets what the first button does.
    void setButton1Function(eWHT_M_ButtonFunction function);
    // What the second button does.
    eWHT_M_ButtonFunction Button2Function();
    // Sets what the second button does.
    void setButton2Function(eWHT_M_ButtonFunction function);
    // When the buzzer sounds.
    eWHT_M_BuzzerFunction BuzzerFunction();
    // Sets when the buzzer sounds.
    void setBuzzerFunction(eWHT_M_BuzzerFunction function);
    // What the display shows.
    eWHT_M_DisplayMode DisplayMode();
    // Sets what the display shows.
    void setDisplayMode(eWHT_M_DisplayMode mode);
    // How the display is turned.
    eWHT_DisplayOrientation DisplayOrientation();
    // Turns the display.
    void setDisplayOrientation(eWHT_DisplayOrientation orientation);
    // What the first LED shows.
    eWHT_M_LEDFunction LED1Function();
    // Sets what the first LED shows.
    void setLED1Function(eWHT_M_LEDFunction function);
    // What the second LED shows.
    eWHT_M_LEDFunction LED2Function();
    // Sets what the second LED shows.
    void setLED2Function(eWHT_M_LEDFunction function);
    // What the third LED shows.
    eWHT_M_LEDFunction LED3Function();
    // Sets what the third LED shows.
    void setLED3Function(eWHT_M_LEDFunction function);
    // Minutes without use before the tool switches itself off.
    int OffTime();
    // Sets the minutes without use before the tool switches itself off.
    void setOffTime(int minutes);
    // Decimals the tool shows for a channel (1 to 12).
    int GetDisplayedResolution(int channel);
    // Sets the decimals the tool shows for a channel.
    void SetDisplayedResolution(int channel, int value);
    // Puts every setting of the tool back to its factory value.
    void ResetFactorySettings();
};

}  // namespace KavroLibrary
