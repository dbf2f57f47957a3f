// A scenario file: the controllers to start and the modules on each bus,
// one line each. The format is described in docs/simulator.md and by
// `kavro-sim --help` (scenarioFormatHelp()).
#pragma once

#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/SimControllerConfig.h"
#include "core/SimModule.h"

namespace kavrosim {

enum class SimFaceKind { Ethernet, Serial };

struct SimScenarioController {
    SimFaceKind face = SimFaceKind::Ethernet;
    std::string address;  // Ethernet: dotted IPv4; empty for a free loopback address ("auto")
    std::string link;     // serial: symbolic link to make to the line, or empty
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
