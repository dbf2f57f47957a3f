// The module class for each kind of module.
#pragma once

#include <memory>

#include "KavroEnums.h"
#include "KavroModule.h"

namespace KavroLibrary {

// A new module object of the class that serves `type`; kinds without a class
// of their own get the base class.
std::unique_ptr<KavroModule> CreateModule(eModuleType type, NetworkConfiguration* config, int address);

}  // namespace KavroLibrary
