// Bus speeds, by the values the controllers and the set-mode numbers use.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kavrosim {

// Low 187500 bit/s, High 1500000 bit/s, UltraHigh 2250000 bit/s.
enum class SimSpeed : std::uint8_t { Low = 0, High = 5, UltraHigh = 6 };

std::string speedName(SimSpeed speed);  // "low", "high", "ultrahigh"
std::optional<SimSpeed> speedFromName(const std::string& name);
std::optional<SimSpeed> speedFromValue(int value);

// Set-mode numbers 40, 41, 42 choose the speed taken at control action 10.
std::optional<SimSpeed> speedFromModeNumber(int mode);

}  // namespace kavrosim
