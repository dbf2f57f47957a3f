// Networks: the base class with its module list, speeds, notification,
// hot-swap and settings files, and one class per kind of link. A network
// made in Python belongs to Python; one from KavroNetworks belongs to the
// collection, until its next FindNetworks.
#include <pybind11/stl.h>

#include "KavroNetwork.h"
#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "KavroNetworkUSBIM.h"
#include "KavroNetworkWIM.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"
#include "PyBindings.h"
#include "PyModuleGuard.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

KavroModule* handOut(const KavroNetwork& network, KavroModule* module) {
    rememberModule(module, &network);
    return module;
}

}  // namespace

void bindNetworks(py::module_& m) {
    constexpr auto owned = py::return_value_policy::reference_internal;
    py::class_<KavroNetwork>(m, "KavroNetwork")
        .def("Connect", &KavroNetwork::Connect, WithoutGil())
        .def("Disconnect", &KavroNetwork::Disconnect, WithoutGil())
        .def("DynamicCapable", &KavroNetwork::DynamicCapable)
        .def("Dynamic2Capable", &KavroNetwork::Dynamic2Capable)
        .def("DynamicExternalSourceCapable", &KavroNetwork::DynamicExternalSourceCapable)
        .def("Description", &KavroNetwork::Description)
        .def("NetworkName", &KavroNetwork::NetworkName)
        .def("setNetworkName", &KavroNetwork::setNetworkName, py::arg("name"))
        .def("ControllerID", &KavroNetwork::ControllerID)
        .def("NetworkType", &KavroNetwork::NetworkType)
        .def("IsConnected", &KavroNetwork::IsConnected)
        .def("NetSpeed", &KavroNetwork::NetSpeed)
        .def("MaximumAllowableNumberOfModules", &KavroNetwork::MaximumAllowableNumberOfModules)
        .def("Buffered", &KavroNetwork::Buffered, owned)
        .def("Difference", &KavroNetwork::Difference, owned)
        .def("ModuleCount", &KavroNetwork::ModuleCount)
        .def(
            "GetModule",
            [](const KavroNetwork& network, unsigned int index) { return handOut(network, network.GetModule(index)); },
            owned, py::arg("index"))
        .def(
            "GetModuleByID",
            [](const KavroNetwork& network, std::string id) {
                return handOut(network, network.GetModuleByID(std::move(id)));
            },
            owned, py::arg("id"))
        .def("GetModuleIndexByID", &KavroNetwork::GetModuleIndexByID, py::arg("id"))
        .def("AddModule", &KavroNetwork::AddModule, WithoutGil(), py::arg("id"), py::arg("name") = "")
        .def("DeleteModule", py::overload_cast<int>(&KavroNetwork::DeleteModule), WithoutGil(), py::arg("index"))
        .def("DeleteModule", py::overload_cast<std::string>(&KavroNetwork::DeleteModule), WithoutGil(),
             py::arg("id"))
        .def("ClearModules", &KavroNetwork::ClearModules, WithoutGil())
        .def("BufferedExternalSourceCapable", &KavroNetwork::BufferedExternalSourceCapable)
        .def("BufferedCapable", &KavroNetwork::BufferedCapable)
        .def("ReadBurstCapableCount", &KavroNetwork::ReadBurstCapableCount)
        .def("ReadBurstCapable", &KavroNetwork::ReadBurstCapable)
        .def("AvailableSpeeds", &KavroNetwork::AvailableSpeeds)
        .def("SpeedAvailable", &KavroNetwork::SpeedAvailable, py::arg("speed"))
        .def("setNetSpeed", &KavroNetwork::setNetSpeed, WithoutGil(), py::arg("speed"))
        .def("BeginNotifying", &KavroNetwork::BeginNotifying, WithoutGil())
        .def("Notifying", &KavroNetwork::Notifying)
        .def("CancelNotifying", &KavroNetwork::CancelNotifying, WithoutGil())
        .def("FindHotswapped", &KavroNetwork::FindHotswapped, WithoutGil())
        .def("Ping", &KavroNetwork::Ping, WithoutGil())
        .def("ApplyRemap", &KavroNetwork::ApplyRemap, WithoutGil())
        .def("ClearTCons", &KavroNetwork::ClearTCons, WithoutGil())
        .def(
            "Readburst",
            [](KavroNetwork& network) {
                int count = 0;
                eKavroErrors error;
                {
                    py::gil_scoped_release released;
                    error = network.Readburst(count);
                }
                return py::make_tuple(error, count);
            },
            "Reads every burst-capable module at once: (error, count); each module then holds its "
            "LastReadburst_ values.")
        .def("Save", &KavroNetwork::Save, WithoutGil(), py::arg("path"))
        .def("Load", &KavroNetwork::Load, WithoutGil(), py::arg("path"))
        .def("__len__", &KavroNetwork::ModuleCount)
        .def(
            "__getitem__",
            [](const KavroNetwork& network, int index) {
                if (index < 0 || index >= network.ModuleCount()) {
                    throw py::index_error("no module " + std::to_string(index));
                }
                return handOut(network, network.GetModule(static_cast<unsigned int>(index)));
            },
            owned)
        .def("__repr__", [](const KavroNetwork& network) {
            return "<" + eNetworkType_ToString(network.NetworkType()) + " network '" + network.NetworkName() +
                   "', " + std::to_string(network.ModuleCount()) + " modules>";
        });

    py::class_<KavroNetworkETHIM, KavroNetwork>(m, "KavroNetworkETHIM")
        .def(py::init<int, std::string, std::string>(), py::arg("number"), py::arg("name"), py::arg("address"));
    py::class_<KavroNetworkRS232, KavroNetwork>(m, "KavroNetworkRS232")
        .def(py::init<int, std::string, std::string, int>(), py::arg("number"), py::arg("name"),
             py::arg("device"), py::arg("baud") = 115200);
    py::class_<KavroNetworkUSBIM, KavroNetwork>(m, "KavroNetworkUSBIM")
        .def(py::init<int, int>(), py::arg("number"), py::arg("device_index"));
    py::class_<KavroNetworkWIM, KavroNetwork>(m, "KavroNetworkWIM")
        .def(py::init<int, std::string, std::string, int>(), py::arg("number"), py::arg("name"),
             py::arg("address"), py::arg("channel") = 5);
}

}  // namespace kavro_python
