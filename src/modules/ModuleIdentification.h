// Identifying a module at a bus address: its identify and get-info answers fed
// into its reading decoder.
#pragma once

#include <string>

#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

// Sends identify and get-info to `address` and runs the decoder on the
// answers. `knownIdentity` stands in for the identity when identify fails.
void IdentifyModule(NetworkConfiguration* config, int address, const std::string& knownIdentity,
                    KavroReadType& readType);

// A digit of the type text as a small number; anything else is 0.
int TypeTextDigit(const std::string& typeText, std::size_t position);

}  // namespace KavroLibrary
