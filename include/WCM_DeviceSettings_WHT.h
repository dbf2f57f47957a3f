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

class WCM_DeviceSettings_WHT : public WCM_DeviceSettingsBase {
public:
    explicit WCM_DeviceSettings_WHT(WCM_Device* device);
    ~WCM_DeviceSettings_WHT() override;

    // Getters give 0 when the tool's reply does not name the setting;
    // setters throw std::runtime_error "Unable to set ... " (ending in a
    // blank) when the tool does not confirm the value.
    eWHT_DisplayOrientation DisplayOrientation();
    void setDisplayOrientation(eWHT_DisplayOrientation orientation);
    eWHT_DisplayLayout DisplayLayout();
    void setDisplayLayout(eWHT_DisplayLayout layout);
    // What the large figures of the Large layout show.
    eWHT_DisplayLargeSource DisplayLargeSource();
    void setDisplayLargeSource(eWHT_DisplayLargeSource source);
    // Units the tool shows and sends: Default (millimetres), Inches or Mils.
    eRead3_UOM DisplayUnits();
    void setDisplayUnits(eRead3_UOM units);
    // Decimals shown, 0 to 5.
    int DisplayedResolution();
    void setDisplayedResolution(int decimals);
    eWHT_OperationMode OperationMode();
    void setOperationMode(eWHT_OperationMode mode);
    eWHT_MeasurementMode MeasurementMode();
    void setMeasurementMode(eWHT_MeasurementMode mode);
    // The value a preset sets the reading to, in the tool's units.
    double PresetValue();
    void setPresetValue(double value);
    eWHT_ButtonFunction Button1Function();
    void setButton1Function(eWHT_ButtonFunction function);
    eWHT_ButtonFunction Button2Function();
    void setButton2Function(eWHT_ButtonFunction function);
    eWHT_PowerOffButtonOptions PowerOffButton();
    void setPowerOffButton(eWHT_PowerOffButtonOptions option);
    // Minutes without use before the tool switches itself off; 0 never.
    int OffTime();
    void setOffTime(int minutes);

    WHT_Limits* Limits() const { return limits_.get(); }

    // Used by WHT_Limits and WHT_Limit: the value text after ">>>KEY ", or
    // empty when the reply does not start so; and a set confirmed by that
    // prefix, else `failure` is thrown.
    std::string GetValue(const std::string& key);
    void SetValue(const std::string& key, const std::string& value, const std::string& failure);
    int GetNumber(const std::string& key);

private:
    std::unique_ptr<WHT_Limits> limits_;
};

}  // namespace KavroLibrary
