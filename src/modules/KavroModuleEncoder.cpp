#include "KavroModuleEncoder.h"

#include "KavroException.h"
#include "KavroNumberText.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "modules/ModuleSettingText.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

KavroModuleEncoder::KavroModuleEncoder(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleEncoder::~KavroModuleEncoder() = default;

void KavroModuleEncoder::setDirection(eDirection direction) {
    if (direction == direction_) return;
    // The direction command reverses the counting direction; it takes no value.
    const KavroValueResult reply = KavroCommands::KavroDirection(config_, address_);
    if (reply.LinkStatus != 0) {
        const int code = static_cast<int>(reply.LinkStatus);
        throw KavroException(code, GetErrorDescriptionInternal(code));
    }
    direction_ = direction;
}

void KavroModuleEncoder::setPreset(double units) {
    const int counts = readType_->ConvertReadingToCounts(units);
    const KavroCheckedValueResult reply =
        KavroCommands::KavroPreset(config_, address_, static_cast<unsigned int>(counts));
    const std::uint32_t code = reply.LinkStatus != 0 ? reply.LinkStatus : reply.ModuleError;
    if (code != 0) throw KavroException(static_cast<int>(code), GetErrorDescriptionInternal(static_cast<int>(code)));
    preset_ = units;
}

void KavroModuleEncoder::LoadXML(std::map<std::string, std::string> settings) {
    KavroModule::LoadXML(settings);
    ApplySetting(settings, "DIRECTION", [this](const std::string& text) { setDirection(eDirection_FromString(text)); });
    // A preset acts on the position the encoder has at that moment; loading
    // keeps the value for the application and does not preset the module.
    ApplySetting(settings, "PRESET_VALUE", [this](const std::string& text) { preset_ = KavroNumberStrToDouble(text); });
    ApplySetting(settings, "REFERENCE_MARK_MODE",
                 [this](const std::string& text) { setReferenceMarkMode(eReferenceMarkMode_FromString(text)); });
    ApplySetting(settings, "REF_ACTION",
                 [this](const std::string& text) { setRefAction(eRefAction_FromString(text)); });
}

void KavroModuleEncoder::SaveXML() {
    KavroModule::SaveXML();
    WriteSetting("Direction", eDirection_ToString(direction_));
    WriteSetting("Preset_Value", FixedText(preset_), false);
    WriteSetting("Reference_Mark_Mode", eReferenceMarkMode_ToString(referenceMarkMode_));
    WriteSetting("Ref_Action", eRefAction_ToString(refAction_));
}

}  // namespace KavroLibrary
