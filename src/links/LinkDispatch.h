// The command layer's entry into whichever link is open, and the bus packet
// counter.
#pragma once

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Hands a copy of the command to the link table's SendCommand.
void SendModuleCommand(NetworkConfiguration* config, ModuleCommand command);

// The link table's GetReply. `echo` is the first reply byte expected (0 =
// any); `longReply` announces a reply with a 16-bit length.
ModuleReply GetModuleCommandReply(NetworkConfiguration* config, unsigned char echo, bool longReply);

// Advances the 3-bit counter and returns it in bits 3 to 5 (counter x 8).
int NextPacketNum(NetworkConfiguration* config);

}  // namespace KavroLibrary
