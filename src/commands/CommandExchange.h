// One exchange of the command layer with whichever link is open.
#pragma once

#include "commands/CommandReply.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// The low byte of an int argument, as the bus carries it.
inline unsigned char lowByte(int value) { return static_cast<unsigned char>(value & 0xFF); }

// Sends `length` bytes of `data` as a command of the given type.
void sendCommand(NetworkConfiguration* config, int type, unsigned char* data, int length, int replyLength);

// Fetches the reply to the command just sent. `echo` tells the socket and
// serial links which first byte to wait for (0: any); `longReply` announces a
// 16-bit reply length.
CommandReply fetchReply(NetworkConfiguration* config, unsigned char echo, bool longReply = false);

// sendCommand, a pause of `settleMs` (0: none), then fetchReply, as one
// exchange that no other thread's bytes come between.
CommandReply exchange(NetworkConfiguration* config, int type, unsigned char* data, int length, int replyLength,
                      unsigned char echo, bool longReply = false, long settleMs = 0);

}  // namespace KavroLibrary
