// Modules: the base class with its readings, status and capabilities, and
// one class per kind, which Python sees as the module's own class. Modules
// belong to their network; a Python module object keeps its network alive.
#include <pybind11/stl.h>

#include "KavroModule.h"
#include "KavroModuleAGM.h"
#include "KavroModuleAIM.h"
#include "KavroModuleDIM.h"
#include "KavroModuleDIOM.h"
#include "KavroModuleDIOM2.h"
#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroModuleLE.h"
#include "KavroModuleLEIM.h"
#include "KavroModuleLT.h"
#include "KavroModuleLTA.h"
#include "KavroModuleLTH.h"
#include "KavroModuleStatus.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "PyBindings.h"
#include "PyModuleGuard.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

// The dynamic-master calls every kind that can lead a run overrides.
template <typename Module, typename Class>
void bindDynamicMaster(Class& type) {
    type.def("SetupDynamicMaster", onNetwork(&Module::SetupDynamicMaster), WithoutGil(), py::arg("number_of_modules"),
             py::arg("collection_size"), py::arg("rate"))
        .def("ValidateDynamicMaster", onNetwork(&Module::ValidateDynamicMaster), WithoutGil())
        .def("ClearDynamicMaster", onNetwork(&Module::ClearDynamicMaster), WithoutGil())
        .def("DynamicMasterMode", onNetwork(&Module::DynamicMasterMode))
        .def("setDynamicMasterMode", onNetwork(&Module::setDynamicMasterMode), py::arg("mode"))
        .def("DynamicMasterArmed", onNetwork(&Module::DynamicMasterArmed));
}

}  // namespace

