#include "KavroModuleDP.h"

#include <algorithm>
#include <stdexcept>

#include "KavroException.h"
#include "KavroModuleStatus.h"
#include "ModuleDifference.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "modules/ModuleSettingText.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

// Where a probe keeps its power-up averaging: "M" and the value, low byte first.
constexpr std::uint32_t kDefaultAveragingAddress = 0x801F076;
constexpr eAveraging kFallbackAveraging = eAveraging::average16;

}  // namespace

KavroModuleDP::KavroModuleDP(NetworkConfiguration* config, int address) : KavroModule(config, address) {
    // Bit 11 of the status word: the probe's status has not been read yet.
    status_->status_ = 2048;
    difference_->mode_ = eDifferenceMode::Mode1;
    resolutionScaled_ = true;
}

KavroModuleDP::~KavroModuleDP() = default;

bool KavroModuleDP::isAverageAvailable(eAveraging averaging) const {
    return std::find(averagings_.begin(), averagings_.end(), averaging) != averagings_.end();
}

bool KavroModuleDP::isResolutionAvailable(eResolution resolution) const {
    return std::find(resolutions_.begin(), resolutions_.end(), resolution) != resolutions_.end();
}

void KavroModuleDP::readDefaultAveraging() {
    averaging_ = kFallbackAveraging;
    if (readType_->Legacy) return;  // no get-info answer: no configuration memory either
    const KavroReadMemoryResult reply = KavroCommands::KavroReadMemory(config_, address_, kDefaultAveragingAddress, 2);
    if (reply.LinkStatus != 0 || reply.Reply.size() < 3 || reply.Reply[0] != 'M') return;
    averaging_ = static_cast<eAveraging>(reply.Reply[1] | (reply.Reply[2] << 8));
}

void KavroModuleDP::setAveraging(eAveraging averaging) {
    const KavroValueResult reply =
        KavroCommands::KavroSetMode(config_, address_, eSetModeMode::Averaging, static_cast<int>(averaging));
    if (reply.LinkStatus != 0) {
        const int code = static_cast<int>(reply.LinkStatus);
        throw KavroException(code, GetErrorDescriptionInternal(code));
    }
    averaging_ = averaging;
}

eResolution KavroModuleDP::Resolution() const {
    readType_->UpdateFullScale();
    switch (readType_->ResolutionFactor) {
        case 1:
            return eResolution::res14Bit;
        case 4:
            return eResolution::res16Bit;
        case 16:
            return eResolution::res18Bit;
        default:
            return eResolution::resNone;
    }
}

void KavroModuleDP::setResolution(eResolution resolution) {
    const KavroValueResult reply =
        KavroCommands::KavroSetMode(config_, address_, eSetModeMode::Resolution, static_cast<int>(resolution));
    if (reply.LinkStatus != 0) throw std::runtime_error("Unable to set resolution");
    switch (resolution) {
        case eResolution::res16Bit:
            readType_->ResolutionFactor = 4;
            break;
        case eResolution::res18Bit:
            readType_->ResolutionFactor = 16;
            break;
        default:
            readType_->ResolutionFactor = 1;
            break;
    }
    readType_->UpdateFullScale();
}

void KavroModuleDP::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    ApplySetting(settings, "AVERAGING", [this](const std::string& text) { setAveraging(eAveraging_FromString(text)); });
    ApplySetting(settings, "RESOLUTION",
                 [this](const std::string& text) { setResolution(eResolution_FromString(text)); });
}

void KavroModuleDP::SaveXML() {
    KavroModule::SaveXML();
    WriteSetting("Averaging", eAveraging_ToString(Averaging()));
    WriteSetting("Resolution", eResolution_ToString(Resolution()));
}

}  // namespace KavroLibrary
