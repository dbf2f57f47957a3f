// Reply records of the controller requests that every link answers.
#pragma once

#include <cstdint>
#include <string>

namespace KavroLibrary {

// The controller's identify answer: 27 bytes in fields of 8, 2, 8, 4, 4, 1.
// Field meanings are documented in docs/design/protocol.md.
struct ControllerIdentifyReply {
    std::int32_t Error = 255;     // 0 success
    char Identity[8] = {};        // identity, first 8 characters
    char IdentitySuffix[2] = {};  // identity, last 2 characters
    char PartNumber[8] = {};
    char Model[4] = {};
    char Version[4] = {};  // firmware version, first 4 characters ("1.18")
    char VersionSuffix[1] = {};

    std::string IdentityText() const {
        return std::string(Identity, sizeof Identity) + std::string(IdentitySuffix, sizeof IdentitySuffix);
    }
    std::string VersionText() const {
        return std::string(Version, sizeof Version) + std::string(VersionSuffix, sizeof VersionSuffix);
    }
    // Copies the 27 identity bytes in field order.
    void setFields(const unsigned char* bytes);
};

// The controller's get-info answer. Texts start as blanks so that a short
// reply leaves blanks.
struct ControllerInfoReply {
    std::int32_t Error = 0;                   // 0 success
    char TypeCode[4] = {' ', ' ', ' ', ' '};  // "USB2", "ETHI", "ETH2", "232I", ...
    std::uint16_t Value = 0;                  // firmware version number in hundredths
    char LimitText[16];                       // "L032" and so on: the module limit
    char DescriptionText[16];

    ControllerInfoReply() {
        for (char& c : LimitText) c = ' ';
        for (char& c : DescriptionText) c = ' ';
    }
    std::string TypeCodeText() const { return std::string(TypeCode, sizeof TypeCode); }
    std::string Limit() const { return std::string(LimitText, sizeof LimitText); }
    std::string Description() const { return std::string(DescriptionText, sizeof DescriptionText); }
};

}  // namespace KavroLibrary
