// What a simulated module measures: a value in the module's units as a
// function of time on the monotonic clock.
#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <string>

namespace kavrosim {

class SimSignal {
public:
    using Clock = std::chrono::steady_clock;
    enum class Shape { Constant, Ramp, Sine, Noise };

    // The default signal is the constant 0.
    SimSignal();

    static SimSignal constant(double value);
    // A sawtooth from `from` to `to`, restarting every `periodSeconds`.
    static SimSignal ramp(double from, double to, double periodSeconds);
    static SimSignal sine(double mean, double amplitude, double periodSeconds);
    // Uniform in mean +- amplitude; the same seed gives the same sequence
    // of values, read after read.
    static SimSignal noise(double mean, double amplitude, std::uint64_t seed);

    // Reads the text form that `text()` writes: "constant:1.5",
    // "ramp:0,2,10", "sine:1,0.5,2", "noise:1,0.01,42". Throws
    // std::invalid_argument with a message naming what is wrong.
    static SimSignal parse(const std::string& text);

    Shape shape() const { return shape_; }
    std::string text() const;

    // Time is counted from the signal's creation, or from `restartAt`.
    void restartAt(Clock::time_point origin) { origin_ = origin; }

    // Noise advances its generator, hence not const.
    double valueAt(Clock::time_point now);

private:
    SimSignal(Shape shape, double a, double b, double c);

    Shape shape_;
    double a_;  // constant value, ramp start, sine and noise mean
    double b_;  // ramp end, sine and noise amplitude
    double c_;  // ramp and sine period in seconds
    std::uint64_t seed_ = 0;
    std::mt19937_64 generator_;
    Clock::time_point origin_;
};

}  // namespace kavrosim
