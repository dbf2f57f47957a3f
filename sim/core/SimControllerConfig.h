// What a simulated controller says about itself: the 27-byte identity
// (identity, part number, model, firmware text), the get-info fields (type
// code, firmware number, module limit, description) and its bus speeds.
#pragma once

#include <string>
#include <vector>

#include "core/SimBytes.h"
#include "core/SimSpeed.h"

namespace kavrosim {

struct SimControllerConfig {
    std::string identity;          // exactly 10 characters
    std::string partNumber;        // 8 characters: "P770100A"
    std::string model;             // up to 4 characters
    int firmwareNumber = 150;      // hundredths: 150 is 1.50
    std::string firmwareText;      // 5 characters; empty: made from the firmware number ("1.50 ")
    std::string typeCode;          // "ETHI", "ETH2", "232I", "485I", "USB2", "WIM2"
    std::string limitText;         // up to 16 characters: "L032" allows 32 modules
    std::string description;       // up to 16 characters
    std::vector<SimSpeed> speeds;  // empty: what the type code and firmware offer
    // A dynamic stream ignores its rate and sends every set as soon as it is
    // asked for (benchmarks of the host's side).
    bool unthrottled = false;

    // Typical controllers: an Ethernet one (ETHI, 1.50), a serial one (232I,
    // 1.60, so that it offers High), a USB one (USB2, 1.50) and a wireless
    // interface module (WIM2, 1.60).
    static SimControllerConfig ethernet(const std::string& identity);
    static SimControllerConfig serial(const std::string& identity);
    static SimControllerConfig usb(const std::string& identity);
    static SimControllerConfig wireless(const std::string& identity);

    // Throws std::invalid_argument naming the field that does not fit.
    void validate() const;

    // Low always; Ethernet and USB controllers above firmware 149 add High
    // and UltraHigh, serial and wireless ones above 150 add High; or the
    // list given.
    std::vector<SimSpeed> supportedSpeeds() const;
    // ETH2 controllers and USB2 ones from firmware 1.50 stream dynamic data.
    bool streams() const;
    std::string version() const;  // the 5-character firmware text
    Bytes identityBytes() const;  // 27 bytes: identity, part number, model, firmware text
    Bytes infoBytes() const;      // 38 bytes: type, firmware number (16 bit), limit text, description
    std::string describe() const;
};

}  // namespace kavrosim
