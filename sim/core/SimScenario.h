// A scenario file: the controllers to start and the modules on each bus,
// one line each. The format is described in docs/simulator.md and by
// `kavro-sim --help` (scenarioFormatHelp()).
#pragma once

#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/SimControllerConfig.h"
#include "core/SimModule.h"

namespace kavrosim {

// Ethernet and wireless controllers listen on TCP, serial ones on a
// pseudo-terminal; USB ones are served in-process by the stand-in D2XX
// library (sim/usb), never by kavro-sim.
enum class SimFaceKind { Ethernet, Serial, Usb, Wireless };

// The FTDI dual-channel device of a USB interface module as the D2XX device
// list shows it: channel A is wired to the controller, channel B to nothing.
struct SimUsbChannels {
    std::string channelA = "Pellaquin USBIM A";  // description of channel A
    std::string channelB = "Pellaquin USBIM B";  // empty: channel B is not listed
    std::uint32_t flags = 0;                     // channel A's flags; 1: opened by another program
    std::uint32_t chip = 6;                      // D2XX device type; 6 is the dual-channel high-speed chip
    std::string serialNumber;                    // empty: made from the position; the channel letter is appended
};

struct SimScenarioController {
    SimFaceKind face = SimFaceKind::Ethernet;
    std::string address;  // Ethernet, wireless: dotted IPv4; empty for a free loopback address ("auto")
    int port = 10001;     // wireless: the TCP port
    std::string link;     // serial: symbolic link to make to the line, or empty
    SimUsbChannels usb;   // USB only
    SimControllerConfig config;
    std::vector<SimModule> modules;
};

struct SimScenario {
    std::vector<SimScenarioController> controllers;
};

// "FILE:LINE: what is wrong".
class SimScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// `sourceName` names the text in error messages.
SimScenario parseScenario(std::istream& in, const std::string& sourceName);
SimScenario loadScenario(const std::string& path);

// The format in a few lines, for --help.
std::string scenarioFormatHelp();

}  // namespace kavrosim
