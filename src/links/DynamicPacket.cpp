#include "links/DynamicPacket.h"

#include "links/Crc16.h"

namespace KavroLibrary {

namespace {

constexpr std::uint8_t kOpStart = 0x05;
constexpr std::uint8_t kOpStop = 0x0A;
constexpr std::uint8_t kOpRead = 0x0E;

void putLe32(DynamicBlock& block, std::size_t at, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (std::size_t i = 0; i < 4; ++i) block[at + i] = static_cast<std::uint8_t>(bits >> (8 * i));
}

}  // namespace

DynamicBlock dynamicStartBlock(const sDynamicMode& mode) {
    DynamicBlock block{};
    block[0] = kOpStart;
    block[5] = 0x01;
    block[6] = static_cast<std::uint8_t>(static_cast<int>(mode.Rate) & 0xFF);
    putLe32(block, 7, mode.Collection);
    putLe32(block, 11, mode.Interval);
    block[15] = static_cast<std::uint8_t>(mode.Modules & 0xFF);
    block[16] = mode.ExternalMaster ? 1 : 0;
    return block;
}

DynamicBlock dynamicReadBlock(std::uint8_t flags, std::uint8_t packetNumber) {
    DynamicBlock block{};
    block[0] = static_cast<std::uint8_t>(kOpRead | flags);
    block[4] = packetNumber;
    const unsigned short crc = tabularCRC16(kDynamicCrcSeed, block.data(), 5, 0);
    block[5] = static_cast<std::uint8_t>(crc >> 8);
    block[6] = static_cast<std::uint8_t>(crc & 0xFF);
    return block;
}

DynamicBlock dynamicStopBlock() {
    DynamicBlock block{};
    block[0] = kOpStop;
    return block;
}

DynamicPacketCheck checkDynamicPacket(const std::uint8_t* packet, std::size_t size, int modules, bool withCrc) {
    DynamicPacketCheck check;
    if (packet == nullptr || size < kDynamicHeaderSize || modules <= 0) return check;
    const std::size_t sets = static_cast<std::size_t>(packet[12]) | (static_cast<std::size_t>(packet[13]) << 8);
    const std::size_t readingBytes = sets * static_cast<std::size_t>(modules) * 3;
    if (readingBytes >= kDynamicReadingLimit) return check;
    const std::size_t end = kDynamicHeaderSize + readingBytes;
    if (end + (withCrc ? 2 : 0) > size) return check;
    if (withCrc) {
        const unsigned short crc = tabularCRC16(kDynamicCrcSeed, packet, static_cast<unsigned short>(end), 0);
        const unsigned short stored = static_cast<unsigned short>((packet[end] << 8) | packet[end + 1]);
        if (crc != stored) {
            check.verdict = DynamicPacketCheck::Verdict::BadCrc;
            return check;
        }
    }
    check.verdict = DynamicPacketCheck::Verdict::Good;
    check.sets = static_cast<int>(sets);
    check.endStatus = packet[2];
    check.hasIndex = (packet[3] & 0x01) != 0;
    check.firstSet = static_cast<std::uint32_t>(packet[8]) | (static_cast<std::uint32_t>(packet[9]) << 8) |
                     (static_cast<std::uint32_t>(packet[10]) << 16) | (static_cast<std::uint32_t>(packet[11]) << 24);
    return check;
}

}  // namespace KavroLibrary
