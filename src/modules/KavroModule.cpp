#include "KavroModule.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "KavroException.h"
#include "KavroModuleStatus.h"
#include "KavroNumberText.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "links/NetworkConfiguration.h"
#include "modules/ModuleSettingText.h"
#include "network/KavroXmlElement.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

bool isRangeCode(int code) {
    return code == static_cast<int>(eKavroErrors::UnderRange) || code == static_cast<int>(eKavroErrors::OverRange) ||
           code == static_cast<int>(eKavroErrors::OverAndUnderRange);
}

[[noreturn]] void throwModuleError(int code) { throw KavroException(code, GetErrorDescriptionInternal(code)); }

}  // namespace

KavroModule::KavroModule(NetworkConfiguration* config, int address)
    : address_(address),
      config_(config),
      readType_(std::make_unique<KavroReadType>()),
      status_(std::make_unique<KavroModuleStatus>(this)),
      difference_(std::make_unique<ModuleDifference>(this)),
      buffered_(std::make_unique<ModuleBuffered>(this)) {}

KavroModule::~KavroModule() = default;

void KavroModule::setReadType(std::unique_ptr<KavroReadType> readType) {
    if (readType) readType_ = std::move(readType);
}

std::vector<eNetSpeed> KavroModule::AvailableSpeeds() const { return speeds_; }
bool KavroModule::BufferedCapable() const { return bufferedCapable_; }
bool KavroModule::BufferedMasterCapable() const { return bufferedMasterCapable_; }
double KavroModule::CPUOM() const { return readType_->CPUOM; }
std::string KavroModule::DeviceType() const { return StringTrim(readType_->Description); }
bool KavroModule::DifferenceModeCapable() const { return Difference()->Mode() != eDifferenceMode::ModeNone; }
bool KavroModule::DynamicCapable() const { return dynamicCapable_; }
bool KavroModule::Dynamic2Capable() const { return dynamic2Capable_; }
bool KavroModule::DynamicMasterCapable() const { return dynamicMasterCapable_; }
bool KavroModule::HotSwapCapable() const { return hotSwapCapable_; }
std::string KavroModule::ModuleID() const { return readType_->ModuleIdText; }
std::string KavroModule::ModuleName() const { return name_; }
KavroModuleStatus* KavroModule::ModuleStatus() const { return status_.get(); }
eModuleType KavroModule::ModuleType() const { return readType_->ModuleType; }
void KavroModule::setModuleName(std::string name) { name_ = std::move(name); }
double KavroModule::Offset() const { return readType_->Offset; }
eGeneration KavroModule::KavroGeneration() const { return readType_->Generation; }
bool KavroModule::ReadburstCapable() const { return readburstCapable_; }
int KavroModule::RemapIndex() const { return remapIndex_; }
void KavroModule::setRemapIndex(int index) { remapIndex_ = index; }
double KavroModule::Stroke() const { return readType_->Stroke; }
std::string KavroModule::Version() const { return StringTrim(readType_->VersionText); }
std::string KavroModule::UnitsOfMeasure() const { return StringTrim(readType_->Units); }
ModuleDifference* KavroModule::Difference() const { return difference_.get(); }
ModuleBuffered* KavroModule::Buffered() const { return buffered_.get(); }

bool KavroModule::SpeedAvailable(eNetSpeed speed) const {
    const std::vector<eNetSpeed> speeds = AvailableSpeeds();
    return std::find(speeds.begin(), speeds.end(), speed) != speeds.end();
}

int KavroModule::ReadingInCounts() {
    const int operation = config_->ActiveOperation;
    if (operation != OperationIdle) {
        if (operation != OperationDifference) {
            throw std::runtime_error("Cannot perform an kavro read during an kavro operation");
        }
        if (Difference()->Enabled()) {
            throw std::runtime_error("Cannot perform an kavro read during an kavro difference operation");
        }
    }

    int counts = 0;
    int error = 0;
    if (readType_->ReadType == 1) {
        const KavroRead1Result reply = KavroCommands::KavroRead1(config_, address_);
        error = static_cast<int>(reply.LinkStatus != 0 ? reply.LinkStatus : reply.ModuleError);
        counts = reply.Reading;
    } else if (readType_->ReadType == 2) {
        const KavroRead2Result reply = KavroCommands::KavroRead2(config_, address_);
        error = static_cast<int>(reply.LinkStatus != 0 ? reply.LinkStatus : reply.ModuleError);
        counts = static_cast<std::int32_t>(reply.Reading);
    } else {
        throw std::runtime_error("Internal Error: Unknown Read Type");
    }

    readType_->UpdateFullScale();
    status_->errorCode_ = error;
    if (error == static_cast<int>(eKavroErrors::UnderRange)) return 0;
    if (error == static_cast<int>(eKavroErrors::OverRange)) return readType_->FullScale;
    if (error != 0) throwModuleError(error);
    return counts - countOffset_;
}

double KavroModule::ReadingInUnits() { return readType_->Read(ReadingInCounts()); }

void KavroModule::setLastReadburst(bool valid, int error, int counts, double units) {
    lastReadburstValid_ = valid;
    lastReadburstError_ = error;
    lastReadburstCounts_ = counts;
    lastReadburstUnits_ = units;
}

int KavroModule::LastReadburst_Error() const {
    if (!lastReadburstValid_) throw std::runtime_error("No readburst data available.");
    return lastReadburstError_;
}

int KavroModule::LastReadburst_InCounts() const {
    if (!lastReadburstValid_) throw std::runtime_error("No readburst data available.");
    if (lastReadburstError_ != 0 && !isRangeCode(lastReadburstError_)) throwModuleError(lastReadburstError_);
    return lastReadburstCounts_;
}

double KavroModule::LastReadburst_InUnitsOfMeasure() const {
    if (!lastReadburstValid_) throw std::runtime_error("No readburst data available.");
    if (lastReadburstError_ != 0 && !isRangeCode(lastReadburstError_)) throwModuleError(lastReadburstError_);
    return lastReadburstUnits_;
}

std::string KavroModule::GetProbeID() {
    const KavroIdentityResult reply = KavroCommands::KavroGetProbeID(config_, address_);
    if (reply.LinkStatus != 0) throwModuleError(static_cast<int>(reply.LinkStatus));
    return reply.IdentityText();
}

std::string KavroModule::SetupDynamicMaster(int, int, eDynamicRate) {
    return "Unexpected error: Attempt to setup a dynamic master on a module that is not dynamic master capable.\n";
}

std::string KavroModule::ValidateDynamicMaster() { return "This module is not dynamic capable.\n"; }

void KavroModule::ClearDynamicMaster() {}

void KavroModule::LoadXML(std::map<std::string, std::string>) {}

void KavroModule::WriteSetting(const std::string& name, const std::string& value, bool escape) const {
    if (config_->XmlWriter == nullptr) return;
    KavroWriteXmlElement(static_cast<xmlTextWriterPtr>(config_->XmlWriter), name, value, escape);
}

void KavroModule::SaveXML() {
    WriteSetting("Module_Identity", ModuleID());
    // The module's part number: the design the module is built to.
    WriteSetting("Module_Base_ID", StringTrim(readType_->PartNumberText));
    WriteSetting("Module_Name", ModuleName());
    WriteSetting("Module_Type", eModuleType_ToString(ModuleType()));
    WriteSetting("Stroke", FixedText(Stroke()), false);
    WriteSetting("Device_Type", DeviceType());
    WriteSetting("Units_Of_Measurement", UnitsOfMeasure());
}

}  // namespace KavroLibrary
