#include "core/SimControllerConfig.h"

#include <stdexcept>

#include "core/SimText.h"

namespace kavrosim {

namespace {

SimControllerConfig make(const std::string& identity, const char* type, int firmware, const char* description) {
    SimControllerConfig config;
    config.identity = identity;
    config.partNumber = "P770100A";
    config.model = type;
    config.firmwareNumber = firmware;
    config.typeCode = type;
    config.limitText = "L032";
    config.description = description;
    return config;
}

void requireWidth(const std::string& field, const std::string& text, std::size_t low, std::size_t high) {
    if (text.size() < low || text.size() > high) {
        const std::string width =
            low == high ? std::to_string(low) : std::to_string(low) + " to " + std::to_string(high);
        throw std::invalid_argument("controller " + field + " '" + text + "' must be " + width + " characters");
    }
    for (char c : text) {
        if (c < ' ' || c > '~') throw std::invalid_argument("controller " + field + " must be printable text");
    }
}

}  // namespace

SimControllerConfig SimControllerConfig::ethernet(const std::string& identity) {
    return make(identity, "ETHI", 150, "Simulated ETHIM");
}

SimControllerConfig SimControllerConfig::serial(const std::string& identity) {
    return make(identity, "232I", 160, "Simulated RS232");
}

SimControllerConfig SimControllerConfig::usb(const std::string& identity) {
    return make(identity, "USB2", 150, "Simulated USBIM");
}

SimControllerConfig SimControllerConfig::wireless(const std::string& identity) {
    return make(identity, "WIM2", 160, "Simulated WIM");
}

void SimControllerConfig::validate() const {
    requireWidth("identity", identity, 10, 10);
    requireWidth("part number", partNumber, 8, 8);
    requireWidth("model", model, 0, 4);
    requireWidth("type code", typeCode, 4, 4);
    requireWidth("limit text", limitText, 0, 16);
    requireWidth("description", description, 0, 16);
    if (!firmwareText.empty()) requireWidth("firmware text", firmwareText, 5, 5);
    if (firmwareNumber < 0 || firmwareNumber > 0xFFFF) {
        throw std::invalid_argument("controller firmware number must be from 0 to 65535");
    }
    bool hasLow = false;
    for (SimSpeed speed : speeds) hasLow = hasLow || speed == SimSpeed::Low;
    if (!speeds.empty() && !hasLow) throw std::invalid_argument("every controller offers the speed low");
}

std::vector<SimSpeed> SimControllerConfig::supportedSpeeds() const {
    if (!speeds.empty()) return speeds;
    if ((typeCode == "ETHI" || typeCode == "ETH2" || typeCode == "USB2") && firmwareNumber > 149) {
        return {SimSpeed::Low, SimSpeed::High, SimSpeed::UltraHigh};
    }
    if ((typeCode == "232I" || typeCode == "485I" || typeCode == "WIM2") && firmwareNumber > 150) {
        return {SimSpeed::Low, SimSpeed::High};
    }
    return {SimSpeed::Low};
}

std::string SimControllerConfig::version() const {
    if (!firmwareText.empty()) return padText(firmwareText, 5);
    return versionText(firmwareNumber % 10000);
}

Bytes SimControllerConfig::identityBytes() const {
    Bytes bytes;
    putText(bytes, padText(identity, 10));
    putText(bytes, padText(partNumber, 8));
    putText(bytes, padText(model, 4));
    putText(bytes, version());
    return bytes;
}

Bytes SimControllerConfig::infoBytes() const {
    Bytes bytes;
    putText(bytes, padText(typeCode, 4));
    putLe16(bytes, static_cast<unsigned>(firmwareNumber));
    putText(bytes, padText(limitText, 16));
    putText(bytes, padText(description, 16));
    return bytes;
}

std::string SimControllerConfig::describe() const {
    std::string firmware = version();
    firmware.erase(firmware.find_last_not_of(' ') + 1);
    std::string text =
        typeCode + " controller " + identity + ", firmware " + firmware + ", limit " + limitText + ", speeds";
    for (SimSpeed speed : supportedSpeeds()) text += " " + speedName(speed);
    return text;
}

bool SimControllerConfig::streams() const {
    return typeCode == "ETH2" || (typeCode == "USB2" && firmwareNumber >= 150);
}

}  // namespace kavrosim
