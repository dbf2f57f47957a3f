// A linear encoder input module: an encoder input module for linear scales.
#pragma once

#include "KavroModuleEIM.h"

namespace KavroLibrary {

class KavroModuleLEIM : public KavroModuleEIM {
public:
    KavroModuleLEIM(NetworkConfiguration* config, int address);
    ~KavroModuleLEIM() override;
};

}  // namespace KavroLibrary
