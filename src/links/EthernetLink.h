// The Ethernet interface module link: one TCP connection to port 10001 of the
// controller, carrying the byte framing of ByteFraming.h.
#pragma once

#include <cstdint>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

constexpr unsigned short kEthernetPort = 10001;

// Connects to `Address`, keeping the descriptor in `SocketFd` and setting
// `Connected`. Failures are written to standard error; returns whether the
// connection stands.
bool openSocket(NetworkConfiguration* config);

// Closes `SocketFd` if it is open.
void closeSocket(NetworkConfiguration* config);

// Gathers `count` bytes for at most 1.5 s; stops early when the peer has
// closed. `error` (may be null) receives 0, or errno of a failed read.
// Returns the number of bytes gathered.
int SocketReadDataFixedLength(NetworkConfiguration* config, unsigned char* buffer, int count, int* error);

// Sends all `count` bytes within 1.5 s; on a connection the peer has reset,
// reconnects once and sends again. Returns the number of bytes sent.
int SocketWriteDataFixedLength(NetworkConfiguration* config, unsigned char* buffer, int count);

// Discards whatever has already arrived, without waiting.
void SocketFlushData(NetworkConfiguration* config);

// The link table of the Ethernet link.
void ETHIMSendModuleCommand(NetworkConfiguration* config, ModuleCommand* command);
ModuleReply ETHIMReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply);
ControllerIdentifyReply ETHIMKavroIdentifyController(NetworkConfiguration* config);
ControllerInfoReply ETHIMKavroGetInfoController(NetworkConfiguration* config);
std::uint32_t SetControllerSpeedETHIM(NetworkConfiguration* config, eNetSpeed speed);
std::uint32_t SetControllerIdleETHIM(NetworkConfiguration* config);
// Dynamic streaming ("ETH2" controllers only; see EthernetDynamic.cpp).
void StartDynamicETHIM(NetworkConfiguration* config, sDynamicMode mode);
void DynamicReadThreadProcessETH(NetworkConfiguration* config, sDynamicMode mode) noexcept;

// Sets the controller's capability flags and speeds from its type code and
// firmware number (see docs/design/links.md).
void UpdateCapabilitiesETHIM(NetworkConfiguration* config);

}  // namespace KavroLibrary
