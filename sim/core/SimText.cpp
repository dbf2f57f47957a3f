#include "core/SimText.h"

#include <charconv>
#include <stdexcept>
#include <system_error>

namespace kavrosim {

std::string padText(const std::string& text, std::size_t width) {
    std::string out = text.substr(0, width);
    out.resize(width, ' ');
    return out;
}

std::string fitNumber(double value, std::size_t width) {
    char buffer[64];
    for (int decimals = static_cast<int>(width); decimals >= 0; --decimals) {
        auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
        if (result.ec != std::errc()) continue;
        const std::size_t length = static_cast<std::size_t>(result.ptr - buffer);
        if (length <= width) return std::string(width - length, ' ') + std::string(buffer, length);
    }
    throw std::invalid_argument("the number " + shortNumber(value) + " does not fit in " + std::to_string(width) +
                                " characters");
}

std::string versionText(int firmwareNumber) {
    if (firmwareNumber < 0 || firmwareNumber > 9999) {
        throw std::invalid_argument("firmware number must be from 0 to 9999");
    }
    std::string text = std::to_string(firmwareNumber / 100) + ".";
    const int hundredths = firmwareNumber % 100;
    text += static_cast<char>('0' + hundredths / 10);
    text += static_cast<char>('0' + hundredths % 10);
    return padText(text, 5);
}

std::string shortNumber(double value) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

}  // namespace kavrosim
