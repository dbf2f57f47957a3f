// Helpers of the end-to-end tests: a network connected to a simulated
// controller on its own loopback address, modules with a known reading, the
// text of a refusal and a stopwatch for the time limits.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "KavroNetworkETHIM.h"
#include "core/KavroSim.h"

namespace e2e {

using namespace std::chrono_literals;

// A probe whose reading stays at `value` millimetres.
inline kavrosim::SimModule probeAt(const std::string& identity, double rangeMm, double value) {
    kavrosim::SimModule probe = kavrosim::SimModule::digitalProbe(identity, rangeMm);
    probe.setSignal(kavrosim::SimSignal::constant(value));
    return probe;
}

// The text of what `action` throws, or "" when it throws nothing.
inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

class Stopwatch {
public:
    std::chrono::milliseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// A simulated Ethernet controller with its modules, served on a free
// loopback address, and a network that has connected to it. Members go in
// reverse: the network resets the bus before the face stops listening.
struct EthernetBench {
    explicit EthernetBench(kavrosim::SimControllerConfig config, const std::vector<kavrosim::SimModule>& modules = {})
        : controller(std::move(config)), face(controller), network(0, "Bench", serve(controller, face, modules)) {
        network.Connect();
    }

    kavrosim::SimController controller;
    kavrosim::SimEthernetFace face;
    KavroLibrary::KavroNetworkETHIM network;

    // Module commands received since the log was last cleared.
    std::vector<kavrosim::SimRequest> moduleCommands() const {
        std::vector<kavrosim::SimRequest> commands;
        for (const kavrosim::SimRequest& request : controller.requestLog()) {
            if (request.kind == kavrosim::SimRequestKind::ModuleCommand) commands.push_back(request);
        }
        return commands;
    }

private:
    // Plugs the modules in and starts listening; the address it listens on.
    static std::string serve(kavrosim::SimController& controller, kavrosim::SimEthernetFace& face,
                             const std::vector<kavrosim::SimModule>& modules) {
        for (const kavrosim::SimModule& module : modules) controller.addModule(module);
        face.start();
        return face.address();
    }
};

}  // namespace e2e
