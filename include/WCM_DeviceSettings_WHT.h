// Settings of a single-channel wireless hand tool (type WHT: callipers,
// micrometers, dial gauges): display, units and resolution, measuring and
// output modes, buttons, power-off and tolerance limits. Each property is one
// line through the concentrator: "GET " + key, or "SET " + key + " " + value,
// both answered by ">>>" + key + " " + the value in force. Values travel as
// decimal numbers with '.' as the decimal point; enumerations as their
// numbers. The command set is in docs/design/protocol.md.
#pragma once

#include <memory>
#include <string>

#include "KavroEnums.h"
#include "WCM_DeviceSettingsBase.h"

namespace KavroLibrary {

class WHT_Limits;

// The settings of a single-channel hand tool.
class WCM_DeviceSettings_WHT : public WCM_DeviceSettingsBase {
public:
    // Made by its slot for a single-channel tool.
    explicit WCM_DeviceSettings_WHT(WCM_Device* device);
    ~WCM_DeviceSettings_WHT() override;

    // Getters give 0 when the tool's reply does not name the setting;
    // setters throw std::runtime_error "Unable to set ... " (ending in a
    // blank) when the tool does not confirm the value.
    eWHT_DisplayOrientation DisplayOrientation();
    // Turns the tool's display.
    void setDisplayOrientation(eWHT_DisplayOrientation orientation);
    // The layout of the tool's display.
    eWHT_DisplayLayout DisplayLayout();
    // Sets the layout of the tool's display.
    void setDisplayLayout(eWHT_DisplayLayout layout);
    // What the large figures of the Large layout show.
    eWHT_DisplayLargeSource DisplayLargeSource();
    // Chooses what the large figures show.
    void setDisplayLargeSource(eWHT_DisplayLargeSource source);
    // Units the tool shows and sends: Default (millimetres), Inches or Mils.
    eRead3_UOM DisplayUnits();
    // Chooses the units the tool shows and sends.
    void setDisplayUnits(eRead3_UOM units);
    // Decimals shown, 0 to 5.
    int DisplayedResolution();
    // Sets the decimals shown.
    void setDisplayedResolution(int decimals);
    // What the tool measures.
    eWHT_OperationMode OperationMode();
    // Chooses what the tool measures.
    void setOperationMode(eWHT_OperationMode mode);
    // Whether the tool reads absolute, from zero or from its preset.
    eWHT_MeasurementMode MeasurementMode();
    // Chooses whether the tool reads absolute, from zero or from its preset.
    void setMeasurementMode(eWHT_MeasurementMode mode);
    // The value a preset sets the reading to, in the tool's units.
    double PresetValue();
    // Sets the value a preset sets the reading to.
    void setPresetValue(double value);
    // What the first button does.
    eWHT_ButtonFunction Button1Function();
    // Sets what the first button does.
    void setButton1Function(eWHT_ButtonFunction function);
    // What the second button does.
    eWHT_ButtonFunction Button2Function();
    // Sets what the second button does.
    void setButton2Function(eWHT_ButtonFunction function);
    // What the power-off button does.
    eWHT_PowerOffButtonOptions PowerOffButton();
    // Sets what the power-off button does.
    void setPowerOffButton(eWHT_PowerOffButtonOptions option);
    // Minutes without use before the tool switches itself off; 0 never.
    int OffTime();
    // Sets the minutes without use before the tool switches itself off.
    void setOffTime(int minutes);

    // The tool's tolerance limits.
    WHT_Limits* Limits() const { return limits_.get(); }

    // Used by WHT_Limits and WHT_Limit: the value text after ">>>KEY ", or
    // empty when the reply does not start so; and a set confirmed by that
    // prefix, else `failure` is thrown.
    std::string GetValue(const std::string& key);
    // Sets a value and checks the tool confirms it; throws `failure` otherwise.
    void SetValue(const std::string& key, const std::string& value, const std::string& failure);
    // GetValue() as a whole number; 0 when there is none.
    int GetNumber(const std::string& key);

private:
    std::unique_ptr<WHT_Limits> limits_;
};

}  // namespace KavroLibrary
