// wireless: the hand tools behind each wireless concentrator (WCM): list
// them, read their channels, show and change their settings.
#include <functional>
#include <stdexcept>

#include "NumberArguments.h"
#include "Tool.h"

namespace kavro_tool {

using namespace KavroLibrary;

namespace {

// One named setting of a kind of tool: how to show it and how to set it
// from text (a value's name, or its number).
struct Setting {
    const char* name;
    std::function<std::string(WCM_DeviceSettingsBase&)> get;
    std::function<void(WCM_DeviceSettingsBase&, const std::string&)> set;  // empty: read only
};

// An enumerated setting of settings class S: shown as its value's name,
// set from a name or a number.
template <class S, class E>
Setting enumSetting(const char* name, E (S::*get)(), void (S::*set)(E), std::string (*toText)(E),
                    E (*fromText)(const std::string&)) {
    return {name,
            [get, toText](WCM_DeviceSettingsBase& s) {
                const E value = (static_cast<S&>(s).*get)();
                const std::string text = toText(value);
                return text.empty() ? std::to_string(static_cast<int>(value)) : text;
            },
            [set, fromText, name](WCM_DeviceSettingsBase& s, const std::string& text) {
                E value;
                try {
                    value = fromText(text);
                } catch (const std::runtime_error&) {
                    try {
                        value = static_cast<E>(wholeNumber(text, name));
                    } catch (const std::invalid_argument&) {
                        throw std::invalid_argument(text + " is no value of " + name);
                    }
                }
                (static_cast<S&>(s).*set)(value);
            }};
}

template <class S>
Setting intSetting(const char* name, int (S::*get)(), void (S::*set)(int)) {
    return {name, [get](WCM_DeviceSettingsBase& s) { return std::to_string((static_cast<S&>(s).*get)()); },
            [set, name](WCM_DeviceSettingsBase& s, const std::string& text) {
                (static_cast<S&>(s).*set)(wholeNumber(text, name));
            }};
}

std::vector<Setting> settingsOf(eWCM_DeviceType type) {
    using M = WCM_DeviceSettings_WHTM;
    using T = WCM_DeviceSettings_WHT;
    if (type == eWCM_DeviceType::WHT_M) {
        return {
            {"bluetooth-class",
             [](WCM_DeviceSettingsBase& s) { return std::to_string(static_cast<M&>(s).BluetoothClass()); }, nullptr},
            enumSetting<M>("button1", &M::Button1Function, &M::setButton1Function, eWHT_M_ButtonFunction_ToString,
                           eWHT_M_ButtonFunction_FromString),
            enumSetting<M>("button2", &M::Button2Function, &M::setButton2Function, eWHT_M_ButtonFunction_ToString,
                           eWHT_M_ButtonFunction_FromString),
            enumSetting<M>("buzzer", &M::BuzzerFunction, &M::setBuzzerFunction, eWHT_M_BuzzerFunction_ToString,
                           eWHT_M_BuzzerFunction_FromString),
            enumSetting<M>("display-mode", &M::DisplayMode, &M::setDisplayMode, eWHT_M_DisplayMode_ToString,
                           eWHT_M_DisplayMode_FromString),
            enumSetting<M>("orientation", &M::DisplayOrientation, &M::setDisplayOrientation,
                           eWHT_DisplayOrientation_ToString, eWHT_DisplayOrientation_FromString),
            enumSetting<M>("led1", &M::LED1Function, &M::setLED1Function, eWHT_M_LEDFunction_ToString,
                           eWHT_M_LEDFunction_FromString),
            enumSetting<M>("led2", &M::LED2Function, &M::setLED2Function, eWHT_M_LEDFunction_ToString,
                           eWHT_M_LEDFunction_FromString),
            enumSetting<M>("led3", &M::LED3Function, &M::setLED3Function, eWHT_M_LEDFunction_ToString,
                           eWHT_M_LEDFunction_FromString),
            intSetting<M>("off-time", &M::OffTime, &M::setOffTime),
        };
    }
    if (type == eWCM_DeviceType::WHT) {
        return {
            enumSetting<T>("orientation", &T::DisplayOrientation, &T::setDisplayOrientation,
                           eWHT_DisplayOrientation_ToString, eWHT_DisplayOrientation_FromString),
            enumSetting<T>("layout", &T::DisplayLayout, &T::setDisplayLayout, eWHT_DisplayLayout_ToString,
                           eWHT_DisplayLayout_FromString),
            enumSetting<T>("large-source", &T::DisplayLargeSource, &T::setDisplayLargeSource,
                           eWHT_DisplayLargeSource_ToString, eWHT_DisplayLargeSource_FromString),
            enumSetting<T>("units", &T::DisplayUnits, &T::setDisplayUnits, eRead3_UOM_ToString, eRead3_UOM_FromString),
            intSetting<T>("resolution", &T::DisplayedResolution, &T::setDisplayedResolution),
            enumSetting<T>("operation-mode", &T::OperationMode, &T::setOperationMode, eWHT_OperationMode_ToString,
                           eWHT_OperationMode_FromString),
            enumSetting<T>("measurement-mode", &T::MeasurementMode, &T::setMeasurementMode,
                           eWHT_MeasurementMode_ToString, eWHT_MeasurementMode_FromString),
            {"preset", [](WCM_DeviceSettingsBase& s) { return std::to_string(static_cast<T&>(s).PresetValue()); },
             [](WCM_DeviceSettingsBase& s, const std::string& text) {
                 static_cast<T&>(s).setPresetValue(realNumber(text, "preset"));
             }},
            enumSetting<T>("button1", &T::Button1Function, &T::setButton1Function, eWHT_ButtonFunction_ToString,
                           eWHT_ButtonFunction_FromString),
            enumSetting<T>("button2", &T::Button2Function, &T::setButton2Function, eWHT_ButtonFunction_ToString,
                           eWHT_ButtonFunction_FromString),
            enumSetting<T>("power-off-button", &T::PowerOffButton, &T::setPowerOffButton,
                           eWHT_PowerOffButtonOptions_ToString, eWHT_PowerOffButtonOptions_FromString),
            intSetting<T>("off-time", &T::OffTime, &T::setOffTime),
        };
    }
    return {};
}

struct Found {
    std::size_t network;
    KavroModuleWCM* wcm;
    WCM_Device* device;
};

// The tools asked for: every slot that holds one, or the one slot given.
std::vector<Found> toolsOf(Tool& tool, int slot) {
    std::vector<Found> found;
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        KavroNetwork& network = *tool.networks[i];
        for (int m = 0; m < network.ModuleCount(); ++m) {
            auto* wcm = dynamic_cast<KavroModuleWCM*>(network.GetModule(static_cast<unsigned>(m)));
            if (wcm == nullptr) continue;
            for (int d = 0; d < wcm->Devices()->DeviceCount(); ++d) {
                WCM_Device* device = wcm->Devices()->GetDevice(d);
                if (slot != 0 ? d + 1 != slot : device->DeviceType() == eWCM_DeviceType::None) continue;
                found.push_back({i, wcm, device});
            }
        }
    }
    return found;
}

}  // namespace