void bindModules(py::module_& m) {
    constexpr auto owned = py::return_value_policy::reference_internal;

    py::class_<KavroModuleStatus>(m, "KavroModuleStatus")
        .def("UpdateStatus", onNetwork(&KavroModuleStatus::UpdateStatus), WithoutGil())
        .def("Status", onNetwork(&KavroModuleStatus::Status))
        .def("ErrorCode", onNetwork(&KavroModuleStatus::ErrorCode))
        .def("ErrorString", onNetwork(&KavroModuleStatus::ErrorString));

    py::class_<KavroModule>(m, "KavroModule")
        .def("AvailableSpeeds", onNetwork(&KavroModule::AvailableSpeeds))
        .def("BufferedCapable", onNetwork(&KavroModule::BufferedCapable))
        .def("BufferedMasterCapable", onNetwork(&KavroModule::BufferedMasterCapable))
        .def("CPUOM", onNetwork(&KavroModule::CPUOM))
        .def("DeviceType", onNetwork(&KavroModule::DeviceType))
        .def("DifferenceModeCapable", onNetwork(&KavroModule::DifferenceModeCapable))
        .def("DynamicCapable", onNetwork(&KavroModule::DynamicCapable))
        .def("Dynamic2Capable", onNetwork(&KavroModule::Dynamic2Capable))
        .def("DynamicMasterCapable", onNetwork(&KavroModule::DynamicMasterCapable))
        .def("HotSwapCapable", onNetwork(&KavroModule::HotSwapCapable))
        .def("GetProbeID", onNetwork(&KavroModule::GetProbeID), WithoutGil())
        .def("LastReadburst_Error", onNetwork(&KavroModule::LastReadburst_Error))
        .def("LastReadburst_InCounts", onNetwork(&KavroModule::LastReadburst_InCounts))
        .def("LastReadburst_InUnitsOfMeasure", onNetwork(&KavroModule::LastReadburst_InUnitsOfMeasure))
        .def("ModuleID", onNetwork(&KavroModule::ModuleID))
        .def("ModuleName", onNetwork(&KavroModule::ModuleName))
        .def("setModuleName", onNetwork(&KavroModule::setModuleName), py::arg("name"))
        .def("ModuleStatus", part(&KavroModule::ModuleStatus), owned)
        .def("ModuleType", onNetwork(&KavroModule::ModuleType))
        .def("Offset", onNetwork(&KavroModule::Offset))
        .def("KavroGeneration", onNetwork(&KavroModule::KavroGeneration))
        .def("ReadburstCapable", onNetwork(&KavroModule::ReadburstCapable))
        .def("ReadingInCounts", onNetwork(&KavroModule::ReadingInCounts), WithoutGil())
        .def("ReadingInUnits", onNetwork(&KavroModule::ReadingInUnits), WithoutGil())
        .def("RemapIndex", onNetwork(&KavroModule::RemapIndex))
        .def("setRemapIndex", onNetwork(&KavroModule::setRemapIndex), py::arg("index"))
        .def("SpeedAvailable", onNetwork(&KavroModule::SpeedAvailable), py::arg("speed"))
        .def("Stroke", onNetwork(&KavroModule::Stroke))
        .def("Version", onNetwork(&KavroModule::Version))
        .def("UnitsOfMeasure", onNetwork(&KavroModule::UnitsOfMeasure))
        .def("Difference", part(&KavroModule::Difference), owned)
        .def("Buffered", part(&KavroModule::Buffered), owned)
        .def("Address", onNetwork(&KavroModule::Address))
        .def("__repr__", [](const KavroModule& module) {
            return "<" + eModuleType_ToString(module.ModuleType()) + " " + module.ModuleID() + " at address " +
                   std::to_string(module.Address()) + ">";
        });

    py::class_<KavroModuleDP, KavroModule>(m, "KavroModuleDP")
        .def("AvailableAveragings", onNetwork(&KavroModuleDP::AvailableAveragings))
        .def("AvailableResolutions", onNetwork(&KavroModuleDP::AvailableResolutions))
        .def("isAverageAvailable", onNetwork(&KavroModuleDP::isAverageAvailable), py::arg("averaging"))
        .def("isResolutionAvailable", onNetwork(&KavroModuleDP::isResolutionAvailable), py::arg("resolution"))
        .def("Averaging", onNetwork(&KavroModuleDP::Averaging))
        .def("readDefaultAveraging", onNetwork(&KavroModuleDP::readDefaultAveraging), WithoutGil())
        .def("setAveraging", onNetwork(&KavroModuleDP::setAveraging), WithoutGil(), py::arg("averaging"))
        .def("Resolution", onNetwork(&KavroModuleDP::Resolution))
        .def("setResolution", onNetwork(&KavroModuleDP::setResolution), WithoutGil(), py::arg("resolution"));

    py::class_<KavroModuleEncoder, KavroModule>(m, "KavroModuleEncoder")
        .def("Direction", onNetwork(&KavroModuleEncoder::Direction))
        .def("setDirection", onNetwork(&KavroModuleEncoder::setDirection), WithoutGil(), py::arg("direction"))
        .def("Preset", onNetwork(&KavroModuleEncoder::Preset))
        .def("setPreset", onNetwork(&KavroModuleEncoder::setPreset), WithoutGil(), py::arg("units"))
        .def("ReferenceMarkMode", onNetwork(&KavroModuleEncoder::ReferenceMarkMode))
        .def("setReferenceMarkMode", onNetwork(&KavroModuleEncoder::setReferenceMarkMode), py::arg("mode"))
        .def("RefAction", onNetwork(&KavroModuleEncoder::RefAction))
        .def("setRefAction", onNetwork(&KavroModuleEncoder::setRefAction), py::arg("action"));
    py::class_<KavroModuleLE, KavroModuleEncoder>(m, "KavroModuleLE");
    py::class_<KavroModuleEIM, KavroModuleEncoder> eim(m, "KavroModuleEIM");
    eim.def("QuadratureMode", onNetwork(&KavroModuleEIM::QuadratureMode))
        .def("setQuadratureMode", onNetwork(&KavroModuleEIM::setQuadratureMode), py::arg("mode"))
        .def("InterfaceType", onNetwork(&KavroModuleEIM::InterfaceType))
        .def("setInterfaceType", onNetwork(&KavroModuleEIM::setInterfaceType), py::arg("type"));
    bindDynamicMaster<KavroModuleEIM>(eim);
    py::class_<KavroModuleLEIM, KavroModuleEIM>(m, "KavroModuleLEIM");

    py::class_<KavroModuleDIOMBase, KavroModule>(m, "KavroModuleDIOMBase")
        .def("PinCount", onNetwork(&KavroModuleDIOMBase::PinCount))
        .def("PinConfig", onNetwork(&KavroModuleDIOMBase::PinConfig), py::arg("pin"))
        .def("setPinConfig", onNetwork(&KavroModuleDIOMBase::setPinConfig), WithoutGil(), py::arg("pin"),
             py::arg("config"))
        .def("PinState", onNetwork(&KavroModuleDIOMBase::PinState), py::arg("pin"))
        .def("setPinState", onNetwork(&KavroModuleDIOMBase::setPinState), WithoutGil(), py::arg("pin"),
             py::arg("state"))
        .def("DebounceTime", onNetwork(&KavroModuleDIOMBase::DebounceTime))
        .def("setDebounceTime", onNetwork(&KavroModuleDIOMBase::setDebounceTime), py::arg("time"))
        .def("OutputMode", onNetwork(&KavroModuleDIOMBase::OutputMode))
        .def("setOutputMode", onNetwork(&KavroModuleDIOMBase::setOutputMode), py::arg("mode"));
    py::class_<KavroModuleDIOM, KavroModuleDIOMBase>(m, "KavroModuleDIOM");
    py::class_<KavroModuleDIOM2, KavroModuleDIOMBase> diom2(m, "KavroModuleDIOM2");
    bindDynamicMaster<KavroModuleDIOM2>(diom2);

    py::class_<KavroModuleDIM, KavroModule>(m, "KavroModuleDIM")
        .def("ReadMode", onNetwork(&KavroModuleDIM::ReadMode))
        .def("setReadMode", onNetwork(&KavroModuleDIM::setReadMode), py::arg("mode"))
        .def("UpdateInfo", onNetwork(&KavroModuleDIM::UpdateInfo), WithoutGil());

    py::class_<KavroModuleAGM, KavroModule>(m, "KavroModuleAGM")
        .def("OutputReadingAsPressure", onNetwork(&KavroModuleAGM::OutputReadingAsPressure))
        .def("setOutputReadingAsPressure", onNetwork(&KavroModuleAGM::setOutputReadingAsPressure), WithoutGil(),
             py::arg("pressure"))
        .def("MasterMinReadingInUOM", onNetwork(&KavroModuleAGM::MasterMinReadingInUOM))
        .def("setMasterMinReadingInUOM", onNetwork(&KavroModuleAGM::setMasterMinReadingInUOM), WithoutGil(),
             py::arg("reading"))
        .def("MasterMaxReadingInUOM", onNetwork(&KavroModuleAGM::MasterMaxReadingInUOM))
        .def("setMasterMaxReadingInUOM", onNetwork(&KavroModuleAGM::setMasterMaxReadingInUOM), WithoutGil(),
             py::arg("reading"))
        .def("EndBandSizeMicrons", onNetwork(&KavroModuleAGM::EndBandSizeMicrons))
        .def("setEndBandSizeMicrons", onNetwork(&KavroModuleAGM::setEndBandSizeMicrons), WithoutGil(),
             py::arg("microns"))
        .def("MeasurementMode", onNetwork(&KavroModuleAGM::MeasurementMode))
        .def("setMeasurementMode", onNetwork(&KavroModuleAGM::setMeasurementMode), py::arg("mode"))
        .def("UpdateInfo", onNetwork(&KavroModuleAGM::UpdateInfo), WithoutGil());
    py::class_<KavroModuleAIM, KavroModule>(m, "KavroModuleAIM");

    py::class_<KavroModuleLT, KavroModule>(m, "KavroModuleLT")
        .def("Filter", onNetwork(&KavroModuleLT::Filter))
        .def("setFilter", onNetwork(&KavroModuleLT::setFilter), py::arg("filter"))
        .def("MeasuringRate", onNetwork(&KavroModuleLT::MeasuringRate))
        .def("setMeasuringRate", onNetwork(&KavroModuleLT::setMeasuringRate), py::arg("rate"));
    py::class_<KavroModuleLTA, KavroModuleLT>(m, "KavroModuleLTA");
    py::class_<KavroModuleLTH, KavroModuleLT>(m, "KavroModuleLTH");
}

}  // namespace kavro_python
