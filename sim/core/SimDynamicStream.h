// A controller's dynamic streaming: started by a start block, it takes one
// reading set of the collection's modules every period and answers each read
// request with a packet (docs/design/protocol.md 2.4). Pure: the caller gives
// the time and the modules' words, so a test drives it with a clock of its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "core/SimBytes.h"
#include "core/SimSpeed.h"

namespace kavrosim {

class SimDynamicStream {
public:
    using Clock = std::chrono::steady_clock;
    // The word of the module at bus address `module` + 1 for a set taken at `when`.
    using WordSource = std::function<std::uint32_t(int module, Clock::time_point when)>;

    static constexpr std::size_t kPacketSize = 4096;
    static constexpr std::int64_t kStore = 65536;  // sets the controller holds before it gives up

    struct Packet {
        Bytes bytes;                  // kPacketSize bytes
        Clock::time_point ready;      // when the controller answers
    };

    // Starts a run from the 20-byte start block; `unthrottled` ignores the
    // rate (for benchmarks): every set is there as soon as it is asked for.
    void start(const Bytes& block, SimSpeed speed, bool unthrottled, Clock::time_point now);
    // Answers a 20-byte read request that came at `now`.
    Packet read(const Bytes& block, Clock::time_point now, const WordSource& words);
    // Takes no more sets; what is held still goes out, then end status 242.
    void stop(Clock::time_point now);
    // Ends the stream at once with `status` on the next packet.
    void abort(std::uint8_t status);

    bool running() const { return state_ == State::Streaming || state_ == State::Stopping; }
    int modules() const { return modules_; }
    std::int64_t setsSent() const { return taken_; }
    // Microseconds between sets of the run.
    std::int64_t periodMicroseconds() const { return period_.count() / 1000; }

    // CRC-16 of the packets: reflected 0xA001, seeded with 1.
    static std::uint16_t crc16(const std::uint8_t* data, std::size_t count);

private:
    enum class State { Idle, Streaming, Stopping, Ended };

    std::int64_t owedAt(Clock::time_point when) const;
    Clock::time_point timeOfSet(std::int64_t set) const;
    Bytes build(std::uint8_t number, bool checking, std::int64_t sets, std::uint8_t endStatus,
                const WordSource& words) const;

    State state_ = State::Idle;
    Clock::time_point start_{};
    std::chrono::nanoseconds period_{250000};
    int modules_ = 0;
    std::int64_t collection_ = -1;  // sets per module; -1 until stopped
    std::int64_t limit_ = -1;       // no set beyond this (a stop, an overflow); -1 none
    std::int64_t taken_ = 0;        // sets sent so far
    std::uint8_t endStatus_ = 242;
    bool unthrottled_ = false;
    bool haveLast_ = false;
    std::uint8_t lastNumber_ = 0;
    Bytes last_;
};

}  // namespace kavrosim
