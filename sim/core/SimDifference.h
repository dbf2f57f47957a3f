// Difference tracking of one simulated module. Enabled by "F", started and
// stopped for every enabled module at once by the broadcasts "O" and "H", the
// module samples its signal at its own rate and keeps the smallest and
// largest reading; the word-sized kind also keeps the sum and number of the
// readings. Samples are worked out when someone asks (a read-out or the
// stop), from the time elapsed: no thread runs while a module tracks.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "core/SimBytes.h"

namespace kavrosim {

class SimModule;

// What a module answers to the read-outs: "D" with 16-bit words and range
// markers, or "X" with full 32-bit counts.
enum class SimDifferenceKind { None, Words, Full };

// Probes up to the second generation track words; third-generation probes
// and encoders track full counts; nothing else tracks.
SimDifferenceKind differenceKind(const SimModule& module);

class SimDifference {
public:
    using Clock = std::chrono::steady_clock;
    enum class State { Off, Armed, Running, Stopped };

    static constexpr double kDefaultRate = 1000.0;  // samples a second
    // A word-sized module counts at most this many readings (24 bits).
    static constexpr std::uint32_t kMostReadings = 0xFFFFFF;

    State state() const { return state_; }
    double sampleRate() const { return rate_; }
    // Throws std::invalid_argument outside 1 to 100000 samples a second.
    void setSampleRate(double perSecond);

    // "F": arms the module for the next start.
    Bytes enable(SimModule& module);
    // "O" and "H" for a module that hears them.
    void start(Clock::time_point now);
    void stop(SimModule& module, Clock::time_point now);
    // "D" and "X": the results so far, or at the stop.
    Bytes readWords(SimModule& module, Clock::time_point now);
    Bytes readFull(SimModule& module, Clock::time_point now);
    // An ordinary read: refused while tracking; after a stop it returns the
    // module to normal reading. Nothing means the read goes ahead.
    std::optional<Bytes> ordinaryRead();
    // Reset and clear: difference mode ends.
    void reset();

private:
    void clearResults();
    void catchUp(SimModule& module, Clock::time_point until);
    std::optional<Bytes> refusal(SimModule& module, SimDifferenceKind wanted) const;

    State state_ = State::Off;
    double rate_ = kDefaultRate;
    Clock::time_point start_{};
    long long taken_ = 0;  // samples worked out since the start
    bool anyInside_ = false;
    bool anyUnder_ = false;
    bool anyOver_ = false;
    bool countOverflow_ = false;
    long long min_ = 0;
    long long max_ = 0;
    std::uint64_t sum_ = 0;    // in-range readings only
    std::uint32_t count_ = 0;  // in-range readings only
};

}  // namespace kavrosim
