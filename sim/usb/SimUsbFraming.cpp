#include "usb/SimUsbFraming.h"

#include <algorithm>

namespace kavrosim {

namespace {

constexpr std::size_t kFirstCommandBytes = 15;
constexpr std::size_t kFirstReplyBytes = 13;
constexpr unsigned kUnknownReplyLength = 0xFFFF;

// Status and length head every answer block: length (16), status (32), one
// unused byte.
Bytes blockHead(std::size_t length, std::uint8_t status) {
    Bytes out;
    putLe16(out, static_cast<unsigned>(length));
    putLe32(out, status);
    out.push_back(0);
    return out;
}

void appendPadded(Bytes& out, const Bytes& data, std::size_t from, std::size_t count) {
    for (std::size_t i = from; i < from + count; ++i) out.push_back(i < data.size() ? data[i] : 0);
}

}  // namespace

int usbSpeedValue(std::uint32_t bitRate) {
    switch (bitRate) {
        case 187500:
            return 0;
        case 1500000:
            return 5;
        case 2250000:
            return 6;
        default:
            return -1;
    }
}

std::size_t usbRequestSize(const std::uint8_t* bytes, std::size_t count) {
    if (count < kUsbBlockSize) return 0;
    std::size_t size = kUsbBlockSize;
    if (bytes[0] == kUsbOpModuleCommand && bytes[1] > kFirstCommandBytes) {
        // The rest of the command, in a block of at least 20 bytes.
        size += std::max<std::size_t>(bytes[1] - kFirstCommandBytes, kUsbBlockSize);
    }
    return count < size ? 0 : size;
}

SimRequest decodeUsbRequest(const std::uint8_t* bytes, std::size_t count) {
    SimRequest request;
    request.raw.assign(bytes, bytes + count);
    switch (bytes[0]) {
        case kUsbOpModuleCommand: {
            request.kind = SimRequestKind::ModuleCommand;
            const std::size_t length = bytes[1];
            const unsigned replyLength = (static_cast<unsigned>(bytes[2]) << 8) | bytes[3];
            if (replyLength == kUnknownReplyLength) {
                request.type = 2;
            } else {
                // Only a command without a reply asks for none.
                request.type = replyLength == 0 ? 1 : 0;
                request.replyLength = static_cast<int>(replyLength);
            }
            const std::size_t first = std::min(length, kFirstCommandBytes);
            request.command.assign(bytes + 5, bytes + 5 + first);
            if (length > kFirstCommandBytes) {
                const std::uint8_t* rest = bytes + kUsbBlockSize;
                request.command.insert(request.command.end(), rest, rest + (length - kFirstCommandBytes));
            }
            break;
        }
        case kUsbOpSetSpeed:
            request.kind = SimRequestKind::SetSpeed;
            request.speedValue =
                usbSpeedValue(static_cast<std::uint32_t>(bytes[5]) | (static_cast<std::uint32_t>(bytes[6]) << 8) |
                              (static_cast<std::uint32_t>(bytes[7]) << 16));
            break;
        case kUsbOpIdle:
            request.kind = SimRequestKind::Idle;
            break;
        case kUsbOpIdentify:
            request.kind = SimRequestKind::Identify;
            break;
        case kUsbOpGetInfo:
            request.kind = SimRequestKind::GetInfo;
            break;
        case kUsbOpStartDynamic:
        case kUsbOpStopDynamic:
        case kUsbOpDynamicRead:
        case kUsbOpDynamicRead | 0x40:
            request.kind = bytes[0] == kUsbOpStartDynamic  ? SimRequestKind::DynamicStart
                           : bytes[0] == kUsbOpStopDynamic ? SimRequestKind::DynamicStop
                                                           : SimRequestKind::DynamicRead;
            request.block.assign(bytes, bytes + kUsbBlockSize);
            break;
        default:
            request.kind = SimRequestKind::Unknown;
            break;
    }
    return request;
}

Bytes frameUsbAnswer(const SimRequest& request, const SimAnswer& answer) {
    if (answer.action == SimAnswer::Action::Close) return {};
    if (answer.action == SimAnswer::Action::Silent) {
        if (request.kind == SimRequestKind::ModuleCommand && request.type == 1) return Bytes(kUsbBlockSize, 0);
        return {};
    }
    Bytes frame;
    switch (request.kind) {
        case SimRequestKind::ModuleCommand: {
            const std::size_t length = std::min<std::size_t>(answer.data.size(), 0xFFFF);
            frame = blockHead(length, answer.status);
            appendPadded(frame, answer.data, 0, kFirstReplyBytes);
            if (length > kFirstReplyBytes) {
                const std::size_t rest = length - kFirstReplyBytes;
                appendPadded(frame, answer.data, kFirstReplyBytes, std::max(rest, kUsbBlockSize));
            }
            break;
        }
        case SimRequestKind::Identify:
            // Two blocks: the 27 identity bytes from byte 7.
            frame = blockHead(27, answer.status);
            appendPadded(frame, answer.data, 0, 2 * kUsbBlockSize - frame.size());
            break;
        case SimRequestKind::GetInfo:
            // A block and 27 bytes: type and firmware number from byte 7,
            // limit text and description from byte 15.
            frame = blockHead(40, answer.status);
            appendPadded(frame, answer.data, 0, 6);
            frame.insert(frame.end(), 2, 0);
            appendPadded(frame, answer.data, 6, 32);
            break;
        case SimRequestKind::SetSpeed:
        case SimRequestKind::Idle:
        case SimRequestKind::DynamicStart:
        case SimRequestKind::DynamicStop:
            frame = blockHead(0, answer.status);
            frame.resize(kUsbBlockSize, 0);
            break;
        case SimRequestKind::DynamicRead:
            frame = answer.data;  // the whole packet, as the host's read instructions ask
            break;
        case SimRequestKind::Unknown:
            return {};
    }
    if (answer.cutAt && *answer.cutAt < frame.size()) frame.resize(*answer.cutAt);
    return frame;
}

}  // namespace kavrosim
