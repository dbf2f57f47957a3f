// A linear encoder input module: an encoder input module for linear scales.
#pragma once

#include "KavroModuleEIM.h"

namespace KavroLibrary {

// A linear encoder input module.
class KavroModuleLEIM : public KavroModuleEIM {
public:
    // Made by the network when such a module joins it.
    KavroModuleLEIM(NetworkConfiguration* config, int address);
    ~KavroModuleLEIM() override;
};

}  // namespace KavroLibrary
