#include "links/UsbFraming.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "links/FtdiApi.h"

namespace KavroLibrary {

namespace {

// FT_Write and FT_Read results are not checked here: a lost USB link shows
// as a short read.
void usbWrite(NetworkConfiguration* config, const unsigned char* bytes, std::size_t count) {
    DWORD written = 0;
    if (ftdiTable().Write != nullptr) {
        ftdiTable().Write(config->FtdiHandle, const_cast<unsigned char*>(bytes), static_cast<DWORD>(count), &written);
    }
}

DWORD usbRead(NetworkConfiguration* config, unsigned char* bytes, std::size_t count) {
    DWORD got = 0;
    if (ftdiTable().Read != nullptr) {
        ftdiTable().Read(config->FtdiHandle, bytes, static_cast<DWORD>(count), &got);
    }
    return std::min<DWORD>(got, static_cast<DWORD>(count));
}

// 0x88 0x10 0x13 0x00 and a 20-byte block starting with the opcode.
std::vector<unsigned char> controllerBlock(unsigned char opcode) {
    std::vector<unsigned char> out{kMpsseWaitReady, kMpsseClockOut, kUsbBlockSize - 1, 0x00};
    out.resize(4 + kUsbBlockSize, 0);
    out[4] = opcode;
    return out;
}

void appendRead(std::vector<unsigned char>& out, int count, bool flush) {
    out.push_back(kMpsseWaitReady);
    out.push_back(kMpsseClockIn);
    out.push_back(static_cast<unsigned char>((count - 1) & 0xFF));
    out.push_back(static_cast<unsigned char>(((count - 1) >> 8) & 0xFF));
    if (flush) out.push_back(kMpsseFlush);
}

void purgeLink(NetworkConfiguration* config) {
    if (ftdiTable().Purge != nullptr) ftdiTable().Purge(config->FtdiHandle, FT_PURGE_RX | FT_PURGE_TX);
}

std::uint32_t le32(const unsigned char* p) {
    return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
           (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

}  // namespace

std::uint32_t NetSpeedBitRate(eNetSpeed speed) {
    switch (speed) {
        case eNetSpeed::Low:
            return 187500;
        case eNetSpeed::High:
            return 1500000;
        case eNetSpeed::UltraHigh:
            return 2250000;
    }
    return 0;
}

void SendModuleCommand(NetworkConfiguration* config, ModuleCommand* command) {
    const int length = std::max(command->Length, 0);
    auto block = controllerBlock(kUsbModuleCommand);
    block[5] = static_cast<unsigned char>(length & 0xFF);
    if (command->Type == CommandUnknownReply) {
        block[6] = 0xFF;
        block[7] = 0xFF;
    } else {
        block[6] = static_cast<unsigned char>((command->ReplyLength >> 8) & 0xFF);
        block[7] = static_cast<unsigned char>(command->ReplyLength & 0xFF);
    }
    block[8] = 0x00;
    const int first = std::min(length, 15);
    if (first > 0) std::memcpy(block.data() + 9, command->Data, static_cast<std::size_t>(first));
    usbWrite(config, block.data(), block.size());

    if (length > 15) {
        // Continuation blocks are never shorter than 20 bytes.
        const int rest = length - 15;
        const int n = std::max(rest, kUsbBlockSize);
        std::vector<unsigned char> more{kMpsseWaitReady, kMpsseClockOut, static_cast<unsigned char>((n - 1) & 0xFF),
                                        static_cast<unsigned char>(((n - 1) >> 8) & 0xFF)};
        more.resize(4 + static_cast<std::size_t>(n), 0);
        std::memcpy(more.data() + 4, command->Data + 15, static_cast<std::size_t>(rest));
        usbWrite(config, more.data(), more.size());
    }

    if (command->Type == CommandWithoutReply) {
        std::vector<unsigned char> read;
        appendRead(read, kUsbBlockSize, false);
        usbWrite(config, read.data(), read.size());
        unsigned char discard[kUsbBlockSize];
        usbRead(config, discard, sizeof discard);
    }
}

ModuleReply GetModuleCommandResponse(NetworkConfiguration* config, unsigned char /*echo*/, bool /*longReply*/) {
    ModuleReply reply;
    std::vector<unsigned char> request;
    appendRead(request, kUsbBlockSize, true);
    usbWrite(config, request.data(), request.size());
    unsigned char first[kUsbBlockSize];
    if (usbRead(config, first, sizeof first) < kUsbBlockSize) {
        // A late answer would otherwise answer the next request.
        purgeLink(config);
        reply.Status = 255;
        reply.Length = 0;
        reply.Data = nullptr;
        return reply;
    }
    const unsigned length = static_cast<unsigned>(first[0]) | (static_cast<unsigned>(first[1]) << 8);
    reply.Status = le32(first + 2);
    reply.Length = length;
    reply.Data = new unsigned char[length == 0 ? 1 : length]();
    std::memcpy(reply.Data, first + 7, std::min(length, 13u));
    if (length > 13) {
        const unsigned rest = length - 13;
        const unsigned n = std::max(rest, static_cast<unsigned>(kUsbBlockSize));
        std::vector<unsigned char> more;
        appendRead(more, static_cast<int>(n), true);
        usbWrite(config, more.data(), more.size());
        std::vector<unsigned char> second(n, 0);
        if (usbRead(config, second.data(), n) < n) {
            // Missing bytes are no zeros: no answer. The late rest would
            // answer the next request, so the link is put back in step.
            delete[] reply.Data;
            reply = ModuleReply{};
            reply.Status = 255;
            purgeLink(config);
            return reply;
        }
        std::memcpy(reply.Data + 13, second.data(), rest);
    }
    return reply;
}

ControllerIdentifyReply IdentifyNetwork(NetworkConfiguration* config) {
    ControllerIdentifyReply result;
    auto block = controllerBlock(kUsbIdentify);
    appendRead(block, kUsbBlockSize, false);
    appendRead(block, kUsbBlockSize, false);
    usbWrite(config, block.data(), block.size());
    unsigned char reply[2 * kUsbBlockSize] = {};
    const DWORD got = usbRead(config, reply, sizeof reply);
    if (got < 34) {
        result.Error = 255;
        return result;
    }
    result.Error = static_cast<std::int32_t>(le32(reply + 2));
    result.setFields(reply + 7);
    return result;
}

ControllerInfoReply GetInfoNetwork(NetworkConfiguration* config) {
    ControllerInfoReply result;  // blanks until filled
    auto block = controllerBlock(kUsbGetInfo);
    appendRead(block, kUsbBlockSize, false);
    appendRead(block, 27, false);
    usbWrite(config, block.data(), block.size());
    unsigned char reply[47] = {};
    const DWORD got = usbRead(config, reply, sizeof reply);
    if (got < 6) {
        result.Error = 255;
        return result;
    }
    result.Error = static_cast<std::int32_t>(le32(reply + 2));
    if (got >= 11) std::memcpy(result.TypeCode, reply + 7, 4);
    if (got >= 13) result.Value = static_cast<std::uint16_t>(reply[11] | (reply[12] << 8));
    if (got >= 31) std::memcpy(result.LimitText, reply + 15, 16);
    if (got >= 47) std::memcpy(result.DescriptionText, reply + 31, 16);
    return result;
}

std::uint32_t SetControllerSpeedFTDI(NetworkConfiguration* config, eNetSpeed speed) {
    auto block = controllerBlock(kUsbSetSpeed);
    const std::uint32_t rate = NetSpeedBitRate(speed);
    block[9] = static_cast<unsigned char>(rate & 0xFF);
    block[10] = static_cast<unsigned char>((rate >> 8) & 0xFF);
    block[11] = static_cast<unsigned char>((rate >> 16) & 0xFF);
    appendRead(block, kUsbBlockSize, false);
    usbWrite(config, block.data(), block.size());
    unsigned char reply[kUsbBlockSize] = {};
    const DWORD got = usbRead(config, reply, sizeof reply);
    return got > 5 ? le32(reply + 2) : 255u;
}

std::uint32_t SetControllerIdleFTDI(NetworkConfiguration* config) {
    auto block = controllerBlock(kUsbIdle);
    appendRead(block, kUsbBlockSize, false);
    usbWrite(config, block.data(), block.size());
    unsigned char reply[kUsbBlockSize] = {};
    usbRead(config, reply, sizeof reply);
    return 0;
}

void SetupRxPacket_CRC(NetworkConfiguration* config, unsigned int& position, short count, unsigned char* buffer,
                       bool withCrc) {
    buffer[position++] = kMpsseWaitReady;
    buffer[position++] = kMpsseClockIn;
    buffer[position++] = kUsbBlockSize - 1;
    buffer[position++] = 0x00;
    int total = count + 7;
    if (withCrc) total += config->ExtraReplyBytes;
    if (total > kUsbBlockSize) {
        const int m = std::max(total - 21, kUsbBlockSize - 1);
        buffer[position++] = kMpsseWaitReady;
        buffer[position++] = kMpsseClockIn;
        buffer[position++] = static_cast<unsigned char>(m & 0xFF);
        buffer[position++] = static_cast<unsigned char>((m >> 8) & 0xFF);
    }
    buffer[position++] = kMpsseFlush;
}

}  // namespace KavroLibrary
