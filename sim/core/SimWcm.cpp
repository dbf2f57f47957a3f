#include "core/SimWcm.h"

#include <cmath>
#include <cstring>
#include <stdexcept>

#include "core/SimText.h"

namespace kavrosim {

namespace {

const std::uint8_t kFramingError = 0x0B;
const std::uint8_t kArgumentNotValid = 0x3F;
const std::uint8_t kDeviceSilent = 0xD0;
const std::uint8_t kNoDevice = 0xD1;
const std::uint8_t kCodeNotValid = 0xD2;
const std::uint8_t kUnitNotValid = 0xD3;
const std::uint8_t kNoSuchChannel = 0xD4;
const std::uint8_t kOverflow = 0xD5;

const unsigned kConfigBlock = 32;
const std::size_t kNameWidth = 20;
const std::size_t kMaxText = 128;
const std::size_t kMaxChannels = 12;

// Field ids: the concentrator's own, and per slot (slot + 1) x 1000 + n.
const unsigned kScanField = 2;
const unsigned kRestartField = 6;
enum SlotField : unsigned {
    kType = 2,
    kName = 3,
    kIdentity = 4,
    kState = 6,
    kBattery = 7,
    kValue = 35,
    kText = 47,
    kCount = 61,
    kConfigMode = 91,
    kEntered = 92,
};

// A reply reaches the concentrator 20 ms after the line, two characters a
// millisecond after that: long enough to be read in pieces.
const double kReplyLatencyMs = 20;
const double kCharactersPerMs = 2;

Bytes refuse(std::uint8_t errorByte) { return Bytes{'!', errorByte}; }

Bytes byteField(unsigned value) { return Bytes{static_cast<std::uint8_t>(value & 0xFF)}; }

Bytes wordField(std::uint32_t value) {
    Bytes out;
    putLe32(out, value);
    return out;
}

Bytes textField(const std::string& text) { return Bytes(text.begin(), text.end()); }

}  // namespace

SimWcm::SimWcm() : origin_(Clock::now()) {}

void SimWcm::setRestartSeconds(double seconds) {
    if (!(seconds >= 0) || seconds > 3600) throw std::invalid_argument("restart must be from 0 to 3600 seconds");
    restartSeconds_ = seconds;
}

void SimWcm::setTool(int slot, SimHandTool tool) {
    if (slot < 0 || slot >= kSlots) throw std::invalid_argument("a concentrator has the slots 1 to 6");
    slots_[static_cast<std::size_t>(slot)] = Slot{};
    slots_[static_cast<std::size_t>(slot)].tool = std::move(tool);
}

void SimWcm::clearTool(int slot) {
    if (slot < 0 || slot >= kSlots) throw std::invalid_argument("a concentrator has the slots 1 to 6");
    slots_[static_cast<std::size_t>(slot)] = Slot{};
}

SimHandTool* SimWcm::tool(int slot) {
    if (slot < 0 || slot >= kSlots || !slots_[static_cast<std::size_t>(slot)].tool) return nullptr;
    return &*slots_[static_cast<std::size_t>(slot)].tool;
}

const SimHandTool* SimWcm::tool(int slot) const {
    if (slot < 0 || slot >= kSlots || !slots_[static_cast<std::size_t>(slot)].tool) return nullptr;
    return &*slots_[static_cast<std::size_t>(slot)].tool;
}

double SimWcm::since(Clock::time_point now) const { return std::chrono::duration<double>(now - origin_).count(); }

bool SimWcm::restarting(Clock::time_point now) const {
    return restartedAt_ && std::chrono::duration<double>(now - *restartedAt_).count() < restartSeconds_;
}

SimToolState SimWcm::state(int slot, Clock::time_point now) const {
    const Slot& s = slots_.at(static_cast<std::size_t>(slot));
    if (!s.tool) return SimToolState::NotConnected;
    if (restarting(now)) return SimToolState::Connecting;
    if (s.configMode && s.tool->fault() == SimToolFault::ConnectionError) return SimToolState::Error;
    return s.tool->stateAt(since(now));
}

bool SimWcm::inConfigMode(int slot, Clock::time_point now) const {
    const Slot& s = slots_.at(static_cast<std::size_t>(slot));
    if (!s.tool || !s.configMode || s.tool->fault() == SimToolFault::NeverEntersConfigMode) return false;
    if (state(slot, now) != SimToolState::Connected) return false;
    return std::chrono::duration<double>(now - s.configSince).count() >= s.tool->enterDelay();
}

std::optional<Bytes> SimWcm::execute(const Bytes& command, Clock::time_point now) {
    if (command.empty()) return std::nullopt;
    switch (command[0]) {
        case 'a':
            return multiChannelRead(command, now);
        case 'b':
            return configWrite(command, now);
        case 'c':
            return configRead(command, now);
        case 'd':
            return passThroughSend(command, now);
        case 'e':
            return passThroughReceive(command, now);
        default:
            return std::nullopt;
    }
}

std::optional<Bytes> SimWcm::field(unsigned id, Clock::time_point now) {
    if (id == kScanField) return wordField(scanSeconds_);
    if (id == kRestartField) return byteField(restarting(now) ? 1 : 0);
    const unsigned slotNumber = id / 1000;
    const unsigned n = id % 1000;
    if (slotNumber < 1 || slotNumber > kSlots) return std::nullopt;
    const int slot = static_cast<int>(slotNumber) - 1;
    Slot& s = slots_[slotNumber - 1];
    const SimHandTool* t = tool(slot);
    const std::size_t channels = t ? t->channels().size() : 0;
    if (n >= kValue && n < kValue + kMaxChannels) {
        const std::size_t c = n - kValue;
        if (c >= channels) return wordField(0);
        const double value = s.tool->channels()[c].signal.valueAt(now);
        return wordField(static_cast<std::uint32_t>(static_cast<std::int64_t>(std::llround(value * 1000))));
    }
    if (n >= kText && n < kText + kMaxChannels) {
        const std::size_t c = n - kText;
        return textField(c < channels ? t->channels()[c].text : "");
    }
    switch (n) {
        case kType:
            return byteField(t ? static_cast<unsigned>(t->type()) : 0);
        case kName:
            return textField(padText(t ? t->name() : "", kNameWidth));
        case kIdentity:
            return textField(t ? t->identity() : "");
        case kState:
            return byteField(static_cast<unsigned>(state(slot, now)));
        case kBattery:
            return byteField(t ? static_cast<unsigned>(t->battery()) : 0);
        case kCount:
            return byteField(static_cast<unsigned>(channels));
        case kConfigMode:
            return byteField(s.configMode ? 1 : 0);
        case kEntered:
            return byteField(inConfigMode(slot, now) ? 1 : 0);
        default:
            return std::nullopt;
    }
}

Bytes SimWcm::configRead(const Bytes& command, Clock::time_point now) {
    if (command.size() < 6) return refuse(kFramingError);
    Bytes reply{'c', 0};
    if (getLe16(command, 4) == 0) {
        const unsigned location = getLe16(command, 2);
        std::optional<Bytes> data = field(location, now);
        if (!data) {
            const auto stored = other_.find(location);
            if (stored != other_.end()) data = stored->second;
        }
        if (data) {
            data->resize(std::min<std::size_t>(data->size(), kConfigBlock));
            reply[1] = static_cast<std::uint8_t>(data->size());
            reply.insert(reply.end(), data->begin(), data->end());
        }
    }
    reply.resize(2 + kConfigBlock, 0);
    putLe16(reply, complementSum16(reply, 0, reply.size()));
    return reply;
}

Bytes SimWcm::configWrite(const Bytes& command, Clock::time_point now) {
    if (command.size() < 41) return refuse(kFramingError);
    if (complementSum16(command, 0, 39) != getLe16(command, 39)) return refuse(kFramingError);
    const unsigned count = command[6];
    if (count > kConfigBlock || getLe16(command, 4) != 0) return refuse(kArgumentNotValid);
    const unsigned location = getLe16(command, 2);
    const Bytes data(command.begin() + 7, command.begin() + 7 + count);
    const std::string text(data.begin(), data.end());
    if (location == kRestartField) {
        if (count >= 1 && data[0] == 1) {
            // A restart drops every radio link, configuration modes with them.
            restartedAt_ = now;
            for (Slot& s : slots_) {
                s.configMode = false;
                s.replying = false;
            }
        }
        return Bytes{'b', 0};
    }
    if (location == kScanField) {
        if (count != 4) return refuse(kArgumentNotValid);
        scanSeconds_ = getLe32(data, 0);
        return Bytes{'b', 0};
    }
    const unsigned slotNumber = location / 1000;
    const unsigned n = location % 1000;
    if (slotNumber < 1 || slotNumber > kSlots || !field(location, now)) {
        other_[location] = data;
        return Bytes{'b', 0};
    }
    Slot& s = slots_[slotNumber - 1];
    if (n == kConfigMode) {
        const bool on = count >= 1 && data[0] != 0;
        if (on && !s.configMode) s.configSince = now;
        s.configMode = on;
        if (!on) s.replying = false;
        return Bytes{'b', 0};
    }
    if (!s.tool) return refuse(kNoDevice);
    try {
        if (n == kName) {
            const auto last = text.find_last_not_of(' ');
            s.tool->setName(last == std::string::npos ? "" : text.substr(0, last + 1));
            return Bytes{'b', 0};
        }
        if (n == kIdentity) {
            s.tool->setIdentity(text);
            return Bytes{'b', 0};
        }
    } catch (const std::invalid_argument&) {
        return refuse(kArgumentNotValid);
    }
    return refuse(kArgumentNotValid);  // the other fields are the concentrator's to say
}

Bytes SimWcm::multiChannelRead(const Bytes& command, Clock::time_point now) {
    if (command.size() < 7) return refuse(kFramingError);
    const int slot = command[2];
    const unsigned code = command[3];
    const unsigned mask = command[4] | (static_cast<unsigned>(command[5]) << 8);
    const unsigned unit = command[6];
    SimHandTool* t = tool(slot);
    if (t == nullptr) return refuse(kNoDevice);
    if (state(slot, now) != SimToolState::Connected) return refuse(kDeviceSilent);
    if (code < 1 || code > 4) return refuse(kCodeNotValid);
    if (unit > 2) return refuse(kUnitNotValid);
    const bool fixedPoint = code == 2 || code == 4;

    Bytes records;
    unsigned count = 0;
    for (std::size_t c = 0; c < kMaxChannels; ++c) {
        if ((mask & (1u << c)) == 0) continue;
        ++count;
        std::uint8_t status = 0;
        double value = 0;
        if (c < t->channels().size()) {
            value = t->channels()[c].signal.valueAt(now);
            if (unit == 1) value /= 25.4;
            if (unit == 2) value /= 0.0254;
        } else {
            status = kNoSuchChannel;
        }
        std::uint64_t raw = 0;
        if (fixedPoint) {
            const double scaled = std::round(value * 1e7);
            if (std::fabs(scaled) < 9.2e18) {
                raw = static_cast<std::uint64_t>(static_cast<std::int64_t>(scaled));
            } else if (status == 0) {
                status = kOverflow;
            }
        } else {
            std::memcpy(&raw, &value, sizeof raw);
        }
        records.push_back(static_cast<std::uint8_t>(c + 1));
        records.push_back(status);
        records.push_back(static_cast<std::uint8_t>(unit));
        putLe32(records, static_cast<std::uint32_t>(raw & 0xFFFFFFFFu));
        putLe32(records, static_cast<std::uint32_t>(raw >> 32));
    }
    Bytes reply{'a', static_cast<std::uint8_t>(slot), static_cast<std::uint8_t>(code)};
    putLe16(reply, mask);
    reply.push_back(static_cast<std::uint8_t>(unit));
    reply.push_back(0);
    putLe16(reply, count);
    putLe32(reply, static_cast<std::uint32_t>(std::llround(since(now) * 1000)));
    reply.insert(reply.end(), records.begin(), records.end());
    return reply;
}

Bytes SimWcm::passThroughSend(const Bytes& command, Clock::time_point now) {
    if (command.size() < 4 || command.size() < 4u + command[3]) return refuse(kFramingError);
    const int slot = command[2];
    SimHandTool* t = tool(slot);
    if (t == nullptr) return refuse(kNoDevice);
    if (command[3] > kMaxText) return refuse(kArgumentNotValid);
    // Only a tool in configuration mode listens to lines.
    if (!inConfigMode(slot, now)) return Bytes{'d', 1};
    std::string line(command.begin() + 4, command.begin() + 4 + command[3]);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    Slot& s = slots_[static_cast<std::size_t>(slot)];
    s.lastLine = line;
    s.reply = t->answer(line, now).substr(0, kMaxText);
    s.replying = true;
    s.sentAt = now;
    return Bytes{'d', 0};
}

Bytes SimWcm::passThroughReceive(const Bytes& command, Clock::time_point now) {
    if (command.size() < 3) return refuse(kFramingError);
    const int slot = command[2];
    if (tool(slot) == nullptr) return refuse(kNoDevice);
    const Slot& s = slots_[static_cast<std::size_t>(slot)];
    if (!s.replying) return Bytes{'e', 0, 0};
    const double ms = std::chrono::duration<double, std::milli>(now - s.sentAt).count();
    const double arriving = std::max(0.0, (ms - kReplyLatencyMs) * kCharactersPerMs);
    const std::size_t arrived = std::min(s.reply.size(), static_cast<std::size_t>(arriving));
    const bool complete =
        arrived == s.reply.size() && ms >= kReplyLatencyMs && s.tool->fault() != SimToolFault::ReplyNeverCompletes;
    Bytes reply{'e', static_cast<std::uint8_t>(complete ? 1 : 0), static_cast<std::uint8_t>(arrived)};
    reply.insert(reply.end(), s.reply.begin(), s.reply.begin() + static_cast<std::ptrdiff_t>(arrived));
    return reply;
}

std::string SimWcm::describe() const {
    std::string text;
    for (int slot = 0; slot < kSlots; ++slot) {
        if (const SimHandTool* t = tool(slot)) {
            text += "\n                tool " + std::to_string(slot + 1) + "  " + t->describe();
        }
    }
    return text;
}

}  // namespace kavrosim
