// The measurement bus behind a controller: its modules in plug order, and
// who answers a module command at the bus's current speed.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "core/SimBytes.h"
#include "core/SimModule.h"
#include "core/SimSpeed.h"

namespace kavrosim {

struct SimBusReply {
    std::optional<Bytes> reply;         // nothing when no module answered
    std::chrono::milliseconds wait{0};  // how long the controller listened before giving up
};

class SimBus {
public:
    using Clock = std::chrono::steady_clock;

    // Validates the module; throws std::invalid_argument for a duplicate
    // identity or contradictory settings.
    void add(SimModule module);
    bool remove(const std::string& identity);
    // Puts `module` where the module with `identity` was; false when there
    // is no such module.
    bool replace(const std::string& identity, SimModule module);
    void clear() { modules_.clear(); }

    SimModule* find(const std::string& identity);
    const SimModule* find(const std::string& identity) const;
    const std::vector<SimModule>& modules() const { return modules_; }
    // One above the highest address in use: where a module that addresses
    // itself on plug-in goes.
    int nextFreeAddress() const;

    // Carries one module command (code, address or 0x00, payload) of the
    // given command type to the modules that hear `speed`.
    SimBusReply carry(int type, const Bytes& command, SimSpeed speed, Clock::time_point now);
    // The module at `address` that hears `speed`, or null.
    SimModule* atAddress(int address, SimSpeed speed);

private:
    SimBusReply dispatch(const Bytes& command, SimSpeed speed, Clock::time_point now);
    SimBusReply notify(SimSpeed speed);
    SimBusReply ping(int slot, SimSpeed speed);
    SimBusReply readBurst(int count, SimSpeed speed, Clock::time_point now);

    std::vector<SimModule> modules_;
};

}  // namespace kavrosim
