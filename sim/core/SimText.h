// Fixed-width texts of the wire: blank-padded fields and numbers fitted to a
// column, always with '.' as the decimal point.
#pragma once

#include <cstddef>
#include <string>

namespace kavrosim {

// The text cut or blank-padded to exactly `width` characters.
std::string padText(const std::string& text, std::size_t width);

// The value in at most `width` characters with as many decimals as fit,
// right-aligned; throws std::invalid_argument when even the integer part
// does not fit.
std::string fitNumber(double value, std::size_t width);

// The version text of a firmware number in hundredths: 150 gives "1.50 ".
std::string versionText(int firmwareNumber);

// Shortest text of a double that reads back to the same value ("2", "0.5").
std::string shortNumber(double value);

}  // namespace kavrosim
