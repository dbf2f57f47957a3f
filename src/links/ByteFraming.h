// The byte-oriented framing that the Ethernet and serial interface modules
// share: request frames for module commands, the status-and-length reply
// frame, and the layouts of the controller's identify and get-info answers.
#pragma once

#include <functional>
#include <vector>

#include "links/ControllerReplies.h"
#include "links/ModuleCommand.h"

namespace KavroLibrary {

// Request kinds, the first byte of a frame.
constexpr unsigned char kFrameNoReply = 0x00;
constexpr unsigned char kFrameShortReply = 0x02;
constexpr unsigned char kFrameUnknownReply = 0x0E;
constexpr unsigned char kFrameLongReply = 0x20;
constexpr unsigned char kFrameSetSpeed = 0x0A;
constexpr unsigned char kFrameIdle = 0x10;

// Longest reply length that still fits the short request form.
constexpr int kShortReplyLimit = 250;

// The frame for one module command; empty for a command type the controller
// does not know, so that nothing is written.
std::vector<unsigned char> BuildCommandFrame(const ModuleCommand& command);

// Reads up to `count` bytes into `buffer`, returning how many arrived.
using FrameReader = std::function<int(unsigned char* buffer, int count)>;

struct ReplyFrame {
    ModuleReply Reply;          // Status 255 and no data unless a usable header arrived
    bool DataComplete = false;  // every announced data byte arrived
};

// Reads a reply frame: status, length (one byte, or two high byte first for
// a long reply), then the data. A reply whose first byte is not `echo` (when
// echo is not 0, nor a "!" refusal), or whose data arrived short, is refused: Status 255 and
// Length 0, with the buffer still handed back.
ReplyFrame ReadReplyFrame(const FrameReader& read, unsigned char echo, bool longReply);

// Parse the controller's identify and get-info answers from the `got` bytes
// that arrived. Fields that did not arrive in full are not read.
ControllerIdentifyReply ParseControllerIdentify(const unsigned char* bytes, int got);
ControllerInfoReply ParseControllerInfo(const unsigned char* bytes, int got);

}  // namespace KavroLibrary
