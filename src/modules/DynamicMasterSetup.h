// The bus commands that make a module (an encoder input or a second-generation
// digital I/O module) the external master of a dynamic run, and release it.
#pragma once

#include <atomic>
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

// What every dynamic master does to set up: refuse with `complaint` (its own
// validation), else send the set-up, undo half a set-up, and arm on success.
std::string armDynamicMaster(KavroModule& module, eDynamicMasterMode masterMode, int numberOfModules,
                             eDynamicRate rate, const std::string& complaint, std::atomic<bool>& armed);

// Clears the master once, only when it was armed.
void disarmDynamicMaster(KavroModule& module, std::atomic<bool>& armed);

}  // namespace KavroLibrary
