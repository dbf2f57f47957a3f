// The USB interface module's 20-byte controller blocks: how many bytes a
// request takes, what it asks, and the bytes the controller clocks back.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/SimBytes.h"
#include "core/SimRequest.h"

namespace kavrosim {

constexpr std::size_t kUsbBlockSize = 20;

// Controller opcodes, the first byte of a request block.
constexpr std::uint8_t kUsbOpModuleCommand = 0x03;
constexpr std::uint8_t kUsbOpSetSpeed = 0x04;
constexpr std::uint8_t kUsbOpIdle = 0x06;
constexpr std::uint8_t kUsbOpIdentify = 0x08;
constexpr std::uint8_t kUsbOpGetInfo = 0x09;
constexpr std::uint8_t kUsbOpStartDynamic = 0x05;
constexpr std::uint8_t kUsbOpStopDynamic = 0x0A;
constexpr std::uint8_t kUsbOpDynamicRead = 0x0E;  // OR the request flags (0x40: checked packets)

// The number of bytes of the request that starts `bytes` (a module command
// longer than 15 bytes continues past its first block), or 0 while fewer
// have arrived.
std::size_t usbRequestSize(const std::uint8_t* bytes, std::size_t count);

// Decodes a whole request of `count` bytes (usbRequestSize of it).
SimRequest decodeUsbRequest(const std::uint8_t* bytes, std::size_t count);

// The bytes the controller has for the host's clock-ins; empty when it
// says nothing. A command without a reply is acknowledged with one empty
// block, which the host reads and drops.
Bytes frameUsbAnswer(const SimRequest& request, const SimAnswer& answer);

// The bus bit rate of a set-speed block and the speed value it stands for
// (0 Low, 5 High, 6 UltraHigh; -1 for any other rate).
int usbSpeedValue(std::uint32_t bitRate);

}  // namespace kavrosim
