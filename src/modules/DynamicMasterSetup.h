// The bus commands that make a module (an encoder input or a second-generation
// digital I/O module) the external master of a dynamic run, and release it.
#pragma once

#include <string>

#include "KavroEnums.h"

namespace KavroLibrary {

class KavroModule;

// Sends the master's mode, rate and collection size; "" when the module took
// them all, else one complaint ending in a line feed.
std::string sendDynamicMasterSetup(KavroModule& module, eDynamicMasterMode masterMode, int numberOfModules,
                                   eDynamicRate rate);

// Returns the module to normal operation; its result is not looked at.
void sendDynamicMasterClear(KavroModule& module);

}  // namespace KavroLibrary
