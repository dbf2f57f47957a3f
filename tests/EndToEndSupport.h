// Helpers of the end-to-end tests, on top of SimNetworkRig: a network
// connected to a simulated controller that holds given modules, and a
// stopwatch for the time limits.
#pragma once

#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "SimNetworkRig.h"

namespace e2e {

using namespace std::chrono_literals;

inline std::unique_ptr<SimNetworkRig> connectedRig(kavrosim::SimControllerConfig config,
                                                   const std::vector<kavrosim::SimModule>& modules = {}) {
    auto rig = std::make_unique<SimNetworkRig>(std::move(config));
    for (const kavrosim::SimModule& module : modules) rig->controller.addModule(module);
    rig->connect();
    return rig;
}

class Stopwatch {
public:
    std::chrono::milliseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace e2e
