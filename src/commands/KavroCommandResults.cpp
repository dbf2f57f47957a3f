// Helper methods of the command result records.
#include <cstring>

#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

// The 10 identity characters, or "" when none were taken (a real identity is
// printable, so all-zero means the record was never filled).
std::string identityText(const char* first8, const char* last2) {
    std::string text = std::string(first8, 8) + std::string(last2, 2);
    for (char c : text) {
        if (c != '\0') return text;
    }
    return std::string();
}

}  // namespace

std::string KavroIdentityResult::IdentityText() const { return identityText(Identity, IdentitySuffix); }

std::string KavroIdentifyResult::IdentityText() const { return identityText(Identity, IdentitySuffix); }

std::string KavroIdentifyResult::PartNumberText() const { return std::string(PartNumber, sizeof PartNumber); }

std::string KavroIdentifyResult::VersionText() const {
    return std::string(Version, sizeof Version) + std::string(VersionSuffix, sizeof VersionSuffix);
}

int KavroIdentifyResult::ProbeRangeValue() const { return ProbeRange[0] | (ProbeRange[1] << 8); }

KavroGetInfoResult::KavroGetInfoResult() { std::memset(InfoText, ' ', sizeof InfoText); }

std::string KavroGetInfoResult::TypeTextString() const { return std::string(TypeText, sizeof TypeText); }

std::string KavroGetInfoResult::InfoTextString() const { return std::string(InfoText, sizeof InfoText); }

std::string KavroPingResult::IdentityText() const {
    char suffix[2];
    std::memcpy(suffix, &IdentitySuffix, sizeof suffix);
    return identityText(Identity, suffix);
}

}  // namespace KavroLibrary
