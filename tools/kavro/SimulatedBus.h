// --sim: the simulated bus inside the tool's process, so that every command
// can be tried without hardware and without starting kavro-sim.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "NetworkChoice.h"

namespace kavrosim {
class SimSession;
}

namespace kavro_tool {

class SimulatedBus {
public:
    // Starts the scenario's controllers (the default scenario when `path` is
    // empty); throws std::runtime_error when it cannot.
    explicit SimulatedBus(const std::string& path);
    ~SimulatedBus();
    SimulatedBus(const SimulatedBus&) = delete;
    SimulatedBus& operator=(const SimulatedBus&) = delete;

    // Where the tool reaches each controller.
    const std::vector<NetworkChoice>& networks() const { return networks_; }

private:
    std::unique_ptr<kavrosim::SimSession> session_;
    void* standIn_ = nullptr;
    std::vector<NetworkChoice> networks_;
};

}  // namespace kavro_tool
