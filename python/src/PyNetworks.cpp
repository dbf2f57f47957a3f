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

// A part of the network (its buffered or difference object), which lives
// as long as the network.
template <typename Part>
auto networkPart(Part* (KavroNetwork::*get)() const) {
    return [get](const KavroNetwork& network) {
        ensureNetwork(&network);
        Part* found = (network.*get)();
        rememberNetworkPart(found, &network);
        return found;
    };
}

}  // namespace

void bindNetworks(py::module_& m) {
    constexpr auto owned = py::return_value_policy::reference_internal;
    py::class_<KavroNetwork>(m, "KavroNetwork")
        .def("Connect", onNetwork(&KavroNetwork::Connect), WithoutGil())
        .def("Disconnect", onNetwork(&KavroNetwork::Disconnect), WithoutGil())
        .def("DynamicCapable", onNetwork(&KavroNetwork::DynamicCapable))
        .def("Dynamic2Capable", onNetwork(&KavroNetwork::Dynamic2Capable))
        .def("DynamicExternalSourceCapable", onNetwork(&KavroNetwork::DynamicExternalSourceCapable))
        .def("Description", onNetwork(&KavroNetwork::Description))
        .def("NetworkName", onNetwork(&KavroNetwork::NetworkName))
        .def("setNetworkName", onNetwork(&KavroNetwork::setNetworkName), py::arg("name"))
        .def("ControllerID", onNetwork(&KavroNetwork::ControllerID))
        .def("NetworkType", onNetwork(&KavroNetwork::NetworkType))
        .def("IsConnected", onNetwork(&KavroNetwork::IsConnected))
        .def("NetSpeed", onNetwork(&KavroNetwork::NetSpeed))
        .def("MaximumAllowableNumberOfModules", onNetwork(&KavroNetwork::MaximumAllowableNumberOfModules))
        .def("Buffered", networkPart(&KavroNetwork::Buffered), owned)
        .def("Difference", networkPart(&KavroNetwork::Difference), owned)
        .def("ModuleCount", onNetwork(&KavroNetwork::ModuleCount))
        .def(
            "GetModule",
            [](const KavroNetwork& network, unsigned int index) {
                ensureNetwork(&network);
                return handOut(network, network.GetModule(index));
            },
            owned, py::arg("index"))
        .def(
            "GetModuleByID",
            [](const KavroNetwork& network, std::string id) {
                ensureNetwork(&network);
                return handOut(network, network.GetModuleByID(std::move(id)));
            },
            owned, py::arg("id"))
        .def("GetModuleIndexByID", onNetwork(&KavroNetwork::GetModuleIndexByID), py::arg("id"))
        .def("AddModule", onNetwork(&KavroNetwork::AddModule), WithoutGil(), py::arg("id"), py::arg("name") = "")
        .def("DeleteModule", onNetwork(py::overload_cast<int>(&KavroNetwork::DeleteModule)), WithoutGil(), py::arg("index"))
        .def("DeleteModule", onNetwork(py::overload_cast<std::string>(&KavroNetwork::DeleteModule)), WithoutGil(),
             py::arg("id"))
        .def("ClearModules", onNetwork(&KavroNetwork::ClearModules), WithoutGil())
        .def("BufferedExternalSourceCapable", onNetwork(&KavroNetwork::BufferedExternalSourceCapable))
        .def("BufferedCapable", onNetwork(&KavroNetwork::BufferedCapable))
        .def("ReadBurstCapableCount", onNetwork(&KavroNetwork::ReadBurstCapableCount))
        .def("ReadBurstCapable", onNetwork(&KavroNetwork::ReadBurstCapable))
        .def("AvailableSpeeds", onNetwork(&KavroNetwork::AvailableSpeeds))
        .def("SpeedAvailable", onNetwork(&KavroNetwork::SpeedAvailable), py::arg("speed"))
        .def("setNetSpeed", onNetwork(&KavroNetwork::setNetSpeed), WithoutGil(), py::arg("speed"))
        .def("BeginNotifying", onNetwork(&KavroNetwork::BeginNotifying), WithoutGil())
        .def("Notifying", onNetwork(&KavroNetwork::Notifying))
        .def("CancelNotifying", onNetwork(&KavroNetwork::CancelNotifying), WithoutGil())
        .def("FindHotswapped", onNetwork(&KavroNetwork::FindHotswapped), WithoutGil())
        .def("Ping", onNetwork(&KavroNetwork::Ping), WithoutGil())
        .def("ApplyRemap", onNetwork(&KavroNetwork::ApplyRemap), WithoutGil())
        .def("ClearTCons", onNetwork(&KavroNetwork::ClearTCons), WithoutGil())
        .def(
            "Readburst",
            [](KavroNetwork& network) {
                ensureNetwork(&network);
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
        .def("Save", onNetwork(&KavroNetwork::Save), WithoutGil(), py::arg("path"))
        .def("Load", onNetwork(&KavroNetwork::Load), WithoutGil(), py::arg("path"))
        .def("__len__", onNetwork(&KavroNetwork::ModuleCount))
        .def(
            "__getitem__",
            [](const KavroNetwork& network, int index) {
                ensureNetwork(&network);
                if (index < 0 || index >= network.ModuleCount()) {
                    throw py::index_error("no module " + std::to_string(index));
                }
                return handOut(network, network.GetModule(static_cast<unsigned int>(index)));
            },
            owned)
        .def("__repr__", [](const KavroNetwork& network) {
            ensureNetwork(&network);
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
