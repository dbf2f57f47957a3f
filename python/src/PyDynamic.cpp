// Dynamic mode: set-up, validation and runs of a network's KavroDynamic,
// with Python callables for the library's completion callbacks, which the
// library calls from its own threads with plain function pointers.
#include <map>
#include <memory>
#include <mutex>

#include "KavroDynamic.h"
#include "KavroNetwork.h"
#include "KavroServer.h"
#include "links/NetworkConfiguration.h"
#include "PyBindings.h"
#include "PyCallback.h"
#include "PyModuleGuard.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

// The library's callbacks carry no user data: one Python callable per
// network number for runs, one for the server's StartAllDynamic.
std::mutex callbacksLock;
std::map<int, std::shared_ptr<PyCallback>>& runCallbacks() {
    static auto* callbacks = new std::map<int, std::shared_ptr<PyCallback>>();  // outlives every thread
    return *callbacks;
}
std::map<const KavroDynamic*, int>& networkNumbers() {
    static auto* numbers = new std::map<const KavroDynamic*, int>();
    return *numbers;
}
std::shared_ptr<PyCallback>& allDoneCallback() {
    static auto* callback = new std::shared_ptr<PyCallback>();
    return *callback;
}

void runDone(int network) {
    std::shared_ptr<PyCallback> callback;
    {
        std::lock_guard<std::mutex> guard(callbacksLock);
        const auto found = runCallbacks().find(network);
        if (found != runCallbacks().end()) callback = found->second;
    }
    if (callback) (*callback)(network);
}

void allDone() {
    std::shared_ptr<PyCallback> callback;
    {
        std::lock_guard<std::mutex> guard(callbacksLock);
        callback = allDoneCallback();
    }
    if (callback) (*callback)();
}

// Swaps under the lock; the old callable is dropped after it, with the GIL held.
void setRunCallback(int network, std::shared_ptr<PyCallback> callback) {
    {
        std::lock_guard<std::mutex> guard(callbacksLock);
        runCallbacks()[network].swap(callback);
    }
}

}  // namespace

