#include "modules/ModuleIdentification.h"

#include "commands/KavroCommands.h"

namespace KavroLibrary {

int TypeTextDigit(const std::string& typeText, std::size_t position) {
    if (position >= typeText.size()) return 0;
    const char c = typeText[position];
    return (c >= '0' && c <= '9') ? c - '0' : 0;
}

namespace {

// The get-info outcome as the decoder wants it: 0 only for a proper answer.
// A refusal ("!" and an error byte, which lands in the first type-text byte)
// keeps the module's error code; a first-generation module answers NO_CMD.
int getInfoError(const KavroGetInfoResult& info) {
    if (info.LinkStatus != 0) return static_cast<int>(info.LinkStatus);
    if (info.Echo == 'B') return 0;
    if (info.Echo == '!') return 0x2100 | static_cast<unsigned char>(info.TypeText[0]);
    return 255;
}

}  // namespace

void IdentifyModule(NetworkConfiguration* config, int address, const std::string& knownIdentity,
                    KavroReadType& readType) {
    const KavroIdentifyResult identity = KavroCommands::KavroIdentify(config, address);
    if (identity.LinkStatus == 0 && identity.Echo == 'I') {
        readType.SetupIdentify(identity.IdentityText(), identity.PartNumberText(), identity.VersionText(),
                               identity.ProbeRangeValue());
    } else {
        readType.SetupIdentify(knownIdentity, "", "", 0);
    }

    const KavroGetInfoResult info = KavroCommands::KavroGetInfo(config, address);
    const int infoError = getInfoError(info);
    const std::string typeText = info.TypeTextString();
    // Characters 2 and 3 of the type text carry the sub-type and the
    // information parameter ("DP1 " is a laser).
    readType.SetupGetInfo(infoError, typeText, TypeTextDigit(typeText, 2), TypeTextDigit(typeText, 3),
                          info.FirmwareVersion, info.StrokeCode, info.InfoTextString());
    readType.Process();
}

}  // namespace KavroLibrary
