// The wireless concentrator's hand tools: the slots, each tool's channels,
// and its settings as the most derived Python class of its kind. All of them
// belong to the concentrator module and refuse once it has left its network.
#include <pybind11/stl.h>

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

// The readings of a multi-channel read as a Python list.
std::vector<sChannelReading> listOf(const KavroChannelReadings& readings) {
    std::vector<sChannelReading> list;
    for (int i = 0; i < readings.ReadingCount(); ++i) list.push_back(readings[i]);
    return list;
}

// A part of a part (`get` on `Parent`), checked and remembered as belonging
// to the same module.
template <typename Parent, typename Part>
auto partOf(Part* (Parent::*get)() const) {
    return [get](const Parent& parent) {
        ensurePart(&parent);
        Part* found = (parent.*get)();
        rememberPartOf(found, &parent);
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
        .def(
            "Devices",
            [](const KavroModuleWCM& wcm) {
                ensureModule(&wcm);
                WCM_Devices* devices = wcm.Devices();
                rememberPart(devices, &wcm);
                return devices;
            },
            owned)
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
        .def("Settings", partOf(&WCM_Device::Settings), owned)
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
        .def("ConfigMode", onNetwork(&WCM_DeviceSettingsBase::ConfigMode), WithoutGil())
        .def("setConfigMode", onNetwork(&WCM_DeviceSettingsBase::setConfigMode), WithoutGil(), py::arg("on"))
        .def("EnteredConfigMode", onNetwork(&WCM_DeviceSettingsBase::EnteredConfigMode), WithoutGil())
        .def("getConnectionStatus", onNetwork(&WCM_DeviceSettingsBase::getConnectionStatus), WithoutGil())
        .def("SendCommand", onNetwork(&WCM_DeviceSettingsBase::SendCommand), WithoutGil(), py::arg("command"),
             py::arg("wait_for_reply") = true);

    using M = WCM_DeviceSettings_WHTM;
    py::class_<M, WCM_DeviceSettingsBase>(m, "WCM_DeviceSettings_WHTM")
        .def("BluetoothClass", onNetwork(&M::BluetoothClass), WithoutGil())
        .def("Button1Function", onNetwork(&M::Button1Function), WithoutGil())
        .def("setButton1Function", onNetwork(&M::setButton1Function), WithoutGil(), py::arg("function"))
        .def("Button2Function", onNetwork(&M::Button2Function), WithoutGil())
        .def("setButton2Function", onNetwork(&M::setButton2Function), WithoutGil(), py::arg("function"))
        .def("BuzzerFunction", onNetwork(&M::BuzzerFunction), WithoutGil())
        .def("setBuzzerFunction", onNetwork(&M::setBuzzerFunction), WithoutGil(), py::arg("function"))
        .def("DisplayMode", onNetwork(&M::DisplayMode), WithoutGil())
        .def("setDisplayMode", onNetwork(&M::setDisplayMode), WithoutGil(), py::arg("mode"))
        .def("DisplayOrientation", onNetwork(&M::DisplayOrientation), WithoutGil())
        .def("setDisplayOrientation", onNetwork(&M::setDisplayOrientation), WithoutGil(), py::arg("orientation"))
        .def("LED1Function", onNetwork(&M::LED1Function), WithoutGil())
        .def("setLED1Function", onNetwork(&M::setLED1Function), WithoutGil(), py::arg("function"))
        .def("LED2Function", onNetwork(&M::LED2Function), WithoutGil())
        .def("setLED2Function", onNetwork(&M::setLED2Function), WithoutGil(), py::arg("function"))
        .def("LED3Function", onNetwork(&M::LED3Function), WithoutGil())
        .def("setLED3Function", onNetwork(&M::setLED3Function), WithoutGil(), py::arg("function"))
        .def("OffTime", onNetwork(&M::OffTime), WithoutGil())
        .def("setOffTime", onNetwork(&M::setOffTime), WithoutGil(), py::arg("minutes"))
        .def("GetDisplayedResolution", onNetwork(&M::GetDisplayedResolution), WithoutGil(), py::arg("channel"))
        .def("SetDisplayedResolution", onNetwork(&M::SetDisplayedResolution), WithoutGil(), py::arg("channel"),
             py::arg("value"))
        .def("ResetFactorySettings", onNetwork(&M::ResetFactorySettings), WithoutGil());

    using T = WCM_DeviceSettings_WHT;
    py::class_<T, WCM_DeviceSettingsBase>(m, "WCM_DeviceSettings_WHT")
        .def("DisplayOrientation", onNetwork(&T::DisplayOrientation), WithoutGil())
        .def("setDisplayOrientation", onNetwork(&T::setDisplayOrientation), WithoutGil(), py::arg("orientation"))
        .def("DisplayLayout", onNetwork(&T::DisplayLayout), WithoutGil())
        .def("setDisplayLayout", onNetwork(&T::setDisplayLayout), WithoutGil(), py::arg("layout"))
        .def("DisplayLargeSource", onNetwork(&T::DisplayLargeSource), WithoutGil())
        .def("setDisplayLargeSource", onNetwork(&T::setDisplayLargeSource), WithoutGil(), py::arg("source"))
        .def("DisplayUnits", onNetwork(&T::DisplayUnits), WithoutGil())
        .def("setDisplayUnits", onNetwork(&T::setDisplayUnits), WithoutGil(), py::arg("units"))
        .def("DisplayedResolution", onNetwork(&T::DisplayedResolution), WithoutGil())
        .def("setDisplayedResolution", onNetwork(&T::setDisplayedResolution), WithoutGil(), py::arg("decimals"))
        .def("OperationMode", onNetwork(&T::OperationMode), WithoutGil())
        .def("setOperationMode", onNetwork(&T::setOperationMode), WithoutGil(), py::arg("mode"))
        .def("MeasurementMode", onNetwork(&T::MeasurementMode), WithoutGil())
        .def("setMeasurementMode", onNetwork(&T::setMeasurementMode), WithoutGil(), py::arg("mode"))
        .def("PresetValue", onNetwork(&T::PresetValue), WithoutGil())
        .def("setPresetValue", onNetwork(&T::setPresetValue), WithoutGil(), py::arg("value"))
        .def("Button1Function", onNetwork(&T::Button1Function), WithoutGil())
        .def("setButton1Function", onNetwork(&T::setButton1Function), WithoutGil(), py::arg("function"))
        .def("Button2Function", onNetwork(&T::Button2Function), WithoutGil())
        .def("setButton2Function", onNetwork(&T::setButton2Function), WithoutGil(), py::arg("function"))
        .def("PowerOffButton", onNetwork(&T::PowerOffButton), WithoutGil())
        .def("setPowerOffButton", onNetwork(&T::setPowerOffButton), WithoutGil(), py::arg("option"))
        .def("OffTime", onNetwork(&T::OffTime), WithoutGil())
        .def("setOffTime", onNetwork(&T::setOffTime), WithoutGil(), py::arg("minutes"))
        .def("Limits", partOf(&T::Limits), owned);

    py::class_<WHT_Limits>(m, "WHT_Limits")
        .def("Lower", partOf(&WHT_Limits::Lower), owned)
        .def("Upper", partOf(&WHT_Limits::Upper), owned)
        .def("WarnLower", partOf(&WHT_Limits::WarnLower), owned)
        .def("WarnUpper", partOf(&WHT_Limits::WarnUpper), owned)
        .def("Indication", onNetwork(&WHT_Limits::Indication), WithoutGil())
        .def("setIndication", onNetwork(&WHT_Limits::setIndication), WithoutGil(), py::arg("indication"))
        .def("LED", onNetwork(&WHT_Limits::LED), WithoutGil())
        .def("setLED", onNetwork(&WHT_Limits::setLED), WithoutGil(), py::arg("led"))
        .def("BuzzerRate", onNetwork(&WHT_Limits::BuzzerRate), WithoutGil())
        .def("setBuzzerRate", onNetwork(&WHT_Limits::setBuzzerRate), WithoutGil(), py::arg("rate"))
        .def("State", onNetwork(&WHT_Limits::State), WithoutGil());

    py::class_<WHT_Limit>(m, "WHT_Limit")
        .def("Name",
             [](const WHT_Limit& limit) {
                 ensurePart(&limit);
                 return limit.Name();
             })
        .def("Value", onNetwork(&WHT_Limit::Value), WithoutGil())
        .def("setValue", onNetwork(&WHT_Limit::setValue), WithoutGil(), py::arg("value"))
        .def("Enabled", onNetwork(&WHT_Limit::Enabled), WithoutGil())
        .def("setEnabled", onNetwork(&WHT_Limit::setEnabled), WithoutGil(), py::arg("enabled"));
}

}  // namespace kavro_python