void bindDynamic(py::module_& m) {
    py::class_<KavroDynamic>(m, "KavroDynamic")
        .def("CollectionSize", onNetworkPart(&KavroDynamic::CollectionSize))
        .def("DynamicInterval", onNetworkPart(&KavroDynamic::DynamicInterval))
        .def("DynamicMode", onNetworkPart(&KavroDynamic::DynamicMode))
        .def("DynamicRate", onNetworkPart(&KavroDynamic::DynamicRate))
        .def("MasterIndex", onNetworkPart(&KavroDynamic::MasterIndex))
        .def("NumberOfModules", onNetworkPart(&KavroDynamic::NumberOfModules))
        .def("MinimumInterval", onNetworkPart(&KavroDynamic::MinimumInterval))
        .def("Enabled", onNetworkPart(&KavroDynamic::Enabled))
        .def("DynamicState", onNetworkPart(&KavroDynamic::DynamicState))
        .def("ValidateInterval", onNetworkPart(&KavroDynamic::ValidateInterval), py::arg("microseconds"))
        .def("setCollectionSize", onNetworkPart(&KavroDynamic::setCollectionSize), py::arg("size"))
        .def("setDynamicRate", onNetworkPart(&KavroDynamic::setDynamicRate), py::arg("rate"))
        .def("setDynamicInterval", onNetworkPart(&KavroDynamic::setDynamicInterval), py::arg("microseconds"))
        .def("setMasterIndex", onNetworkPart(&KavroDynamic::setMasterIndex), py::arg("index"))
        .def("setNumberOfModules", onNetworkPart(&KavroDynamic::setNumberOfModules), py::arg("count"))
        .def("setDynamicMode", onNetworkPart(&KavroDynamic::setDynamicMode), py::arg("mode"))
        .def("setEnabled", onNetworkPart(&KavroDynamic::setEnabled), py::arg("enabled"))
        .def("ValidateDynamic_NumModules", onNetworkPart(&KavroDynamic::ValidateDynamic_NumModules), py::arg("count"))
        .def("ValidateDynamic_Mode", onNetworkPart(&KavroDynamic::ValidateDynamic_Mode), py::arg("mode"))
        .def("ValidateDynamic_AddressOfModuleMaster", onNetworkPart(&KavroDynamic::ValidateDynamic_AddressOfModuleMaster))
        .def("ValidateDynamic_Rate", onNetworkPart(&KavroDynamic::ValidateDynamic_Rate), py::arg("rate"))
        .def("ValidateDynamic_Time", onNetworkPart(&KavroDynamic::ValidateDynamic_Time))
        .def("ValidateDynamic_NetSpeed", onNetworkPart(&KavroDynamic::ValidateDynamic_NetSpeed), py::arg("speed"))
        .def("ValidateDynamic", onNetworkPart(&KavroDynamic::ValidateDynamic))
        .def("Dynamic_Setup", onNetworkPart(&KavroDynamic::Dynamic_Setup), WithoutGil(), py::arg("rate"), py::arg("modules"),
             py::arg("index"))
        .def("Prepare", onNetworkPart(&KavroDynamic::Prepare), WithoutGil())
        .def("ClearPrepared", onNetworkPart(&KavroDynamic::ClearPrepared), WithoutGil())
        .def(
            "StartDynamic",
            [](KavroDynamic& dynamic, py::object callback) {
                ensureNetworkPart(&dynamic);
                int number = 0;
                {
                    std::lock_guard<std::mutex> guard(callbacksLock);
                    number = networkNumbers()[&dynamic];
                }
                setRunCallback(number, callback.is_none() ? nullptr : makeCallback(std::move(callback)));
                py::gil_scoped_release released;
                dynamic.StartDynamic(&runDone);
            },
            py::arg("callback") = py::none(),
            "Starts the prepared run; callback(network_number), if given, is called from the library's "
            "thread when the run is complete.")
        .def("StopDynamic", onNetworkPart(&KavroDynamic::StopDynamic), WithoutGil());

    // A network's dynamic object, remembered with the number the library
    // gives its callback.
    py::reinterpret_borrow<py::class_<KavroNetwork>>(m.attr("KavroNetwork"))
        .def(
            "Dynamic",
            [](KavroNetwork& network) {
                ensureNetwork(&network);
                rememberNetworkPart(network.Dynamic(), &network);
                std::lock_guard<std::mutex> guard(callbacksLock);
                networkNumbers()[network.Dynamic()] = network.Configuration()->NetworkNumber;
                return network.Dynamic();
            },
            py::return_value_policy::reference_internal);

    py::reinterpret_borrow<py::class_<KavroServer>>(m.attr("KavroServer"))
        .def(
            "StartAllDynamic",
            [](KavroServer& server, py::object callback) {
                if (callback.is_none()) {
                    py::gil_scoped_release released;
                    server.StartAllDynamic();
                    return;
                }
                std::shared_ptr<PyCallback> next = makeCallback(std::move(callback));
                {
                    std::lock_guard<std::mutex> guard(callbacksLock);
                    allDoneCallback().swap(next);
                }
                py::gil_scoped_release released;
                server.StartAllDynamic(&allDone);
            },
            py::arg("callback") = py::none(),
            "Starts every network's prepared run; callback(), if given, is called from the library's "
            "thread once none is reading or processing.");

    // The callables must not outlive the interpreter they call into.
    py::module_::import("atexit").attr("register")(py::cpp_function([] {
        std::map<int, std::shared_ptr<PyCallback>> runs;
        std::shared_ptr<PyCallback> all;
        {
            std::lock_guard<std::mutex> guard(callbacksLock);
            runs.swap(runCallbacks());
            all.swap(allDoneCallback());
        }
    }));
}

}  // namespace kavro_python
