#include "core/SimSignal.h"

#include <cmath>
#include <stdexcept>
#include <vector>

#include "core/SimText.h"

namespace kavrosim {

namespace {

const double kPi = 3.14159265358979323846;

std::vector<std::string> splitCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::string::size_type start = 0;
    while (true) {
        const auto comma = text.find(',', start);
        parts.push_back(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start));
        if (comma == std::string::npos) return parts;
        start = comma + 1;
    }
}

double number(const std::string& text, const std::string& what) {
    std::size_t used = 0;
    double value = 0;
    try {
        value = std::stod(text, &used);
    } catch (const std::exception&) {
        used = 0;
    }
    if (text.empty() || used != text.size() || !std::isfinite(value)) {
        throw std::invalid_argument("signal " + what + " '" + text + "' is not a number");
    }
    return value;
}

void requirePeriod(double period) {
    if (!(period > 0)) throw std::invalid_argument("signal period must be above 0 seconds");
}

}  // namespace

SimSignal::SimSignal() : SimSignal(Shape::Constant, 0, 0, 0) {}

SimSignal::SimSignal(Shape shape, double a, double b, double c)
    : shape_(shape), a_(a), b_(b), c_(c), origin_(Clock::now()) {}

SimSignal SimSignal::constant(double value) { return SimSignal(Shape::Constant, value, 0, 0); }

SimSignal SimSignal::ramp(double from, double to, double periodSeconds) {
    requirePeriod(periodSeconds);
    return SimSignal(Shape::Ramp, from, to, periodSeconds);
}

SimSignal SimSignal::sine(double mean, double amplitude, double periodSeconds) {
    requirePeriod(periodSeconds);
    return SimSignal(Shape::Sine, mean, std::fabs(amplitude), periodSeconds);
}

SimSignal SimSignal::noise(double mean, double amplitude, std::uint64_t seed) {
    SimSignal signal(Shape::Noise, mean, std::fabs(amplitude), 0);
    signal.seed_ = seed;
    signal.generator_.seed(seed);
    return signal;
}

SimSignal SimSignal::parse(const std::string& text) {
    const auto colon = text.find(':');
    const std::string shape = text.substr(0, colon);
    const auto args = colon == std::string::npos ? std::vector<std::string>{} : splitCommas(text.substr(colon + 1));
    auto expect = [&](std::size_t count, const char* form) {
        if (args.size() != count) {
            throw std::invalid_argument("signal '" + text + "' must be written " + form);
        }
    };
    if (shape == "constant") {
        expect(1, "constant:VALUE");
        return constant(number(args[0], "value"));
    }
    if (shape == "ramp") {
        expect(3, "ramp:FROM,TO,PERIOD");
        return ramp(number(args[0], "start"), number(args[1], "end"), number(args[2], "period"));
    }
    if (shape == "sine") {
        expect(3, "sine:MEAN,AMPLITUDE,PERIOD");
        return sine(number(args[0], "mean"), number(args[1], "amplitude"), number(args[2], "period"));
    }
    if (shape == "noise") {
        expect(3, "noise:MEAN,AMPLITUDE,SEED");
        const double seed = number(args[2], "seed");
        if (seed < 0 || seed != std::floor(seed) || seed > 1e15) {
            throw std::invalid_argument("signal seed '" + args[2] + "' must be a whole number from 0");
        }
        return noise(number(args[0], "mean"), number(args[1], "amplitude"), static_cast<std::uint64_t>(seed));
    }
    throw std::invalid_argument("unknown signal '" + text + "' (expected constant, ramp, sine or noise)");
}

std::string SimSignal::text() const {
    switch (shape_) {
        case Shape::Constant:
            return "constant:" + shortNumber(a_);
        case Shape::Ramp:
            return "ramp:" + shortNumber(a_) + "," + shortNumber(b_) + "," + shortNumber(c_);
        case Shape::Sine:
            return "sine:" + shortNumber(a_) + "," + shortNumber(b_) + "," + shortNumber(c_);
        case Shape::Noise:
            return "noise:" + shortNumber(a_) + "," + shortNumber(b_) + "," + std::to_string(seed_);
    }
    return "constant:0";
}

double SimSignal::valueAt(Clock::time_point now) {
    const double t = std::chrono::duration<double>(now - origin_).count();
    switch (shape_) {
        case Shape::Constant:
            return a_;
        case Shape::Ramp: {
            const double phase = t / c_ - std::floor(t / c_);
            return a_ + (b_ - a_) * phase;
        }
        case Shape::Sine:
            return a_ + b_ * std::sin(2 * kPi * t / c_);
        case Shape::Noise: {
            // 53 random bits give a uniform fraction in [0, 1).
            const double unit = static_cast<double>(generator_() >> 11) * (1.0 / 9007199254740992.0);
            return a_ + b_ * (2 * unit - 1);
        }
    }
    return a_;
}

}  // namespace kavrosim
