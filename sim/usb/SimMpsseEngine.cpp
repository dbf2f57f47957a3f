#include "usb/SimMpsseEngine.h"

#include <algorithm>

namespace kavrosim {

namespace {

// Instructions the engine knows.
constexpr std::uint8_t kClockBytesOut = 0x10;  // MSB first, out on the rising edge
constexpr std::uint8_t kClockBytesIn = 0x24;   // MSB first, in on the falling edge
constexpr std::uint8_t kSetLowPins = 0x80;
constexpr std::uint8_t kReadLowPins = 0x81;
constexpr std::uint8_t kSetHighPins = 0x82;
constexpr std::uint8_t kReadHighPins = 0x83;
constexpr std::uint8_t kLoopbackOn = 0x84;
constexpr std::uint8_t kLoopbackOff = 0x85;
constexpr std::uint8_t kClockDivisor = 0x86;
constexpr std::uint8_t kSendImmediate = 0x87;
constexpr std::uint8_t kWaitIoHigh = 0x88;
constexpr std::uint8_t kWaitIoLow = 0x89;
constexpr std::uint8_t kDivideBy5Off = 0x8A;
constexpr std::uint8_t kDivideBy5On = 0x8B;
constexpr std::uint8_t kThreePhaseOn = 0x8C;
constexpr std::uint8_t kThreePhaseOff = 0x8D;
constexpr std::uint8_t kAdaptiveOn = 0x96;
constexpr std::uint8_t kAdaptiveOff = 0x97;

// Clock, data out and chip select: the lines the controller listens on.
constexpr std::uint8_t kSpiOutputs = 0x0B;

std::size_t lengthAt(const Bytes& bytes, std::size_t at) {
    return 1 + (static_cast<std::size_t>(bytes[at + 1]) | (static_cast<std::size_t>(bytes[at + 2]) << 8));
}

}  // namespace

void SimMpsseEngine::reset() { *this = SimMpsseEngine(); }

bool SimMpsseEngine::wired() const { return !loopback_ && (lowDirection_ & kSpiOutputs) == kSpiOutputs; }

std::size_t SimMpsseEngine::instructionSize(std::size_t at) const {
    const std::size_t left = pending_.size() - at;
    switch (pending_[at]) {
        case kClockBytesOut:
            if (left < 3) return 0;
            return left < 3 + lengthAt(pending_, at) ? 0 : 3 + lengthAt(pending_, at);
        case kClockBytesIn:
        case kSetLowPins:
        case kSetHighPins:
        case kClockDivisor:
            return left < 3 ? 0 : 3;
        default:
            return 1;
    }
}

void SimMpsseEngine::run(const std::uint8_t* bytes, std::size_t count, SimSpiTarget* target,
                         std::vector<SimTimedBytes>& toHost) {
    pending_.insert(pending_.end(), bytes, bytes + count);
    std::size_t at = 0;
    while (at < pending_.size()) {
        const std::size_t size = instructionSize(at);
        if (size == 0) break;
        execute(at, size, target, toHost);
        at += size;
    }
    pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(at));
}

void SimMpsseEngine::execute(std::size_t at, std::size_t size, SimSpiTarget* target,
                             std::vector<SimTimedBytes>& toHost) {
    const std::uint8_t op = pending_[at];
    const auto now = std::chrono::steady_clock::now();
    switch (op) {
        case kClockBytesOut:
            if (target != nullptr && wired()) target->clockedOut(pending_.data() + at + 3, size - 3);
            return;
        case kClockBytesIn: {
            const std::size_t wanted = lengthAt(pending_, at);
            // Nobody raises the ready line on an unwired channel: the wait
            // before the clock-in never ends and nothing comes back.
            if (target == nullptr || !wired()) return;
            SimTimedBytes in = target->clockIn(wanted);
            if (!in.bytes.empty()) toHost.push_back(std::move(in));
            return;
        }
        case kSetLowPins:
            lowValue_ = pending_[at + 1];
            lowDirection_ = pending_[at + 2];
            return;
        case kSetHighPins:
            highValue_ = pending_[at + 1];
            highDirection_ = pending_[at + 2];
            return;
        case kReadLowPins:
            toHost.push_back({Bytes{lowValue_}, now});
            return;
        case kReadHighPins:
            toHost.push_back({Bytes{highValue_}, now});
            return;
        case kClockDivisor:
            divisor_ = static_cast<unsigned>(pending_[at + 1]) | (static_cast<unsigned>(pending_[at + 2]) << 8);
            return;
        case kLoopbackOn:
        case kLoopbackOff:
            loopback_ = op == kLoopbackOn;
            return;
        case kDivideBy5Off:
        case kDivideBy5On:
            divideBy5_ = op == kDivideBy5On;
            return;
        // The controller's answer is timed by the controller itself, and
        // what is clocked in goes to the host at once.
        case kSendImmediate:
        case kWaitIoHigh:
        case kWaitIoLow:
        case kThreePhaseOn:
        case kThreePhaseOff:
        case kAdaptiveOn:
        case kAdaptiveOff:
            return;
        default:
            toHost.push_back({Bytes{kBadCommand, op}, now});
            return;
    }
}

}  // namespace kavrosim
