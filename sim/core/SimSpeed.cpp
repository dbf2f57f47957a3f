#include "core/SimSpeed.h"

namespace kavrosim {

std::string speedName(SimSpeed speed) {
    switch (speed) {
        case SimSpeed::Low:
            return "low";
        case SimSpeed::High:
            return "high";
        case SimSpeed::UltraHigh:
            return "ultrahigh";
    }
    return "unknown";
}

std::optional<SimSpeed> speedFromName(const std::string& name) {
    for (SimSpeed speed : {SimSpeed::Low, SimSpeed::High, SimSpeed::UltraHigh}) {
        if (speedName(speed) == name) return speed;
    }
    return std::nullopt;
}

std::optional<SimSpeed> speedFromValue(int value) {
    switch (value) {
        case 0:
            return SimSpeed::Low;
        case 5:
            return SimSpeed::High;
        case 6:
            return SimSpeed::UltraHigh;
        default:
            return std::nullopt;
    }
}

std::optional<SimSpeed> speedFromModeNumber(int mode) {
    switch (mode) {
        case 40:
            return SimSpeed::Low;
        case 41:
            return SimSpeed::High;
        case 42:
            return SimSpeed::UltraHigh;
        default:
            return std::nullopt;
    }
}

}  // namespace kavrosim
