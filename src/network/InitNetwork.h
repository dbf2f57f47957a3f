// The network functions the links call through the record's hooks on connect.
#pragma once

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Asks the controller who it is: identity, kind, module limit, description.
// Marks the network connected and idle; false (with a line on standard error)
// when the controller does not answer.
bool InitNetwork(NetworkConfiguration* config);

// Returns every module on the bus, whatever speed it was left at, to the
// unaddressed state, and leaves the bus at Low.
void ResetAllSpeeds(NetworkConfiguration* config);

}  // namespace KavroLibrary
