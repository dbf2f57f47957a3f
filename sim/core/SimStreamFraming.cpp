#include "core/SimStreamFraming.h"

#include <algorithm>

namespace kavrosim {

namespace {

SimParsed incomplete() { return SimParsed{}; }

SimParsed complete(SimRequest request, const std::uint8_t* data, std::size_t consumed) {
    SimParsed parsed;
    parsed.result = SimParsed::Result::Complete;
    parsed.consumed = consumed;
    parsed.request = std::move(request);
    parsed.request.raw.assign(data, data + consumed);
    return parsed;
}

// A module command frame whose command bytes start at `header` and number
// data[header - 1].
SimParsed moduleCommand(SimRequest request, const std::uint8_t* data, std::size_t size, std::size_t header) {
    if (size < header) return incomplete();
    const std::size_t length = data[header - 1];
    if (size < header + length) return incomplete();
    request.kind = SimRequestKind::ModuleCommand;
    request.command.assign(data + header, data + header + length);
    return complete(std::move(request), data, header + length);
}

// The controller needs the requested length only for the log: the flag
// byte of the long form stands for "longer than 8", so lengths of 251 to
// 255 arrive with the same flag as 256 and up.
int longReplyLength(std::uint8_t flag, std::uint8_t low) {
    if (flag == 1 && low >= 251) return low;
    return flag * 256 + low;
}

void pad(Bytes& frame, std::size_t count) { frame.insert(frame.end(), count, 0); }

void append(Bytes& frame, const Bytes& data, std::size_t from, std::size_t count) {
    for (std::size_t i = from; i < from + count; ++i) frame.push_back(i < data.size() ? data[i] : 0);
}

}  // namespace

SimParsed parseStreamRequest(SimStreamDialect dialect, const std::uint8_t* data, std::size_t size) {
    if (size == 0) return incomplete();
    SimRequest request;
    switch (data[0]) {
        case 0x00:
            request.type = 1;
            return moduleCommand(std::move(request), data, size, 2);
        case 0x0E:
            request.type = 2;
            return moduleCommand(std::move(request), data, size, 2);
        case 0x02:
            if (size < 2) return incomplete();
            request.type = 0;
            request.replyLength = data[1];
            return moduleCommand(std::move(request), data, size, 3);
        case 0x20:
            if (size < 3) return incomplete();
            request.type = 0;
            request.longReply = true;
            request.replyLength = longReplyLength(data[1], data[2]);
            return moduleCommand(std::move(request), data, size, 4);
        case 'I':
        case 'B':
            if (size < 3) return incomplete();
            request.kind = data[0] == 'I' ? SimRequestKind::Identify : SimRequestKind::GetInfo;
            return complete(std::move(request), data, 3);
        case 0x0A:
            if (size < 3) return incomplete();
            request.kind = SimRequestKind::SetSpeed;
            // Ethernet sends a fixed 0x08 where a serial line sends its baud index.
            if (dialect == SimStreamDialect::Serial) request.baudIndex = data[1];
            request.speedValue = data[2];
            return complete(std::move(request), data, 3);
        case 0x10:
            request.kind = SimRequestKind::Idle;
            return complete(std::move(request), data, 1);
        case 0x30: {
            // Dynamic streaming ("ETH2"): the kind byte and a USB block.
            if (dialect != SimStreamDialect::Ethernet) break;
            if (size < 21) return incomplete();
            const std::uint8_t opcode = data[1];
            request.kind = opcode == 0x05   ? SimRequestKind::DynamicStart
                           : opcode == 0x0A ? SimRequestKind::DynamicStop
                                            : SimRequestKind::DynamicRead;
            if (request.kind == SimRequestKind::DynamicRead && (opcode & ~0x40) != 0x0E) break;
            request.block.assign(data + 1, data + 21);
            return complete(std::move(request), data, 21);
        }
        default:
            break;
    }
    SimParsed parsed;
    parsed.result = SimParsed::Result::Garbage;
    parsed.consumed = 1;
    parsed.request.kind = SimRequestKind::Unknown;
    parsed.request.raw.assign(data, data + 1);
    return parsed;
}

Bytes frameStreamAnswer(SimStreamDialect dialect, const SimRequest& request, const SimAnswer& answer) {
    if (answer.action != SimAnswer::Action::Reply) return {};
    const bool ethernet = dialect == SimStreamDialect::Ethernet;
    Bytes frame{answer.status};
    switch (request.kind) {
        case SimRequestKind::ModuleCommand: {
            std::size_t length = answer.data.size();
            if (request.longReply) {
                length = std::min<std::size_t>(length, 0xFFFF);
                frame.push_back(static_cast<std::uint8_t>(length >> 8));
            } else {
                length = std::min<std::size_t>(length, 0xFF);
            }
            frame.push_back(static_cast<std::uint8_t>(length & 0xFF));
            append(frame, answer.data, 0, length);
            // Every Ethernet reply frame ends in two bytes, also one that
            // carries no reply.
            if (ethernet) pad(frame, 2);
            break;
        }
        case SimRequestKind::Identify:
            pad(frame, 2);
            append(frame, answer.data, 0, 27);
            pad(frame, ethernet ? 4 : 2);
            break;
        case SimRequestKind::GetInfo:
            pad(frame, 2);
            append(frame, answer.data, 0, 6);  // type text, firmware number
            pad(frame, 2);
            append(frame, answer.data, 6, 32);  // limit text, description
            if (ethernet) pad(frame, 2);
            break;
        case SimRequestKind::SetSpeed:
        case SimRequestKind::Idle:
        case SimRequestKind::DynamicStart:
        case SimRequestKind::DynamicStop:
            pad(frame, ethernet ? 3 : 1);
            break;
        case SimRequestKind::DynamicRead:
            frame = answer.data;  // the whole packet
            break;
        case SimRequestKind::Unknown:
            return {};
    }
    if (answer.cutAt && *answer.cutAt < frame.size()) frame.resize(*answer.cutAt);
    return frame;
}

}  // namespace kavrosim
