#include "modules/ModuleSettingText.h"

#include <charconv>

#include "KavroNumberText.h"

namespace KavroLibrary {

std::string FixedText(double value) {
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
    if (result.ec != std::errc()) return "0.000000";
    return std::string(buffer, result.ptr);
}

std::string BoolText(bool value) { return value ? "true" : "false"; }

bool BoolFromText(const std::string& text) {
    const std::string upper = StringToUpper(StringTrim(text));
    return upper == "TRUE" || upper == "1";
}

}  // namespace KavroLibrary
