// Buffered mode of one simulated module. Set-mode 11 arms it to store a
// reading every OTUs x 102.4 µs from control action 1 on; set-mode 21 makes
// it store one reading on each sample trigger (control action 3, or a tick
// of a buffered master). Control action 2 stops the buffering, action 0 ends
// the mode. The host empties the buffer with "Q", at most 120 readings a
// reply. Readings are worked out when someone asks, from the time elapsed.
//
// A buffered master (set-mode 77 with its TxSample, then 75 with 5) sends a
// sample trigger to the bus every TxSample x 40 timing units (4.096 ms a
// unit of TxSample) until set-mode 0 ends its role.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "core/SimBytes.h"

namespace kavrosim {

class SimModule;

// Third-generation probes and digital input/output modules buffer; the
// third-generation encoder input module and second DIOM can be the master.
bool bufferedCapable(const SimModule& module);
bool bufferedMasterCapable(const SimModule& module);

class SimBuffered {
public:
    using Clock = std::chrono::steady_clock;
    enum class Mode { Normal, Sync, Sample };
    enum class State { Idle, Armed, Buffering, Stopped };

    static constexpr std::size_t kDefaultCapacity = 8000;
    static constexpr std::size_t kMostWordsPerReply = 120;
    static constexpr std::chrono::nanoseconds kTimingUnit{102400};
    // The master's tick is TxSample times this many timing units.
    static constexpr int kUnitsPerMasterStep = 40;

    Mode mode() const { return mode_; }
    State state() const { return state_; }
    int otus() const { return otus_; }
    // Readings held, not yet handed out.
    std::size_t held() const { return words_.size(); }
    bool isMaster() const { return master_; }
    int txSample() const { return txSample_; }
    std::size_t capacity() const { return capacity_; }
    // Throws std::invalid_argument for 0 or more than 1000000 readings.
    void setCapacity(std::size_t readings);

    // The buffered set-modes (0, 11, 21, 75, 77); nothing for the others,
    // which the module handles itself.
    std::optional<Bytes> setMode(SimModule& module, unsigned mode, unsigned argument, Clock::time_point now);
    // Broadcast control actions 0 to 3.
    void control(SimModule& module, int action, Clock::time_point now);
    // "Q".
    Bytes readOut(SimModule& module, Clock::time_point now);
    // Reset: back to normal, the buffer and the master role dropped.
    void reset();

    // Brings the bus up to `now` before it carries a command: the readings
    // that sync modules owe, and the ticks of an armed master.
    static void advance(std::vector<SimModule>& modules, Clock::time_point now);

private:
    void take(SimModule& module, Clock::time_point at);
    void catchUpSync(SimModule& module, Clock::time_point until);
    void drop();

    Mode mode_ = Mode::Normal;
    State state_ = State::Idle;
    int otus_ = 0;
    Clock::time_point syncStart_{};
    long long syncTaken_ = 0;
    std::deque<std::uint16_t> words_;
    std::size_t capacity_ = kDefaultCapacity;
    bool fullPending_ = false;  // the next read-out reports BUFFER_FULL

    int txSample_ = 1;
    bool master_ = false;
    Clock::time_point masterStart_{};
    long long ticksIssued_ = 0;
};

}  // namespace kavrosim
