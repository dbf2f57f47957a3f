// Faults a test can script into a controller: for the next N requests
// (optionally only module commands with one command code) answer wrongly,
// late or not at all.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "core/SimRequest.h"

namespace kavrosim {

enum class SimFaultKind {
    DropReply,        // nothing at all goes back (the module still acts)
    ErrorReply,       // the module refuses with "!" and the error byte `value`
    WrongEcho,        // the reply's first byte is neither the echo nor "!"
    ShortReply,       // the module's reply is cut to `value` bytes, framed as such
    Delay,            // the answer goes out `value` ms late
    CloseConnection,  // the controller drops the connection instead of acting
    CutFrame,         // only the first `value` bytes of the framed answer go out
    // Dynamic packets (aimed with on(SimRequestKind::DynamicRead)):
    CorruptCrc,   // the packet's CRC is wrong (a request with the same number gets it right)
    BadLength,    // the packet claims more readings than a packet holds
    EmptyPacket,  // a packet without readings, though readings are due
    EndStatus,    // the stream ends now with end status `value`
};

std::string faultKindName(SimFaultKind kind);

struct SimFault {
    SimFaultKind kind = SimFaultKind::DropReply;
    int times = 1;  // how many matching requests it hits
    int value = 0;  // error byte, bytes kept, or milliseconds
    SimRequestKind target = SimRequestKind::ModuleCommand;
    std::optional<std::uint8_t> command;  // only module commands with this code
    int skip = 0;                         // matching requests let through before the first hit

    static SimFault dropReply(int times = 1);
    static SimFault errorReply(std::uint8_t errorByte, int times = 1);
    static SimFault wrongEcho(int times = 1);
    static SimFault shortReply(int keptBytes, int times = 1);
    static SimFault delay(std::chrono::milliseconds wait, int times = 1);
    static SimFault closeConnection(int times = 1);
    static SimFault cutFrame(int keptBytes, int times = 1);
    static SimFault corruptCrc(int times = 1);
    static SimFault badLength(int times = 1);
    static SimFault emptyPacket(int times = 1);
    static SimFault endStatus(std::uint8_t status);

    // Narrow the fault: SimFault::dropReply(2).only('L').
    SimFault only(std::uint8_t commandCode) const;
    // Aim it at a controller request instead of module commands.
    SimFault on(SimRequestKind request) const;
    // Let `requests` matching requests through first: closeConnection().on(
    // SimRequestKind::DynamicRead).after(5) drops the link at the sixth packet.
    SimFault after(int requests) const;

    // Without a command code a module-command fault hits only commands that
    // expect a reply; with one it hits that code whatever its type.
    bool matches(const SimRequest& request) const;
    std::string describe() const;
};

// The scripted faults of a controller, first come first served.
class SimFaultList {
public:
    void add(const SimFault& fault);
    void clear() { faults_.clear(); }
    std::size_t size() const { return faults_.size(); }
    // The first fault that matches, counted down once.
    std::optional<SimFault> take(const SimRequest& request);

private:
    std::deque<SimFault> faults_;
};

}  // namespace kavrosim
