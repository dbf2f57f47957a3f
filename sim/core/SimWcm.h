// The wireless concentrator's side of a simulated WCM module: its
// configuration fields (scan duration, restart, and per slot the tool's type,
// name, identity, connection, battery, channels and configuration mode), the
// multi-channel read "a" and the pass-through commands "d" and "e" to the
// hand tools in its six slots (docs/design/protocol.md 1.9, 1.10, 1.12, 1.13).
//
// A plain value, like SimModule: nothing runs in the background; each command
// works out the state at the moment it arrives.
#pragma once

#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "core/SimBytes.h"
#include "core/SimHandTool.h"

namespace kavrosim {

class SimWcm {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int kSlots = 6;

    SimWcm();

    // Field 2, seconds.
    unsigned scanSeconds() const { return scanSeconds_; }
    void setScanSeconds(unsigned seconds) { scanSeconds_ = seconds; }
    // How long a restart keeps the restart flag set.
    double restartSeconds() const { return restartSeconds_; }
    void setRestartSeconds(double seconds);

    // Slots 0 to 5; an empty slot reports type 0.
    void setTool(int slot, SimHandTool tool);
    void clearTool(int slot);
    SimHandTool* tool(int slot);
    const SimHandTool* tool(int slot) const;

    // Where the host left the slot: configuration mode asked for, and whether
    // the tool is in it at `now`.
    bool configModeRequested(int slot) const { return slots_.at(static_cast<std::size_t>(slot)).configMode; }
    bool inConfigMode(int slot, Clock::time_point now) const;
    SimToolState state(int slot, Clock::time_point now) const;
    bool restarting(Clock::time_point now) const;
    // The last line that reached the tool in a slot, without its line end.
    std::string lastLine(int slot) const { return slots_.at(static_cast<std::size_t>(slot)).lastLine; }

    // The reply to "a", "b", "c", "d" or "e"; nullopt for any other command.
    std::optional<Bytes> execute(const Bytes& command, Clock::time_point now);

    // Lines for people, one per tool.
    std::string describe() const;

private:
    struct Slot {
        std::optional<SimHandTool> tool;
        bool configMode = false;
        Clock::time_point configSince;
        // The reply in flight: its text and when it began to arrive.
        std::string reply;
        bool replying = false;
        Clock::time_point sentAt;
        std::string lastLine;
    };

    double since(Clock::time_point now) const;
    std::optional<Bytes> field(unsigned id, Clock::time_point now);
    Bytes configRead(const Bytes& command, Clock::time_point now);
    Bytes configWrite(const Bytes& command, Clock::time_point now);
    Bytes multiChannelRead(const Bytes& command, Clock::time_point now);
    Bytes passThroughSend(const Bytes& command, Clock::time_point now);
    Bytes passThroughReceive(const Bytes& command, Clock::time_point now);

    Clock::time_point origin_;
    unsigned scanSeconds_ = 5;
    double restartSeconds_ = 2;
    std::optional<Clock::time_point> restartedAt_;
    std::array<Slot, kSlots> slots_;
    std::map<unsigned, Bytes> other_;  // locations that are no field
};

}  // namespace kavrosim
