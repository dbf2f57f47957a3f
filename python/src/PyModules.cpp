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
#include "KavroModuleWCM.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "PyBindings.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

// The dynamic-master calls every kind that can lead a run overrides.
template <typename Module, typename Class>
void bindDynamicMaster(Class& type) {
    type.def("SetupDynamicMaster", &Module::SetupDynamicMaster, WithoutGil(), py::arg("number_of_modules"),
             py::arg("collection_size"), py::arg("rate"))
        .def("ValidateDynamicMaster", &Module::ValidateDynamicMaster, WithoutGil())
        .def("ClearDynamicMaster", &Module::ClearDynamicMaster, WithoutGil())
        .def("DynamicMasterMode", &Module::DynamicMasterMode)
        .def("setDynamicMasterMode", &Module::setDynamicMasterMode, py::arg("mode"))
        .def("DynamicMasterArmed", &Module::DynamicMasterArmed);
}

}  // namespace

void bindModules(py::module_& m) {
    constexpr auto owned = py::return_value_policy::reference_internal;

    py::class_<KavroModuleStatus>(m, "KavroModuleStatus")
        .def("UpdateStatus", &KavroModuleStatus::UpdateStatus, WithoutGil())
        .def("Status", &KavroModuleStatus::Status)
        .def("ErrorCode", &KavroModuleStatus::ErrorCode)
        .def("ErrorString", &KavroModuleStatus::ErrorString);

    py::class_<KavroModule>(m, "KavroModule")
        .def("AvailableSpeeds", &KavroModule::AvailableSpeeds)
        .def("BufferedCapable", &KavroModule::BufferedCapable)
        .def("BufferedMasterCapable", &KavroModule::BufferedMasterCapable)
        .def("CPUOM", &KavroModule::CPUOM)
        .def("DeviceType", &KavroModule::DeviceType)
        .def("DifferenceModeCapable", &KavroModule::DifferenceModeCapable)
        .def("DynamicCapable", &KavroModule::DynamicCapable)
        .def("Dynamic2Capable", &KavroModule::Dynamic2Capable)
        .def("DynamicMasterCapable", &KavroModule::DynamicMasterCapable)
        .def("HotSwapCapable", &KavroModule::HotSwapCapable)
        .def("GetProbeID", &KavroModule::GetProbeID, WithoutGil())
        .def("LastReadburst_Error", &KavroModule::LastReadburst_Error)
        .def("LastReadburst_InCounts", &KavroModule::LastReadburst_InCounts)
        .def("LastReadburst_InUnitsOfMeasure", &KavroModule::LastReadburst_InUnitsOfMeasure)
        .def("ModuleID", &KavroModule::ModuleID)
        .def("ModuleName", &KavroModule::ModuleName)
        .def("setModuleName", &KavroModule::setModuleName, py::arg("name"))
        .def("ModuleStatus", &KavroModule::ModuleStatus, owned)
        .def("ModuleType", &KavroModule::ModuleType)
        .def("Offset", &KavroModule::Offset)
        .def("KavroGeneration", &KavroModule::KavroGeneration)
        .def("ReadburstCapable", &KavroModule::ReadburstCapable)
        .def("ReadingInCounts", &KavroModule::ReadingInCounts, WithoutGil())
        .def("ReadingInUnits", &KavroModule::ReadingInUnits, WithoutGil())
        .def("RemapIndex", &KavroModule::RemapIndex)
        .def("setRemapIndex", &KavroModule::setRemapIndex, py::arg("index"))
        .def("SpeedAvailable", &KavroModule::SpeedAvailable, py::arg("speed"))
        .def("Stroke", &KavroModule::Stroke)
        .def("Version", &KavroModule::Version)
        .def("UnitsOfMeasure", &KavroModule::UnitsOfMeasure)
        .def("Difference", &KavroModule::Difference, owned)
        .def("Buffered", &KavroModule::Buffered, owned)
        .def("Address", &KavroModule::Address)
        .def("__repr__", [](const KavroModule& module) {
            return "<" + eModuleType_ToString(module.ModuleType()) + " " + module.ModuleID() + " at address " +
                   std::to_string(module.Address()) + ">";
        });

    py::class_<KavroModuleDP, KavroModule>(m, "KavroModuleDP")
        .def("AvailableAveragings", &KavroModuleDP::AvailableAveragings)
        .def("AvailableResolutions", &KavroModuleDP::AvailableResolutions)
        .def("isAverageAvailable", &KavroModuleDP::isAverageAvailable, py::arg("averaging"))
        .def("isResolutionAvailable", &KavroModuleDP::isResolutionAvailable, py::arg("resolution"))
        .def("Averaging", &KavroModuleDP::Averaging)
        .def("readDefaultAveraging", &KavroModuleDP::readDefaultAveraging, WithoutGil())
        .def("setAveraging", &KavroModuleDP::setAveraging, WithoutGil(), py::arg("averaging"))
        .def("Resolution", &KavroModuleDP::Resolution)
        .def("setResolution", &KavroModuleDP::setResolution, WithoutGil(), py::arg("resolution"));

    py::class_<KavroModuleEncoder, KavroModule>(m, "KavroModuleEncoder")
        .def("Direction", &KavroModuleEncoder::Direction)
        .def("setDirection", &KavroModuleEncoder::setDirection, WithoutGil(), py::arg("direction"))
        .def("Preset", &KavroModuleEncoder::Preset)
        .def("setPreset", &KavroModuleEncoder::setPreset, WithoutGil(), py::arg("units"))
        .def("ReferenceMarkMode", &KavroModuleEncoder::ReferenceMarkMode)
        .def("setReferenceMarkMode", &KavroModuleEncoder::setReferenceMarkMode, py::arg("mode"))
        .def("RefAction", &KavroModuleEncoder::RefAction)
        .def("setRefAction", &KavroModuleEncoder::setRefAction, py::arg("action"));
    py::class_<KavroModuleLE, KavroModuleEncoder>(m, "KavroModuleLE");
    py::class_<KavroModuleEIM, KavroModuleEncoder> eim(m, "KavroModuleEIM");
    eim.def("QuadratureMode", &KavroModuleEIM::QuadratureMode)
        .def("setQuadratureMode", &KavroModuleEIM::setQuadratureMode, py::arg("mode"))
        .def("InterfaceType", &KavroModuleEIM::InterfaceType)
        .def("setInterfaceType", &KavroModuleEIM::setInterfaceType, py::arg("type"));
    bindDynamicMaster<KavroModuleEIM>(eim);
    py::class_<KavroModuleLEIM, KavroModuleEIM>(m, "KavroModuleLEIM");

    py::class_<KavroModuleDIOMBase, KavroModule>(m, "KavroModuleDIOMBase")
        .def("PinCount", &KavroModuleDIOMBase::PinCount)
        .def("PinConfig", &KavroModuleDIOMBase::PinConfig, py::arg("pin"))
        .def("setPinConfig", &KavroModuleDIOMBase::setPinConfig, WithoutGil(), py::arg("pin"), py::arg("config"))
        .def("PinState", &KavroModuleDIOMBase::PinState, py::arg("pin"))
        .def("setPinState", &KavroModuleDIOMBase::setPinState, WithoutGil(), py::arg("pin"), py::arg("state"))
        .def("DebounceTime", &KavroModuleDIOMBase::DebounceTime)
        .def("setDebounceTime", &KavroModuleDIOMBase::setDebounceTime, py::arg("time"))
        .def("OutputMode", &KavroModuleDIOMBase::OutputMode)
        .def("setOutputMode", &KavroModuleDIOMBase::setOutputMode, py::arg("mode"));
    py::class_<KavroModuleDIOM, KavroModuleDIOMBase>(m, "KavroModuleDIOM");
    py::class_<KavroModuleDIOM2, KavroModuleDIOMBase> diom2(m, "KavroModuleDIOM2");
    bindDynamicMaster<KavroModuleDIOM2>(diom2);

    py::class_<KavroModuleDIM, KavroModule>(m, "KavroModuleDIM")
        .def("ReadMode", &KavroModuleDIM::ReadMode)
        .def("setReadMode", &KavroModuleDIM::setReadMode, py::arg("mode"))
        .def("UpdateInfo", &KavroModuleDIM::UpdateInfo, WithoutGil());

    py::class_<KavroModuleAGM, KavroModule>(m, "KavroModuleAGM")
        .def("OutputReadingAsPressure", &KavroModuleAGM::OutputReadingAsPressure)
        .def("setOutputReadingAsPressure", &KavroModuleAGM::setOutputReadingAsPressure, WithoutGil(),
             py::arg("pressure"))
        .def("MasterMinReadingInUOM", &KavroModuleAGM::MasterMinReadingInUOM)
        .def("setMasterMinReadingInUOM", &KavroModuleAGM::setMasterMinReadingInUOM, WithoutGil(), py::arg("reading"))
        .def("MasterMaxReadingInUOM", &KavroModuleAGM::MasterMaxReadingInUOM)
        .def("setMasterMaxReadingInUOM", &KavroModuleAGM::setMasterMaxReadingInUOM, WithoutGil(), py::arg("reading"))
        .def("EndBandSizeMicrons", &KavroModuleAGM::EndBandSizeMicrons)
        .def("setEndBandSizeMicrons", &KavroModuleAGM::setEndBandSizeMicrons, WithoutGil(), py::arg("microns"))
        .def("MeasurementMode", &KavroModuleAGM::MeasurementMode)
        .def("setMeasurementMode", &KavroModuleAGM::setMeasurementMode, py::arg("mode"))
        .def("UpdateInfo", &KavroModuleAGM::UpdateInfo, WithoutGil());
    py::class_<KavroModuleAIM, KavroModule>(m, "KavroModuleAIM");

    py::class_<KavroModuleLT, KavroModule>(m, "KavroModuleLT")
        .def("Filter", &KavroModuleLT::Filter)
        .def("setFilter", &KavroModuleLT::setFilter, py::arg("filter"))
        .def("MeasuringRate", &KavroModuleLT::MeasuringRate)
        .def("setMeasuringRate", &KavroModuleLT::setMeasuringRate, py::arg("rate"));
    py::class_<KavroModuleLTA, KavroModuleLT>(m, "KavroModuleLTA");
    py::class_<KavroModuleLTH, KavroModuleLT>(m, "KavroModuleLTH");

    py::class_<KavroModuleWCM, KavroModule>(m, "KavroModuleWCM");
}

}  // namespace kavro_python
