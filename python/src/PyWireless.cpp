// The wireless concentrator's hand tools: the slots, each tool's channels,
// and its settings as the most derived Python class of its kind. All of them
// belong to the concentrator module and refuse once it has left its network.
#include <pybind11/stl.h>

#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "KavroModuleWCM.h"
#include "PyBindings.h"
#include "PyModuleGuard.h"
#include "WCM_Device.h"
#include "WCM_DeviceSettingsBase.h"
#include "WCM_DeviceSettings_WHT.h"
#include "WCM_DeviceSettings_WHTM.h"
#include "WCM_Devices.h"
#include "WHT_Limit.h"
#include "WHT_Limits.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

// A slot's settings object (with its limits) is replaced when the slot's
// tool changes kind, and the new one may take the old one's address. Each
// settings part handed out remembers its slot and how to find where it
// should be now; a call through it first checks that it is still there and
// still of the class the call was made for.
using Locate = std::function<const void*(const WCM_DeviceSettingsBase* now)>;
struct SettingsOwner {
    const WCM_Device* device = nullptr;
    Locate locate;
};
std::mutex ownersLock;
std::map<const void*, SettingsOwner>& owners() {
    static std::map<const void*, SettingsOwner> table;
    return table;
}

void rememberSettingsPart(const void* part, const void* parent, const WCM_Device* device, Locate locate) {
    if (part == nullptr) return;
    rememberPartOf(part, parent);
    std::lock_guard<std::mutex> guard(ownersLock);
    owners().insert_or_assign(part, SettingsOwner{device, std::move(locate)});
}

template <typename C>
const WCM_Device* ensureSettingsPart(const C* part) {
    ensurePart(part);  // the concentrator is still on its network
    SettingsOwner owner;
    {
        std::lock_guard<std::mutex> guard(ownersLock);
        const auto found = owners().find(part);
        if (found != owners().end()) owner = found->second;
    }
    if (owner.device == nullptr) return nullptr;
    const WCM_DeviceSettingsBase* now = owner.device->Settings();
    bool same = now != nullptr && owner.locate(now) == part;
    if constexpr (std::is_base_of_v<WCM_DeviceSettingsBase, C>) same = same && dynamic_cast<const C*>(now) != nullptr;
    if (!same) {
        throw std::runtime_error("The tool in slot " + std::to_string(owner.device->Index() + 1) +
                                 " has changed: ask the device for its Settings() again.");
    }
    return owner.device;
}

// A member function of a settings part, checked before each call.
template <typename C, typename R, typename... A>
auto onSettings(R (C::*f)(A...)) {
    return [f](C& self, A... arguments) -> R {
        ensureSettingsPart(&self);
        return (self.*f)(std::forward<A>(arguments)...);
    };
}

// The readings of a multi-channel read as a Python list.
std::vector<sChannelReading> listOf(const KavroChannelReadings& readings) {
    std::vector<sChannelReading> list;
    for (int i = 0; i < readings.ReadingCount(); ++i) list.push_back(readings[i]);
    return list;
}

// The slot's settings object now, remembered with its slot.
WCM_DeviceSettingsBase* settingsOf(const WCM_Device& device) {
    ensurePart(&device);
    WCM_DeviceSettingsBase* settings = device.Settings();
    rememberSettingsPart(settings, &device, &device, [](const WCM_DeviceSettingsBase* now) { return now; });
    return settings;
}

const WHT_Limits* limitsOf(const WCM_DeviceSettingsBase* now) {
    const auto* single = dynamic_cast<const WCM_DeviceSettings_WHT*>(now);
    return single != nullptr ? single->Limits() : nullptr;
}

WHT_Limits* limits(const WCM_DeviceSettings_WHT& settings) {
    const WCM_Device* device = ensureSettingsPart(&settings);
    WHT_Limits* found = settings.Limits();
    rememberSettingsPart(found, &settings, device, [](const WCM_DeviceSettingsBase* now) { return limitsOf(now); });
    return found;
}

// One of the four limits (`get` on the limits).
auto limit(WHT_Limit* (WHT_Limits::*get)() const) {
    return [get](const WHT_Limits& all) {
        const WCM_Device* device = ensureSettingsPart(&all);
        WHT_Limit* found = (all.*get)();
        rememberSettingsPart(found, &all, device, [get](const WCM_DeviceSettingsBase* now) -> const void* {
            const WHT_Limits* current = limitsOf(now);
            return current != nullptr ? (current->*get)() : nullptr;
        });
        return found;
    };
}