int wirelessCommand(Tool& tool, const WirelessRequest& request) {
    tool.findModules();
    const std::vector<Found> found = toolsOf(tool, request.tool);
    if (found.empty()) {
        std::fprintf(stderr, "kavro: no hand tool found (is a wireless concentrator on the bus?)\n");
        return kDeviceError;
    }
    const bool empty = found.front().device->DeviceType() == eWCM_DeviceType::None;
    if (request.tool != 0 && empty &&
        (request.read || request.settings || !request.set.empty() || !request.command.empty())) {
        std::fprintf(stderr, "kavro: slot %d holds no tool\n", request.tool);
        return kDeviceError;
    }
    int failures = 0;

    for (const std::string& assignment : request.set) {
        const std::size_t equals = assignment.find('=');
        if (equals == std::string::npos) throw std::invalid_argument("--set wants NAME=VALUE, not " + assignment);
        const std::string name = assignment.substr(0, equals);
        for (const Found& f : found) {
            bool known = false;
            for (const Setting& setting : settingsOf(f.device->DeviceType())) {
                if (name != setting.name) continue;
                if (!setting.set) throw std::invalid_argument(name + " cannot be set");
                setting.set(*f.device->Settings(), assignment.substr(equals + 1));
                known = true;
            }
            if (!known) {
                throw std::invalid_argument(name + " is no setting of a " +
                                            eWCM_DeviceType_ToString(f.device->DeviceType()) +
                                            " (kavro wireless --settings)");
            }
        }
    }
    if (!request.command.empty()) {
        for (const Found& f : found) {
            std::fprintf(tool.out, "%s\n", f.device->Settings()->SendCommand(request.command, true).c_str());
        }
        return kSuccess;
    }

    if (request.read) {
        RecordWriter writer(tool.out, tool.format);
        for (const Found& f : found) {
            if (f.device->ConnectionStatus() != eWCM_DeviceStatus::Connected) continue;
            const KavroChannelReadings readings = f.device->ReadAllChannels();
            const std::string stamp = timeStamp();
            for (int r = 0; r < readings.ReadingCount(); ++r) {
                const sChannelReading reading = readings[r];
                if (reading.Error != eKavroErrors::NoError) ++failures;
                writer.write({stamp,
                              tool.label(f.network),
                              f.wcm->Address(),
                              f.device->KavroIdentity() + "/" + std::to_string(reading.Channel),
                              reading.Value,
                              eRead3_UOM_ToString(reading.Unit),
                              statusText(reading.Error),
                              {}});
            }
        }
        writer.flush();
    } else if (request.settings) {
        std::vector<std::vector<std::string>> rows;
        for (const Found& f : found) {
            for (const Setting& setting : settingsOf(f.device->DeviceType())) {
                rows.push_back({tool.label(f.network), std::to_string(f.device->Index() + 1), f.device->KavroIdentity(),
                                setting.name, setting.get(*f.device->Settings())});
            }
        }
        emitRows(tool, {"network", "slot", "identity", "setting", "value"}, rows);
    } else {
        std::vector<std::vector<std::string>> rows;
        for (const Found& f : found) {
            WCM_Device& d = *f.device;
            const bool present = d.DeviceType() != eWCM_DeviceType::None;
            rows.push_back({tool.label(f.network), f.wcm->ModuleID(), std::to_string(d.Index() + 1),
                            eWCM_DeviceType_ToString(d.DeviceType()), d.DeviceName(), d.KavroIdentity(),
                            present ? eWCM_DeviceStatus_ToString(d.ConnectionStatus()) : "",
                            present ? std::to_string(d.BatteryStatus()) : "", std::to_string(d.NumChannels())});
        }
        emitRows(tool, {"network", "wcm", "slot", "type", "name", "identity", "status", "battery", "channels"}, rows);
    }
    return failures > 0 ? kDeviceError : kSuccess;
}

}  // namespace kavro_tool
