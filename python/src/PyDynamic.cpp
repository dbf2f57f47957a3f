// Dynamic mode: set-up, validation and runs of a network's KavroDynamic,
// with Python callables for the library's completion callbacks, which the
// library calls from its own threads with plain function pointers.
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "KavroDynamic.h"
#include "KavroDynamicData.h"
#include "KavroNetwork.h"
#include "KavroServer.h"
#include "links/NetworkConfiguration.h"
#include "PyBindings.h"
#include "PyCallback.h"
#include "PyModuleGuard.h"
#include "PyReadingRecord.h"

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

// Readings of a run as one array: a module's readings (1-D), or every
// module's (2-D, reading sets by modules), from `first` on, `count` of them
// (all when negative).
py::array_t<ReadingRecord> dynamicReadings(const KavroDynamicData& data, py::object module, int first, int count) {
    registerReadingRecord();
    const int available = data.ReadingCount();
    if (first < 0) throw py::index_error("first must not be negative");
    const int n = first >= available ? 0 : (count < 0 ? available - first : std::min(count, available - first));
    std::vector<sReadingItem> items(static_cast<std::size_t>(n));
    if (!module.is_none()) {
        const int index = module.cast<int>();
        if (index < 0 || index >= data.ModuleCount()) throw py::index_error("module index out of range");
        if (n > 0) {
            py::gil_scoped_release released;
            data.GetItems(index, first, n, items.data());
        }
        py::array_t<ReadingRecord> array(n);
        ReadingRecord* out = array.mutable_data();
        for (int i = 0; i < n; ++i) out[i] = ReadingRecord::of(items[static_cast<std::size_t>(i)]);
        return array;
    }
    const int modules = data.ModuleCount();
    py::array_t<ReadingRecord> array({n, modules});
    ReadingRecord* out = array.mutable_data();
    for (int m = 0; m < modules && n > 0; ++m) {
        {
            py::gil_scoped_release released;
            data.GetItems(m, first, n, items.data());
        }
        for (int i = 0; i < n; ++i) {
            out[static_cast<std::size_t>(i) * modules + m] = ReadingRecord::of(items[static_cast<std::size_t>(i)]);
        }
    }
    return array;
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
        .def("StopDynamic", onNetworkPart(&KavroDynamic::StopDynamic), WithoutGil())
        .def(
            "Health",
            [](const KavroDynamic& dynamic) {
                ensureNetworkPart(&dynamic);
                const sDynamicHealth health = dynamic.Health();
                py::dict out;
                out["packets"] = health.Packets;
                out["packets_asked_again"] = health.PacketsAskedAgain;
                out["reading_sets"] = health.ReadingSets;
                out["reading_sets_lost"] = health.ReadingSetsLost;
                out["data_lost"] = health.DataLost;
                return out;
            },
            "How the current or last run went, as a dict.")
        .def(
            "DynamicData",
            [](KavroDynamic& dynamic) {
                ensureNetworkPart(&dynamic);
                return dynamic.DynamicData();
            },
            py::return_value_policy::reference_internal,
            "The readings of the current or last run (the same object from run to run).");

    py::class_<KavroDynamicData>(m, "KavroDynamicData")
        .def("ModuleCount", &KavroDynamicData::ModuleCount)
        .def("ReadingCount", &KavroDynamicData::ReadingCount)
        .def("CollectionStatus", &KavroDynamicData::CollectionStatus)
        .def("CheckBounds", &KavroDynamicData::CheckBounds, py::arg("module_index"), py::arg("reading_index"))
        .def(
            "GetItem",
            [](const KavroDynamicData& data, int module, int reading) {
                const sReadingItem item = data.GetItem(module, reading);
                return py::make_tuple(item.error, item.counts, item.value);
            },
            py::arg("module_index"), py::arg("reading_index"), "(error, counts, value) of one reading.")
        .def("GetReadingErrorStatus", &KavroDynamicData::GetReadingErrorStatus, py::arg("module_index"),
             py::arg("reading_index"))
        .def("GetReadingInCounts", &KavroDynamicData::GetReadingInCounts, py::arg("module_index"),
             py::arg("reading_index"))
        .def("readings", &dynamicReadings, py::arg("module") = py::none(), py::arg("first") = 0,
             py::arg("count") = -1,
             "Readings as a numpy record array (error, counts, value): one module's (1-D), or every module's "
             "(reading sets by modules).");

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
