// The byte-oriented framing that the Ethernet and serial interface modules
// share (the wireless one too): request frames for module commands, the
// status-and-length reply frame, and the controller's own requests.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "KavroEnums.h"
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

// One controller request over a link's byte stream: writes `request`, reads
// up to `count` answer bytes into `answer`, returns how many arrived.
using ControllerExchange =
    std::function<int(const std::vector<unsigned char>& request, unsigned char* answer, int count)>;

// The answers' lengths, which differ per link (Ethernet adds two bytes).
struct ControllerAnswerSizes {
    int Identify;
    int Info;
    int Short;  // set-speed and idle
};

// The controller requests every byte-stream link makes the same way.
ControllerIdentifyReply RequestControllerIdentify(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes);
ControllerInfoReply RequestControllerInfo(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes);
// The controller's status byte, 255 when no answer came. `baudIndex` is
// the line's configured rate (0 where the link has none).
std::uint32_t RequestControllerSpeed(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes,
                                     unsigned char baudIndex, eNetSpeed speed);
// The answer is read and not looked at.
void RequestControllerIdle(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes);

}  // namespace KavroLibrary
