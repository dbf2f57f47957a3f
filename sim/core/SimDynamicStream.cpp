#include "core/SimDynamicStream.h"

#include <algorithm>
#include <limits>

namespace kavrosim {

namespace {

constexpr std::size_t kHeader = 14;
constexpr std::size_t kReadingRoom = 4080;
constexpr auto kAnswerWithin = std::chrono::milliseconds(20);
constexpr std::uint8_t kChecking = 0x40;
constexpr std::uint8_t kEnded = 242;
constexpr std::uint8_t kOverflow = 252;

std::int64_t fullPacket(int modules) { return static_cast<std::int64_t>(kReadingRoom / (3 * modules)); }

// The time one set takes on the bus, in microseconds.
double busMicroseconds(int modules, SimSpeed speed) {
    switch (speed) {
        case SimSpeed::High:
            return modules * 26.0 + 14.0;
        case SimSpeed::UltraHigh:
            return modules * 17.2 + 10.0;
        default:
            return modules * 190.0 + 64.0;
    }
}

}  // namespace

std::uint16_t SimDynamicStream::crc16(const std::uint8_t* data, std::size_t count) {
    std::uint16_t crc = 1;
    for (std::size_t i = 0; i < count; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) ? static_cast<std::uint16_t>((crc >> 1) ^ 0xA001) : crc >> 1;
    }
    return crc;
}

void SimDynamicStream::start(const Bytes& block, SimSpeed speed, bool unthrottled, Clock::time_point now) {
    modules_ = std::clamp<int>(block.size() > 15 ? block[15] : 0, 1, 255);
    const auto collection = static_cast<std::int32_t>(getLe32(block, 7));
    collection_ = collection < 0 ? -1 : collection;
    const std::uint32_t interval = getLe32(block, 11);
    double micros = 250;
    switch (block[6]) {
        case 1:
            micros = 500;
            break;
        case 2:
            micros = 1000;
            break;
        case 3:
            micros = interval;
            break;
        default:
            break;
    }
    // Never faster than the bus carries the collection.
    micros = std::max(micros, busMicroseconds(modules_, speed));
    period_ = std::chrono::nanoseconds(static_cast<std::int64_t>(micros * 1000));
    start_ = now;
    unthrottled_ = unthrottled;
    limit_ = -1;
    taken_ = 0;
    endStatus_ = kEnded;
    haveLast_ = false;
    last_.clear();
    state_ = collection_ == 0 ? State::Ended : State::Streaming;
}

SimDynamicStream::Clock::time_point SimDynamicStream::timeOfSet(std::int64_t set) const {
    return start_ + period_ * set;
}

std::int64_t SimDynamicStream::owedAt(Clock::time_point when) const {
    std::int64_t owed = std::numeric_limits<std::int64_t>::max();
    if (!unthrottled_) owed = when < start_ ? 0 : (when - start_) / period_ + 1;
    if (collection_ >= 0) owed = std::min(owed, collection_);
    if (limit_ >= 0) owed = std::min(owed, limit_);
    return owed;
}

void SimDynamicStream::stop(Clock::time_point now) {
    if (state_ != State::Streaming) return;
    limit_ = std::max(owedAt(now), taken_);
    state_ = State::Stopping;
}

void SimDynamicStream::abort(std::uint8_t status) {
    if (!running()) return;
    limit_ = taken_;
    endStatus_ = status;
    state_ = State::Stopping;
}

Bytes SimDynamicStream::build(std::uint8_t number, bool checking, std::int64_t sets, std::uint8_t endStatus,
                              const WordSource& words) const {
    Bytes packet(kPacketSize, 0);
    const std::size_t readings = static_cast<std::size_t>(sets) * modules_ * 3;
    const std::size_t meaningful = kHeader + readings + (checking ? 2 : 0);
    packet[0] = static_cast<std::uint8_t>(meaningful & 0xFF);
    packet[1] = static_cast<std::uint8_t>(meaningful >> 8);
    packet[2] = endStatus;
    packet[3] = 1;  // bytes 8-11 hold the first set's index
    packet[6] = number;
    const auto first = static_cast<std::uint32_t>(taken_);
    for (int i = 0; i < 4; ++i) packet[8 + i] = static_cast<std::uint8_t>(first >> (8 * i));
    packet[12] = static_cast<std::uint8_t>(sets & 0xFF);
    packet[13] = static_cast<std::uint8_t>(sets >> 8);
    std::size_t at = kHeader;
    for (std::int64_t set = 0; set < sets; ++set) {
        const Clock::time_point when = timeOfSet(taken_ + set);
        for (int module = 0; module < modules_; ++module) {
            const std::uint32_t word = words ? words(module, when) : 0x8000FF;
            packet[at++] = static_cast<std::uint8_t>(word & 0xFF);
            packet[at++] = static_cast<std::uint8_t>((word >> 8) & 0xFF);
            packet[at++] = static_cast<std::uint8_t>((word >> 16) & 0xFF);
        }
    }
    if (checking) {
        const std::uint16_t crc = crc16(packet.data(), at);
        packet[at] = static_cast<std::uint8_t>(crc >> 8);
        packet[at + 1] = static_cast<std::uint8_t>(crc & 0xFF);
    }
    return packet;
}

SimDynamicStream::Packet SimDynamicStream::read(const Bytes& block, Clock::time_point now, const WordSource& words) {
    const bool checking = (block[0] & kChecking) != 0;
    const std::uint8_t number = checking ? block[4] : 0;
    // The same number asks for the same packet again.
    if (checking && haveLast_ && number == lastNumber_) return {last_, now};

    Packet packet;
    packet.ready = now;
    std::int64_t sets = 0;
    std::uint8_t status = 0;
    if (state_ == State::Idle || state_ == State::Ended) {
        status = state_ == State::Ended ? endStatus_ : kEnded;
    } else {
        const std::int64_t full = fullPacket(modules_);
        // A host that fell too far behind: the store overflowed.
        if (!unthrottled_ && limit_ < 0 && owedAt(now) - taken_ > kStore) {
            limit_ = taken_ + kStore;
            endStatus_ = kOverflow;
            state_ = State::Stopping;
        }
        std::int64_t owed = owedAt(now);
        const bool bounded = collection_ >= 0 || limit_ >= 0;
        const std::int64_t last = limit_ >= 0 ? (collection_ >= 0 ? std::min(limit_, collection_) : limit_) : collection_;
        if (owed - taken_ < full && !(bounded && owed >= last)) {
            // Answer when a full packet is there, the run ends, or after 20 ms.
            Clock::time_point when = now + kAnswerWithin;
            when = std::min(when, timeOfSet(taken_ + full - 1));
            if (bounded) when = std::min(when, timeOfSet(std::max<std::int64_t>(last - 1, 0)));
            packet.ready = std::max(when, now);
            owed = owedAt(packet.ready);
        }
        sets = std::min(full, owed - taken_);
        if (bounded && taken_ + sets >= last) {
            status = endStatus_;
            state_ = State::Ended;
        }
    }
    packet.bytes = build(number, checking, sets, status, words);
    taken_ += sets;
    last_ = packet.bytes;
    lastNumber_ = number;
    haveLast_ = true;
    return packet;
}

}  // namespace kavrosim
