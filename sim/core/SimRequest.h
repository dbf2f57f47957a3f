// A request as a face decoded it from the wire, and the controller's answer
// before the face frames it. Nothing here depends on the link that carries
// them.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "core/SimBytes.h"

namespace kavrosim {

enum class SimRequestKind {
    ModuleCommand,
    Identify,
    GetInfo,
    SetSpeed,
    Idle,
    DynamicStart,
    DynamicRead,
    DynamicStop,
    Unknown,
};

// "module", "identify", "get-info", "set-speed", "idle", "dynamic-start",
// "dynamic-read", "dynamic-stop", "unknown".
std::string requestKindName(SimRequestKind kind);

struct SimRequest {
    SimRequestKind kind = SimRequestKind::Unknown;
    Bytes raw;               // the request's bytes exactly as they arrived
    int type = 0;            // module command type: 0 known reply length, 1 no reply, 2 length not known
    int replyLength = 0;     // the reply length the host asked for
    bool longReply = false;  // the host expects a 16-bit reply length
    Bytes command;           // module command: code, address or 0x00, payload
    int speedValue = 0;      // set speed: 0 Low, 5 High, 6 UltraHigh
    int baudIndex = 0;       // set speed on a serial line: the line's baud index
    Bytes block;             // dynamic requests: the 20-byte block
    std::chrono::steady_clock::time_point received{};

    std::uint8_t code() const { return command.empty() ? 0 : command[0]; }
    // One line for people and test failure messages.
    std::string describe() const;
};

struct SimAnswer {
    enum class Action {
        Reply,   // frame status and data
        Silent,  // write nothing
        Close,   // drop the connection
    };
    Action action = Action::Reply;
    std::uint8_t status = 0;  // 0 good, 255 no module answered
    // A module command: the module's reply bytes. Identify: the 27 identity
    // bytes. Get info: type (4), firmware number (2), limit text (16),
    // description (16). A dynamic read: the whole packet.
    Bytes data;
    std::chrono::milliseconds delay{0};  // wait before answering
    std::optional<std::size_t> cutAt;    // send only this many bytes of the frame

    std::string describe() const;
};

}  // namespace kavrosim