WCM_Device* deviceAt(const WCM_Devices& devices, int index) {
    ensurePart(&devices);
    WCM_Device* device = devices.GetDevice(index);
    if (device == nullptr) throw py::index_error("no wireless slot " + std::to_string(index));
    rememberPartOf(device, &devices);
    return device;
}

}  // namespace

void bindWireless(py::module_& m) {
    constexpr auto owned = py::return_value_policy::reference_internal;

    py::class_<sWCM_ChannelData>(m, "sWCM_ChannelData")
        .def_readonly("Text", &sWCM_ChannelData::Text)
        .def_readonly("Value", &sWCM_ChannelData::Value)
        .def("__repr__",
             [](const sWCM_ChannelData& d) { return "<channel " + d.Text + ": " + std::to_string(d.Value) + ">"; });
    py::class_<sChannelReading>(m, "sChannelReading")
        .def_readonly("Channel", &sChannelReading::Channel)
        .def_readonly("Error", &sChannelReading::Error)
        .def_readonly("Unit", &sChannelReading::Unit)
        .def_readonly("Value", &sChannelReading::Value)
        .def("__repr__", [](const sChannelReading& r) {
            return "<channel " + std::to_string(r.Channel) + ": " + std::to_string(r.Value) + " " +
                   eKavroErrors_ToString(r.Error) + ">";
        });

    py::class_<KavroModuleWCM, KavroModule>(m, "KavroModuleWCM")
        .def("Devices", part(&KavroModuleWCM::Devices), owned)
        .def("ScanDuration", onNetwork(&KavroModuleWCM::ScanDuration))
        .def("getScanDuration", onNetwork(&KavroModuleWCM::getScanDuration), WithoutGil())
        .def("UpdateFieldData", onNetwork(&KavroModuleWCM::UpdateFieldData), WithoutGil())
        .def("getRestartFlag", onNetwork(&KavroModuleWCM::getRestartFlag), WithoutGil())
        .def("Restart", onNetwork(&KavroModuleWCM::Restart), WithoutGil());

    py::class_<WCM_Devices>(m, "WCM_Devices")
        .def("GetDevice", &deviceAt, owned, py::arg("index"))
        .def("DeviceCount", onNetwork(&WCM_Devices::DeviceCount))
        .def("__len__", onNetwork(&WCM_Devices::DeviceCount))
        .def("__getitem__", &deviceAt, owned)
        .def("__iter__", [](const py::object& self) {
            // Through __getitem__, so that each tool keeps its slots alive.
            py::list all;
            for (int i = 0; i < self.cast<const WCM_Devices&>().DeviceCount(); ++i)
                all.append(self.attr("__getitem__")(i));
            return py::iter(all);
        });

    // Settings() is the device's settings object as its kind's class; a new
    // one replaces it when the slot's tool changes kind.
    py::class_<WCM_Device>(m, "WCM_Device")
        .def("Index", onNetwork(&WCM_Device::Index))
        .def("WCMKavroAddress", onNetwork(&WCM_Device::WCMKavroAddress))
        .def("getDeviceType", onNetwork(&WCM_Device::getDeviceType), WithoutGil())
        .def("getName", onNetwork(&WCM_Device::getName), WithoutGil())
        .def("getKavroIdentity", onNetwork(&WCM_Device::getKavroIdentity), WithoutGil())
        .def("getNumChannels", onNetwork(&WCM_Device::getNumChannels), WithoutGil())
        .def("getChannelData", onNetwork(&WCM_Device::getChannelData), WithoutGil(), py::arg("channel"))
        .def("getAllChannelData", onNetwork(&WCM_Device::getAllChannelData), WithoutGil())
        .def("UpdateDeviceFieldData", onNetwork(&WCM_Device::UpdateDeviceFieldData), WithoutGil())
        .def("DeviceType", onNetwork(&WCM_Device::DeviceType))
        .def("DeviceName", onNetwork(&WCM_Device::DeviceName))
        .def("KavroIdentity", onNetwork(&WCM_Device::KavroIdentity))
        .def("NumChannels", onNetwork(&WCM_Device::NumChannels))
        .def("Settings", &settingsOf, owned)
        .def("setDeviceName", onNetwork(&WCM_Device::setDeviceName), WithoutGil(), py::arg("name"))
        .def("setKavroIdentity", onNetwork(&WCM_Device::setKavroIdentity), WithoutGil(), py::arg("identity"))
        .def("ConnectionStatus", onNetwork(&WCM_Device::ConnectionStatus), WithoutGil())
        .def("BatteryStatus", onNetwork(&WCM_Device::BatteryStatus), WithoutGil())
        .def("GetChannelData", onNetwork(&WCM_Device::GetChannelData), py::arg("channel"))
        .def(
            "Read",
            [](WCM_Device& device, unsigned mask, eRead3_ControlCode code, eRead3_UOM uom) {
                ensurePart(&device);
                py::gil_scoped_release free;
                return listOf(device.Read(mask, code, uom));
            },
            py::arg("mask"), py::arg("code") = eRead3_ControlCode::NormalInt7DPs, py::arg("uom") = eRead3_UOM::Default)
        .def(
            "ReadAllChannels",
            [](WCM_Device& device, eRead3_ControlCode code, eRead3_UOM uom) {
                ensurePart(&device);
                py::gil_scoped_release free;
                return listOf(device.ReadAllChannels(code, uom));
            },
            py::arg("code") = eRead3_ControlCode::NormalInt7DPs, py::arg("uom") = eRead3_UOM::Default)
        .def("__repr__", [](const WCM_Device& d) {
            return "<" + eWCM_DeviceType_ToString(d.DeviceType()) + " " + d.KavroIdentity() + " in slot " +
                   std::to_string(d.Index() + 1) + ">";
        });

    py::class_<WCM_DeviceSettingsBase>(m, "WCM_DeviceSettingsBase")
        .def("ConfigMode", onSettings(&WCM_DeviceSettingsBase::ConfigMode), WithoutGil())
        .def("setConfigMode", onSettings(&WCM_DeviceSettingsBase::setConfigMode), WithoutGil(), py::arg("on"))
        .def("EnteredConfigMode", onSettings(&WCM_DeviceSettingsBase::EnteredConfigMode), WithoutGil())
        .def("getConnectionStatus", onSettings(&WCM_DeviceSettingsBase::getConnectionStatus), WithoutGil())
        .def("SendCommand", onSettings(&WCM_DeviceSettingsBase::SendCommand), WithoutGil(), py::arg("command"),
             py::arg("wait_for_reply") = true);

    using M = WCM_DeviceSettings_WHTM;
    py::class_<M, WCM_DeviceSettingsBase>(m, "WCM_DeviceSettings_WHTM")
        .def("BluetoothClass", onSettings(&M::BluetoothClass), WithoutGil())
        .def("Button1Function", onSettings(&M::Button1Function), WithoutGil())
        .def("setButton1Function", onSettings(&M::setButton1Function), WithoutGil(), py::arg("function"))
        .def("Button2Function", onSettings(&M::Button2Function), WithoutGil())
        .def("setButton2Function", onSettings(&M::setButton2Function), WithoutGil(), py::arg("function"))
        .def("BuzzerFunction", onSettings(&M::BuzzerFunction), WithoutGil())
        .def("setBuzzerFunction", onSettings(&M::setBuzzerFunction), WithoutGil(), py::arg("function"))
        .def("DisplayMode", onSettings(&M::DisplayMode), WithoutGil())
        .def("setDisplayMode", onSettings(&M::setDisplayMode), WithoutGil(), py::arg("mode"))
        .def("DisplayOrientation", onSettings(&M::DisplayOrientation), WithoutGil())
        .def("setDisplayOrientation", onSettings(&M::setDisplayOrientation), WithoutGil(), py::arg("orientation"))
        .def("LED1Function", onSettings(&M::LED1Function), WithoutGil())
        .def("setLED1Function", onSettings(&M::setLED1Function), WithoutGil(), py::arg("function"))
        .def("LED2Function", onSettings(&M::LED2Function), WithoutGil())
        .def("setLED2Function", onSettings(&M::setLED2Function), WithoutGil(), py::arg("function"))
        .def("LED3Function", onSettings(&M::LED3Function), WithoutGil())
        .def("setLED3Function", onSettings(&M::setLED3Function), WithoutGil(), py::arg("function"))
        .def("OffTime", onSettings(&M::OffTime), WithoutGil())
        .def("setOffTime", onSettings(&M::setOffTime), WithoutGil(), py::arg("minutes"))
        .def("GetDisplayedResolution", onSettings(&M::GetDisplayedResolution), WithoutGil(), py::arg("channel"))
        .def("SetDisplayedResolution", onSettings(&M::SetDisplayedResolution), WithoutGil(), py::arg("channel"),
             py::arg("value"))
        .def("ResetFactorySettings", onSettings(&M::ResetFactorySettings), WithoutGil());

    using T = WCM_DeviceSettings_WHT;
    py::class_<T, WCM_DeviceSettingsBase>(m, "WCM_DeviceSettings_WHT")
        .def("DisplayOrientation", onSettings(&T::DisplayOrientation), WithoutGil())
        .def("setDisplayOrientation", onSettings(&T::setDisplayOrientation), WithoutGil(), py::arg("orientation"))
        .def("DisplayLayout", onSettings(&T::DisplayLayout), WithoutGil())
        .def("setDisplayLayout", onSettings(&T::setDisplayLayout), WithoutGil(), py::arg("layout"))
        .def("DisplayLargeSource", onSettings(&T::DisplayLargeSource), WithoutGil())
        .def("setDisplayLargeSource", onSettings(&T::setDisplayLargeSource), WithoutGil(), py::arg("source"))
        .def("DisplayUnits", onSettings(&T::DisplayUnits), WithoutGil())
        .def("setDisplayUnits", onSettings(&T::setDisplayUnits), WithoutGil(), py::arg("units"))
        .def("DisplayedResolution", onSettings(&T::DisplayedResolution), WithoutGil())
        .def("setDisplayedResolution", onSettings(&T::setDisplayedResolution), WithoutGil(), py::arg("decimals"))
        .def("OperationMode", onSettings(&T::OperationMode), WithoutGil())
        .def("setOperationMode", onSettings(&T::setOperationMode), WithoutGil(), py::arg("mode"))
        .def("MeasurementMode", onSettings(&T::MeasurementMode), WithoutGil())
        .def("setMeasurementMode", onSettings(&T::setMeasurementMode), WithoutGil(), py::arg("mode"))
        .def("PresetValue", onSettings(&T::PresetValue), WithoutGil())
        .def("setPresetValue", onSettings(&T::setPresetValue), WithoutGil(), py::arg("value"))
        .def("Button1Function", onSettings(&T::Button1Function), WithoutGil())
        .def("setButton1Function", onSettings(&T::setButton1Function), WithoutGil(), py::arg("function"))
        .def("Button2Function", onSettings(&T::Button2Function), WithoutGil())
        .def("setButton2Function", onSettings(&T::setButton2Function), WithoutGil(), py::arg("function"))
        .def("PowerOffButton", onSettings(&T::PowerOffButton), WithoutGil())
        .def("setPowerOffButton", onSettings(&T::setPowerOffButton), WithoutGil(), py::arg("option"))
        .def("OffTime", onSettings(&T::OffTime), WithoutGil())
        .def("setOffTime", onSettings(&T::setOffTime), WithoutGil(), py::arg("minutes"))
        .def("Limits", &limits, owned);

    py::class_<WHT_Limits>(m, "WHT_Limits")
        .def("Lower", limit(&WHT_Limits::Lower), owned)
        .def("Upper", limit(&WHT_Limits::Upper), owned)
        .def("WarnLower", limit(&WHT_Limits::WarnLower), owned)
        .def("WarnUpper", limit(&WHT_Limits::WarnUpper), owned)
        .def("Indication", onSettings(&WHT_Limits::Indication), WithoutGil())
        .def("setIndication", onSettings(&WHT_Limits::setIndication), WithoutGil(), py::arg("indication"))
        .def("LED", onSettings(&WHT_Limits::LED), WithoutGil())
        .def("setLED", onSettings(&WHT_Limits::setLED), WithoutGil(), py::arg("led"))
        .def("BuzzerRate", onSettings(&WHT_Limits::BuzzerRate), WithoutGil())
        .def("setBuzzerRate", onSettings(&WHT_Limits::setBuzzerRate), WithoutGil(), py::arg("rate"))
        .def("State", onSettings(&WHT_Limits::State), WithoutGil());

    py::class_<WHT_Limit>(m, "WHT_Limit")
        .def("Name",
             [](const WHT_Limit& limit) {
                 ensurePart(&limit);
                 return limit.Name();
             })
        .def("Value", onSettings(&WHT_Limit::Value), WithoutGil())
        .def("setValue", onSettings(&WHT_Limit::setValue), WithoutGil(), py::arg("value"))
        .def("Enabled", onSettings(&WHT_Limit::Enabled), WithoutGil())
        .def("setEnabled", onSettings(&WHT_Limit::setEnabled), WithoutGil(), py::arg("enabled"));
}

}  // namespace kavro_python
