// The command layer's entry into whichever link is open, and the bus packet
// counter.
#pragma once

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Every request and its answer go through here, each under the link's
// LinkLock: threads sharing a network never interleave their bytes.

// Hands a copy of the command to the link table's SendCommand (a command
// without a reply, or one whose reply the caller fetches itself).
void SendModuleCommand(NetworkConfiguration* config, ModuleCommand command);

// The link table's GetReply. `echo` is the first reply byte expected (0 =
// any); `longReply` announces a reply with a 16-bit length.
ModuleReply GetModuleCommandReply(NetworkConfiguration* config, unsigned char echo, bool longReply);

// SendCommand, a pause of `settleMs` (0: none), then GetReply, as one
// exchange.
ModuleReply ExchangeModuleCommand(NetworkConfiguration* config, ModuleCommand command, unsigned char echo,
                                  bool longReply, long settleMs = 0);

// The controller requests of the link table; a missing entry answers as the
// link would when nothing arrived.
ControllerIdentifyReply ControllerIdentify(NetworkConfiguration* config);
ControllerInfoReply ControllerGetInfo(NetworkConfiguration* config);
std::uint32_t ControllerSetSpeed(NetworkConfiguration* config, eNetSpeed speed);
std::uint32_t ControllerSetIdle(NetworkConfiguration* config);

// Advances the 3-bit counter and returns it in bits 3 to 5 (counter x 8).
int NextPacketNum(NetworkConfiguration* config);

}  // namespace KavroLibrary
