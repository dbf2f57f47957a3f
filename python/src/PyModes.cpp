// Difference and buffered modes. A module's buffered read-out comes back as
// one numpy record array per call (fields error, counts, value), not one
// Python object per reading.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "KavroModule.h"
#include "KavroNetwork.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"
#include "PyBindings.h"
#include "PyModuleGuard.h"
#include "PyReadingRecord.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

py::array_t<ReadingRecord> bufferedReadings(const ModuleBuffered& buffered) {
    ensurePart(&buffered);
    registerReadingRecord();
    int length = 0;
    std::unique_ptr<sReadingItem, decltype(&std::free)> items(buffered.GetBufferedDataArray(length), &std::free);
    py::array_t<ReadingRecord> array(length < 0 ? 0 : length);
    ReadingRecord* out = array.mutable_data();
    for (int i = 0; i < length; ++i) {
        out[i] = ReadingRecord::of(items.get()[i]);
    }
    return array;
}

}  // namespace

void bindModes(py::module_& m) {
    py::class_<NetworkDifference>(m, "NetworkDifference")
        .def("Count", onNetworkPart(&NetworkDifference::Count))
        .def("Status", onNetworkPart(&NetworkDifference::Status))
        .def("Start", onNetworkPart(&NetworkDifference::Start), WithoutGil())
        .def("Stop", onNetworkPart(&NetworkDifference::Stop), WithoutGil());

    py::class_<ModuleDifference>(m, "ModuleDifference")
        .def("Mode", onNetwork(&ModuleDifference::Mode))
        .def("ReadingCount", onNetwork(&ModuleDifference::ReadingCount))
        .def("Diff", onNetwork(&ModuleDifference::Diff))
        .def("DiffCounts", onNetwork(&ModuleDifference::DiffCounts))
        .def("Error", onNetwork(&ModuleDifference::Error))
        .def("Enabled", onNetwork(&ModuleDifference::Enabled))
        .def("setEnabled", onNetwork(&ModuleDifference::setEnabled), py::arg("enabled"))
        .def("Max", onNetwork(&ModuleDifference::Max))
        .def("MaxCounts", onNetwork(&ModuleDifference::MaxCounts))
        .def("Min", onNetwork(&ModuleDifference::Min))
        .def("MinCounts", onNetwork(&ModuleDifference::MinCounts))
        .def("Status", onNetwork(&ModuleDifference::Status))
        .def("Sum", onNetwork(&ModuleDifference::Sum))
        .def("SumCounts", onNetwork(&ModuleDifference::SumCounts))
        .def("ReadDifference", onNetwork(&ModuleDifference::ReadDifference), WithoutGil());

    py::class_<NetworkBuffered>(m, "NetworkBuffered")
        .def("EnabledCount", onNetworkPart(&NetworkBuffered::EnabledCount))
        .def("Status", onNetworkPart(&NetworkBuffered::Status))
        .def("MasterIndex", onNetworkPart(&NetworkBuffered::MasterIndex))
        .def("setMasterIndex", onNetworkPart(&NetworkBuffered::setMasterIndex), py::arg("index"))
        .def("SampleCount", onNetworkPart(&NetworkBuffered::SampleCount))
        .def("SyncCount", onNetworkPart(&NetworkBuffered::SyncCount))
        .def("Start", onNetworkPart(&NetworkBuffered::Start), WithoutGil())
        .def("Sample", onNetworkPart(&NetworkBuffered::Sample), WithoutGil())
        .def("Stop", onNetworkPart(&NetworkBuffered::Stop), WithoutGil());

    py::class_<ModuleBuffered>(m, "ModuleBuffered")
        .def("Enabled", onNetwork(&ModuleBuffered::Enabled))
        .def("setEnabled", onNetwork(&ModuleBuffered::setEnabled), py::arg("enabled"))
        .def("Mode", onNetwork(&ModuleBuffered::Mode))
        .def("setMode", onNetwork(&ModuleBuffered::setMode), py::arg("mode"))
        .def("OTUs", onNetwork(&ModuleBuffered::OTUs))
        .def("setOTUs", onNetwork(&ModuleBuffered::setOTUs), py::arg("otus"))
        .def("ReadingInterval", onNetwork(&ModuleBuffered::ReadingInterval))
        .def("setReadingInterval", onNetwork(&ModuleBuffered::setReadingInterval), py::arg("microseconds"))
        .def("ReadingIntervalErrorUs", onNetwork(&ModuleBuffered::ReadingIntervalErrorUs))
        .def("TxSample", onNetwork(&ModuleBuffered::TxSample))
        .def("setTxSample", onNetwork(&ModuleBuffered::setTxSample), py::arg("value"))
        .def("Status", onNetwork(&ModuleBuffered::Status))
        .def("BufferedDataLength", onNetwork(&ModuleBuffered::BufferedDataLength))
        .def("GetBufferedDataArray", &bufferedReadings,
             "The read-out as one numpy record array with the fields error (an eKavroErrors value), "
             "counts and value (in units of measure).");
}

}  // namespace kavro_python
