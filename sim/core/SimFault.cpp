#include "core/SimFault.h"

#include <stdexcept>

namespace kavrosim {

namespace {

SimFault make(SimFaultKind kind, int times, int value) {
    if (times < 1) throw std::invalid_argument("a fault must hit at least one request");
    if (value < 0) throw std::invalid_argument("a fault's value cannot be negative");
    SimFault fault;
    fault.kind = kind;
    fault.times = times;
    fault.value = value;
    return fault;
}

}  // namespace

std::string faultKindName(SimFaultKind kind) {
    switch (kind) {
        case SimFaultKind::DropReply:
            return "drop";
        case SimFaultKind::ErrorReply:
            return "error";
        case SimFaultKind::WrongEcho:
            return "wrong-echo";
        case SimFaultKind::ShortReply:
            return "short";
        case SimFaultKind::Delay:
            return "delay";
        case SimFaultKind::CloseConnection:
            return "close";
        case SimFaultKind::CutFrame:
            return "cut";
        case SimFaultKind::CorruptCrc:
            return "bad-crc";
        case SimFaultKind::BadLength:
            return "bad-length";
        case SimFaultKind::EmptyPacket:
            return "empty-packet";
        case SimFaultKind::EndStatus:
            return "end-status";
    }
    return "unknown";
}

SimFault SimFault::dropReply(int times) { return make(SimFaultKind::DropReply, times, 0); }
SimFault SimFault::errorReply(std::uint8_t errorByte, int times) {
    return make(SimFaultKind::ErrorReply, times, errorByte);
}
SimFault SimFault::wrongEcho(int times) { return make(SimFaultKind::WrongEcho, times, 0); }
SimFault SimFault::shortReply(int keptBytes, int times) { return make(SimFaultKind::ShortReply, times, keptBytes); }
SimFault SimFault::delay(std::chrono::milliseconds wait, int times) {
    return make(SimFaultKind::Delay, times, static_cast<int>(wait.count()));
}
SimFault SimFault::closeConnection(int times) { return make(SimFaultKind::CloseConnection, times, 0); }
SimFault SimFault::cutFrame(int keptBytes, int times) { return make(SimFaultKind::CutFrame, times, keptBytes); }

// The packet faults are the dynamic read's.
SimFault SimFault::corruptCrc(int times) {
    return make(SimFaultKind::CorruptCrc, times, 0).on(SimRequestKind::DynamicRead);
}
SimFault SimFault::badLength(int times) { return make(SimFaultKind::BadLength, times, 0).on(SimRequestKind::DynamicRead); }
SimFault SimFault::emptyPacket(int times) {
    return make(SimFaultKind::EmptyPacket, times, 0).on(SimRequestKind::DynamicRead);
}
SimFault SimFault::endStatus(std::uint8_t status) {
    return make(SimFaultKind::EndStatus, 1, status).on(SimRequestKind::DynamicRead);
}

SimFault SimFault::after(int requests) const {
    if (requests < 0) throw std::invalid_argument("a fault cannot wait for fewer than no requests");
    SimFault later = *this;
    later.skip = requests;
    return later;
}

SimFault SimFault::only(std::uint8_t commandCode) const {
    SimFault narrowed = *this;
    narrowed.target = SimRequestKind::ModuleCommand;
    narrowed.command = commandCode;
    return narrowed;
}

SimFault SimFault::on(SimRequestKind request) const {
    SimFault aimed = *this;
    aimed.target = request;
    if (request != SimRequestKind::ModuleCommand) aimed.command.reset();
    return aimed;
}

bool SimFault::matches(const SimRequest& request) const {
    if (request.kind != target) return false;
    if (target != SimRequestKind::ModuleCommand) return true;
    if (command) return request.code() == *command;
    return request.type != 1;
}

std::string SimFault::describe() const {
    std::string text = faultKindName(kind);
    if (kind == SimFaultKind::ErrorReply || kind == SimFaultKind::ShortReply || kind == SimFaultKind::Delay ||
        kind == SimFaultKind::CutFrame || kind == SimFaultKind::EndStatus) {
        text += " " + std::to_string(value);
    }
    text += " x" + std::to_string(times);
    if (target != SimRequestKind::ModuleCommand) text += " on " + requestKindName(target);
    if (command) text += " only '" + std::string(1, static_cast<char>(*command)) + "'";
    if (skip > 0) text += " after " + std::to_string(skip);
    return text;
}

void SimFaultList::add(const SimFault& fault) {
    if (fault.times < 1) throw std::invalid_argument("a fault must hit at least one request");
    faults_.push_back(fault);
}

std::optional<SimFault> SimFaultList::take(const SimRequest& request) {
    for (auto it = faults_.begin(); it != faults_.end(); ++it) {
        if (!it->matches(request)) continue;
        if (it->skip > 0) {
            --it->skip;
            continue;
        }
        SimFault hit = *it;
        if (--it->times == 0) faults_.erase(it);
        return hit;
    }
    return std::nullopt;
}

}  // namespace kavrosim
