#include "links/ByteFraming.h"

#include <cstring>

namespace KavroLibrary {

namespace {

// Answer layouts, the same on both links; only the unused tail differs.
constexpr int kAnswerStatus = 0;
constexpr int kIdentityStart = 3;
constexpr int kIdentitySize = 27;
constexpr int kTypeCodeStart = 3;
constexpr int kNumberStart = 7;
constexpr int kLimitStart = 11;
constexpr int kDescriptionStart = 27;
constexpr int kInfoTextSize = 16;

}  // namespace

std::vector<unsigned char> BuildCommandFrame(const ModuleCommand& command) {
    const int length = (command.Data == nullptr || command.Length < 0) ? 0 : command.Length;
    const auto lengthByte = static_cast<unsigned char>(length & 0xFF);
    std::vector<unsigned char> frame;
    switch (command.Type) {
        case CommandWithoutReply:
            frame = {kFrameNoReply, lengthByte};
            break;
        case CommandUnknownReply:
            frame = {kFrameUnknownReply, lengthByte};
            break;
        case CommandWithReply:
            if (command.ReplyLength <= kShortReplyLimit) {
                frame = {kFrameShortReply, static_cast<unsigned char>(command.ReplyLength & 0xFF), lengthByte};
            } else {
                // The controller's long form carries "reply length > 8" where the
                // high byte would stand; it is what the firmware expects.
                frame = {kFrameLongReply, static_cast<unsigned char>(command.ReplyLength > 8 ? 1 : 0),
                         static_cast<unsigned char>(command.ReplyLength & 0xFF), lengthByte};
            }
            break;
        default:
            return frame;
    }
    frame.insert(frame.end(), command.Data, command.Data + length);
    return frame;
}

ReplyFrame ReadReplyFrame(const FrameReader& read, unsigned char echo, bool longReply) {
    ReplyFrame result;
    unsigned char header[3] = {};
    const int headerSize = longReply ? 3 : 2;
    if (read(header, headerSize) < headerSize) return result;

    const std::uint32_t length = longReply ? (static_cast<std::uint32_t>(header[1]) << 8) | header[2] : header[1];
    if (length == 0) return result;

    result.Reply.Data = new unsigned char[length]();
    const int got = read(result.Reply.Data, static_cast<int>(length));
    result.DataComplete = got == static_cast<int>(length);
    // A refusal ("!" and the error byte) goes through whatever the echo: the
    // command layer hands it on as the module's error.
    const bool echoed = echo == 0 || result.Reply.Data[0] == echo || (result.Reply.Data[0] == '!' && length >= 2);
    if (!result.DataComplete || !echoed) {
        result.Reply.Status = 255;
        result.Reply.Length = 0;
        return result;
    }
    result.Reply.Status = header[0];
    result.Reply.Length = length;
    return result;
}

ControllerIdentifyReply ParseControllerIdentify(const unsigned char* bytes, int got) {
    ControllerIdentifyReply result;
    // Without every identity byte the answer identifies nothing.
    if (got < kIdentityStart + kIdentitySize) {
        result.Error = 255;
        return result;
    }
    result.Error = bytes[kAnswerStatus];
    result.setFields(bytes + kIdentityStart);
    return result;
}

ControllerInfoReply ParseControllerInfo(const unsigned char* bytes, int got) {
    ControllerInfoReply result;  // blanks until filled
    if (got < 1) {
        result.Error = 255;
        return result;
    }
    result.Error = bytes[kAnswerStatus];
    if (got >= kTypeCodeStart + 4) std::memcpy(result.TypeCode, bytes + kTypeCodeStart, 4);
    if (got >= kNumberStart + 2) {
        result.Value = static_cast<std::uint16_t>(bytes[kNumberStart] | (bytes[kNumberStart + 1] << 8));
    }
    if (got >= kLimitStart + kInfoTextSize) std::memcpy(result.LimitText, bytes + kLimitStart, kInfoTextSize);
    if (got >= kDescriptionStart + kInfoTextSize) {
        std::memcpy(result.DescriptionText, bytes + kDescriptionStart, kInfoTextSize);
    }
    return result;
}

ControllerIdentifyReply RequestControllerIdentify(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes) {
    std::vector<unsigned char> answer(static_cast<std::size_t>(sizes.Identify));
    return ParseControllerIdentify(answer.data(), exchange({'I', 0x00, 0x00}, answer.data(), sizes.Identify));
}

ControllerInfoReply RequestControllerInfo(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes) {
    std::vector<unsigned char> answer(static_cast<std::size_t>(sizes.Info));
    return ParseControllerInfo(answer.data(), exchange({'B', 0x00, 0x00}, answer.data(), sizes.Info));
}

std::uint32_t RequestControllerSpeed(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes,
                                     unsigned char baudIndex, eNetSpeed speed) {
    std::vector<unsigned char> answer(static_cast<std::size_t>(sizes.Short));
    const int got = exchange({kFrameSetSpeed, baudIndex, static_cast<unsigned char>(static_cast<int>(speed) & 0xFF)},
                             answer.data(), sizes.Short);
    return got > 0 ? answer[0] : 255u;
}

void RequestControllerIdle(const ControllerExchange& exchange, const ControllerAnswerSizes& sizes) {
    std::vector<unsigned char> answer(static_cast<std::size_t>(sizes.Short));
    exchange({kFrameIdle}, answer.data(), sizes.Short);
}

}  // namespace KavroLibrary
