// The entry object, the collection of networks and the diagnostic handler.
#include <memory>

#include "KavroDiagnostics.h"
#include "KavroNetwork.h"
#include "KavroNetworks.h"
#include "KavroServer.h"
#include "PyBindings.h"
#include "PyCallback.h"
#include "PyModuleGuard.h"

namespace kavro_python {

using namespace KavroLibrary;

void bindServer(py::module_& m) {
    py::class_<KavroNetworks>(m, "KavroNetworks")
        .def("FindNetworks",
             [](KavroNetworks& networks) {
                 renewingNetworks(&networks);
                 py::gil_scoped_release released;
                 networks.FindNetworks();
             })
        .def("Count", &KavroNetworks::Count)
        .def(
            "Network",
            [](const KavroNetworks& networks, unsigned int index) {
                KavroNetwork* network = networks.Network(index);
                rememberNetwork(network, &networks);
                return network;
            },
            py::return_value_policy::reference_internal, py::arg("index"))
        .def("ConnectAll", &KavroNetworks::ConnectAll, WithoutGil())
        .def("DisconnectAll", &KavroNetworks::DisconnectAll, WithoutGil())
        .def("__len__", &KavroNetworks::Count)
        .def(
            "__getitem__",
            [](const KavroNetworks& networks, unsigned int index) {
                if (index >= networks.Count()) throw py::index_error("no network " + std::to_string(index));
                KavroNetwork* network = networks.Network(index);
                rememberNetwork(network, &networks);
                return network;
            },
            py::return_value_policy::reference_internal);

    py::class_<KavroServer>(m, "KavroServer")
        .def(py::init<>())
        .def("LibraryPartNumber", &KavroServer::LibraryPartNumber)
        .def("LibraryVersion", &KavroServer::LibraryVersion)
        .def("LibraryBuildDate", &KavroServer::LibraryBuildDate)
        .def("GetErrorDescription", &KavroServer::GetErrorDescription, py::arg("code"))
        .def("Networks", &KavroServer::Networks, py::return_value_policy::reference_internal)
        .def("DynamicInProgress", &KavroServer::DynamicInProgress)
        .def("StopAllDynamic", &KavroServer::StopAllDynamic, WithoutGil());

    m.def(
        "set_diagnostic_handler",
        [](py::object handler) {
            if (handler.is_none()) {
                setDiagnosticHandler(nullptr);
                return;
            }
            std::shared_ptr<PyCallback> callback = makeCallback(std::move(handler));
            setDiagnosticHandler([callback](const std::string& line) { (*callback)(line); });
        },
        py::arg("handler"),
        "Sends the library's diagnostic lines to handler(line), from whichever thread writes them; "
        "None restores standard error.");
    // The handler must not outlive the interpreter it calls into.
    py::module_::import("atexit").attr("register")(py::cpp_function([] { setDiagnosticHandler(nullptr); }));
}

}  // namespace kavro_python
