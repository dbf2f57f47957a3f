#include "core/SimDifference.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/SimModule.h"

namespace kavrosim {

namespace {

const std::uint8_t kNoCommand = 0x03;
const std::uint8_t kDiffNotSet = 0x21;
const std::uint8_t kDiffWaiting = 0x22;
const std::uint8_t kDiffModeNotAvailable = 0x23;
const std::uint8_t kNumberOverflow = 0x24;
const std::uint8_t kDiffRunning = 0x26;
const std::uint8_t kDiffNotAtHighResolution = 0x27;

const std::uint16_t kBelowRangeWord = 0x8000;
const std::uint16_t kAboveRangeWord = 0xFFFF;

// One catch-up works out at most this many samples; a longer gap skips its
// oldest samples (a word-sized module could not count them anyway).
const long long kMostSamplesPerCatchUp = 1LL << 24;

Bytes refuse(std::uint8_t errorByte) { return Bytes{'!', errorByte}; }

}  // namespace

SimDifferenceKind differenceKind(const SimModule& module) {
    switch (module.kind()) {
        case SimKind::DigitalProbe:
            return module.generation() >= 3 ? SimDifferenceKind::Full : SimDifferenceKind::Words;
        case SimKind::LinearEncoder:
        case SimKind::EncoderInput:
            return module.generation() >= 3 ? SimDifferenceKind::Full : SimDifferenceKind::None;
        default:
            return SimDifferenceKind::None;
    }
}

void SimDifference::setSampleRate(double perSecond) {
    if (!(perSecond >= 1.0 && perSecond <= 100000.0)) {
        throw std::invalid_argument("difference sample rate must be from 1 to 100000 a second");
    }
    rate_ = perSecond;
}

void SimDifference::clearResults() {
    taken_ = 0;
    anyInside_ = anyUnder_ = anyOver_ = countOverflow_ = false;
    min_ = max_ = 0;
    sum_ = 0;
    count_ = 0;
}

Bytes SimDifference::enable(SimModule& module) {
    if (differenceKind(module) == SimDifferenceKind::None) return refuse(kDiffModeNotAvailable);
    if (state_ == State::Running) return refuse(kDiffRunning);
    if (module.resolutionBits() != 14) return refuse(kDiffNotAtHighResolution);
    state_ = State::Armed;
    clearResults();
    return Bytes{'F', 0};
}

void SimDifference::start(Clock::time_point now) {
    if (state_ != State::Armed) return;
    state_ = State::Running;
    start_ = now;
    clearResults();
}

void SimDifference::stop(SimModule& module, Clock::time_point now) {
    if (state_ != State::Running) return;
    catchUp(module, now);
    state_ = State::Stopped;
}

void SimDifference::catchUp(SimModule& module, Clock::time_point until) {
    if (until < start_) return;
    const double elapsed = std::chrono::duration<double>(until - start_).count();
    // A sample at the start and one every period after it.
    const long long owed = static_cast<long long>(std::floor(elapsed * rate_)) + 1;
    if (owed - taken_ > kMostSamplesPerCatchUp) {
        taken_ = owed - kMostSamplesPerCatchUp;
        countOverflow_ = true;
    }
    const bool words = differenceKind(module) == SimDifferenceKind::Words;
    for (; taken_ < owed; ++taken_) {
        const auto offset = std::chrono::nanoseconds(std::llround(static_cast<double>(taken_) * 1e9 / rate_));
        const SimReading reading = module.read(start_ + offset);
        if (reading.range == SimReading::Range::Under) {
            anyUnder_ = true;
            continue;
        }
        if (reading.range == SimReading::Range::Over) {
            anyOver_ = true;
            continue;
        }
        if (!anyInside_ || reading.counts < min_) min_ = reading.counts;
        if (!anyInside_ || reading.counts > max_) max_ = reading.counts;
        anyInside_ = true;
        if (!words) continue;
        if (count_ == kMostReadings) {
            countOverflow_ = true;
            taken_ = owed;
            break;
        }
        ++count_;
        sum_ += static_cast<std::uint64_t>(std::max(0LL, reading.counts));
    }
}

std::optional<Bytes> SimDifference::refusal(SimModule& module, SimDifferenceKind wanted) const {
    if (differenceKind(module) != wanted) return refuse(kNoCommand);
    if (state_ == State::Off) return refuse(kDiffNotSet);
    if (state_ == State::Armed) return refuse(kDiffWaiting);
    return std::nullopt;
}

Bytes SimDifference::readWords(SimModule& module, Clock::time_point now) {
    if (auto refused = refusal(module, SimDifferenceKind::Words)) return *refused;
    if (state_ == State::Running) catchUp(module, now);
    if (countOverflow_) return refuse(kNumberOverflow);

    // A reading below the range marks the minimum, one above it the maximum;
    // without any reading inside the range both take the marker there is.
    auto word = [](long long counts) { return static_cast<unsigned>(counts) & 0xFFFF; };
    unsigned low = anyInside_ ? word(min_) : (anyOver_ ? kAboveRangeWord : kBelowRangeWord);
    unsigned high = anyInside_ ? word(max_) : (anyUnder_ ? kBelowRangeWord : kAboveRangeWord);
    if (anyUnder_) low = kBelowRangeWord;
    if (anyOver_) high = kAboveRangeWord;

    Bytes reply{'D'};
    putLe16(reply, low);
    putLe16(reply, high);
    putLe32(reply, static_cast<std::uint32_t>(sum_ & 0xFFFFFFFFu));
    reply.push_back(static_cast<std::uint8_t>((sum_ >> 32) & 0xFF));
    reply.push_back(static_cast<std::uint8_t>(count_ & 0xFF));
    reply.push_back(static_cast<std::uint8_t>((count_ >> 8) & 0xFF));
    reply.push_back(static_cast<std::uint8_t>((count_ >> 16) & 0xFF));
    return reply;
}

Bytes SimDifference::readFull(SimModule& module, Clock::time_point now) {
    if (auto refused = refusal(module, SimDifferenceKind::Full)) return *refused;
    if (state_ == State::Running) catchUp(module, now);

    // Full counts have no markers: a reading outside the range counts as the
    // end of the range it left.
    const long long top = module.fullScaleCounts();
    long long low = anyInside_ ? min_ : (anyOver_ ? top : 0);
    long long high = anyInside_ ? max_ : (anyUnder_ ? 0 : top);
    if (anyUnder_) low = 0;
    if (anyOver_) high = top;

    Bytes reply{'X'};
    putLe32(reply, static_cast<std::uint32_t>(low));
    putLe32(reply, static_cast<std::uint32_t>(high));
    return reply;
}

std::optional<Bytes> SimDifference::ordinaryRead() {
    if (state_ == State::Running) return refuse(kDiffRunning);
    if (state_ == State::Stopped) state_ = State::Off;
    return std::nullopt;
}

void SimDifference::reset() {
    state_ = State::Off;
    clearResults();
}

}  // namespace kavrosim
