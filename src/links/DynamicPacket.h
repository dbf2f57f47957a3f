// The blocks and packets of dynamic streaming, as pure functions over bytes:
// the USB and Ethernet links send the same 20-byte blocks and get the same
// 4096-byte packets, and the fuzz target reaches the checks without a link.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "KavroDynamicTypes.h"

namespace KavroLibrary {

constexpr std::size_t kDynamicPacketSize = 4096;
constexpr std::size_t kDynamicHeaderSize = 14;
// A packet never carries more reading bytes than this; more means corruption.
constexpr std::size_t kDynamicReadingLimit = 4083;
constexpr std::uint8_t kDynamicChecking = 0x40;  // request flag: numbered, CRC-checked packets
constexpr std::uint16_t kDynamicCrcSeed = 1;

using DynamicBlock = std::array<std::uint8_t, 20>;

// Start block (opcode 0x05) of a run.
DynamicBlock dynamicStartBlock(const sDynamicMode& mode);
// Read request (0x0E OR the flags) for the packet numbered `packetNumber`
// (bits 3 to 5; 0 without packet checking), with its CRC.
DynamicBlock dynamicReadBlock(std::uint8_t flags, std::uint8_t packetNumber);
// Stop block (opcode 0x0A).
DynamicBlock dynamicStopBlock();

struct DynamicPacketCheck {
    enum class Verdict { Good, BadLength, BadCrc };
    Verdict verdict = Verdict::BadLength;
    int sets = 0;       // reading sets the packet carries
    int endStatus = 0;  // non-zero: the controller ended the stream
    bool hasIndex = false;
    std::uint32_t firstSet = 0;  // index of the packet's first set, when hasIndex
};

// Checks one packet of `size` bytes for a run of `modules` modules; with
// `withCrc` the CRC after the readings must match.
DynamicPacketCheck checkDynamicPacket(const std::uint8_t* packet, std::size_t size, int modules, bool withCrc);

}  // namespace KavroLibrary
