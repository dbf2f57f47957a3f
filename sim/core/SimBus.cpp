#include "core/SimBus.h"

#include <algorithm>
#include <stdexcept>

namespace kavrosim {

namespace {

// With nobody announcing, the controller listens this long before it
// answers that no module spoke, so that a polling host does not spin.
const std::chrono::milliseconds kNotifyListen{50};

// Two modules answering at once: the controller sees the wired OR of
// their bytes.
Bytes collide(const std::vector<Bytes>& replies) {
    Bytes merged;
    for (const Bytes& reply : replies) {
        if (reply.size() > merged.size()) merged.resize(reply.size(), 0);
        for (std::size_t i = 0; i < reply.size(); ++i) merged[i] |= reply[i];
    }
    return merged;
}

bool pingChecksumHolds(const Bytes& reply) {
    if (reply.size() < 13) return false;
    int sum = 0;
    for (std::size_t i = 1; i <= 10; ++i) sum += static_cast<signed char>(reply[i]);
    const unsigned checksum = (static_cast<unsigned>(reply[11]) << 8) | reply[12];
    return ((static_cast<unsigned>(sum) + checksum) & 0xFFFF) == 0xFFFF;
}

}  // namespace

void SimBus::add(SimModule module) {
    module.validate();
    if (find(module.identity()) != nullptr) {
        throw std::invalid_argument("a module with the identity " + module.identity() + " is already on the bus");
    }
    modules_.push_back(std::move(module));
}

bool SimBus::remove(const std::string& identity) {
    auto found =
        std::find_if(modules_.begin(), modules_.end(), [&](const SimModule& m) { return m.identity() == identity; });
    if (found == modules_.end()) return false;
    modules_.erase(found);
    return true;
}

bool SimBus::replace(const std::string& identity, SimModule module) {
    module.validate();
    auto found =
        std::find_if(modules_.begin(), modules_.end(), [&](const SimModule& m) { return m.identity() == identity; });
    if (found == modules_.end()) return false;
    const SimModule* clash = find(module.identity());
    if (clash != nullptr && clash != &*found) {
        throw std::invalid_argument("a module with the identity " + module.identity() + " is already on the bus");
    }
    *found = std::move(module);
    return true;
}

SimModule* SimBus::find(const std::string& identity) {
    for (SimModule& module : modules_) {
        if (module.identity() == identity) return &module;
    }
    return nullptr;
}

const SimModule* SimBus::find(const std::string& identity) const {
    for (const SimModule& module : modules_) {
        if (module.identity() == identity) return &module;
    }
    return nullptr;
}

int SimBus::nextFreeAddress() const {
    int highest = 0;
    for (const SimModule& module : modules_) highest = std::max(highest, module.address());
    return highest + 1;
}

SimBusReply SimBus::carry(int type, const Bytes& command, SimSpeed speed, Clock::time_point now) {
    if (command.empty()) return {};
    SimBusReply result = dispatch(command, speed, now);
    // A command sent without a reply is carried out, but nobody collects
    // the answer.
    if (type == 1) return {};
    return result;
}

SimBusReply SimBus::dispatch(const Bytes& command, SimSpeed speed, Clock::time_point now) {
    // Buffering goes on between commands; settle it before this one acts.
    SimBuffered::advance(modules_, now);
    const std::uint8_t code = command[0];
    const int second = command.size() > 1 ? command[1] : 0;
    switch (code) {
        case 'R':
        case 'r':
            for (SimModule& module : modules_) {
                if (module.hears(speed)) module.reset();
            }
            return {};
        case 'W': {
            const int action = command.size() > 2 ? command[2] : -1;
            for (SimModule& module : modules_) {
                if (module.hears(speed)) module.control(action, now);
            }
            return {};
        }
        case 'O':
        case 'H':
            for (SimModule& module : modules_) {
                if (!module.hears(speed)) continue;
                if (code == 'O') {
                    module.startDifference(now);
                } else {
                    module.stopDifference(now);
                }
            }
            return {};
        case 'S':
            for (SimModule& module : modules_) {
                if (module.hears(speed) && module.takeAddress(command)) {
                    return {Bytes{'S', static_cast<std::uint8_t>(module.address())}};
                }
            }
            return {};
        case 'N':
            return notify(speed);
        case ':':
            return ping(second, speed);
        case 'T':
            return readBurst(second, speed, now);
        default:
            break;
    }
    // Every other command goes to the modules at its address; address 0
    // is for the broadcasts above, and no module answers it.
    if (second == 0) return {};
    std::vector<Bytes> replies;
    for (SimModule& module : modules_) {
        if (module.hears(speed) && module.address() == second) replies.push_back(module.execute(command, now));
    }
    if (replies.empty()) return {};
    return {replies.size() == 1 ? replies.front() : collide(replies)};
}

SimBusReply SimBus::notify(SimSpeed speed) {
    for (SimModule& module : modules_) {
        if (module.hears(speed) && module.announcing()) {
            module.setAnnouncing(false);
            Bytes reply{'N'};
            putText(reply, module.identity());
            return {reply};
        }
    }
    return {std::nullopt, kNotifyListen};
}

SimBusReply SimBus::ping(int slot, SimSpeed speed) {
    std::vector<Bytes> replies;
    for (const SimModule& module : modules_) {
        if (module.hears(speed) && module.address() == 0 && module.pingSlot() == slot) {
            replies.push_back(module.pingReply());
        }
    }
    if (replies.empty()) return {};
    if (replies.size() == 1) return {replies.front()};
    Bytes merged = collide(replies);
    // Answers that overlap never make a valid checksum.
    if (pingChecksumHolds(merged)) merged[12] ^= 0x01;
    return {merged};
}

SimBusReply SimBus::readBurst(int count, SimSpeed speed, Clock::time_point now) {
    Bytes reply{'T'};
    for (int address = 1; address <= count; ++address) {
        SimModule* target = nullptr;
        for (SimModule& module : modules_) {
            if (module.hears(speed) && module.address() == address && module.generation() >= 3) {
                target = &module;
                break;
            }
        }
        // The burst runs module after module; one that does not take part
        // stalls it, and the controller reports no answer.
        if (target == nullptr) return {};
        const Bytes record = target->burstRecord(now);
        reply.insert(reply.end(), record.begin(), record.end());
    }
    return {reply};
}

SimModule* SimBus::atAddress(int address, SimSpeed speed) {
    for (SimModule& module : modules_) {
        if (module.address() == address && module.hears(speed)) return &module;
    }
    return nullptr;
}

}  // namespace kavrosim
