// The USB interface module's transfers: MPSSE instruction strings around
// fixed 20-byte controller blocks.
#pragma once

#include <cstdint>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// MPSSE instructions.
constexpr unsigned char kMpsseWaitReady = 0x88;  // wait on I/O high
constexpr unsigned char kMpsseClockOut = 0x10;   // bytes out, MSB first, rising edge
constexpr unsigned char kMpsseClockIn = 0x24;    // bytes in, MSB first, falling edge
constexpr unsigned char kMpsseFlush = 0x87;      // send immediate

// Controller opcodes of the first data byte of a block.
constexpr unsigned char kUsbModuleCommand = 0x03;
constexpr unsigned char kUsbSetSpeed = 0x04;
constexpr unsigned char kUsbStartDynamic = 0x05;
constexpr unsigned char kUsbIdle = 0x06;
constexpr unsigned char kUsbIdentify = 0x08;
constexpr unsigned char kUsbGetInfo = 0x09;
constexpr unsigned char kUsbStopDynamic = 0x0A;
constexpr unsigned char kUsbDynamicRead = 0x0E;

constexpr int kUsbBlockSize = 20;

// Bus bit rate of a speed: 187500, 1500000 or 2250000; 0 for any other value.
std::uint32_t NetSpeedBitRate(eNetSpeed speed);

// Link table of the USB link.
void SendModuleCommand(NetworkConfiguration* config, ModuleCommand* command);
ModuleReply GetModuleCommandResponse(NetworkConfiguration* config, unsigned char echo, bool longReply);
ControllerIdentifyReply IdentifyNetwork(NetworkConfiguration* config);
ControllerInfoReply GetInfoNetwork(NetworkConfiguration* config);
std::uint32_t SetControllerSpeedFTDI(NetworkConfiguration* config, eNetSpeed speed);
std::uint32_t SetControllerIdleFTDI(NetworkConfiguration* config);

// Appends the read instructions for a reply of `count` bytes to `buffer`.
void SetupRxPacket_CRC(NetworkConfiguration* config, unsigned int& position, short count, unsigned char* buffer,
                       bool withCrc);

}  // namespace KavroLibrary
