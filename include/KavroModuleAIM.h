// An analogue input module: a voltage, current or temperature input read as counts.
#pragma once

#include "KavroModule.h"

namespace KavroLibrary {

// An analogue input module.
class KavroModuleAIM : public KavroModule {
public:
    // Made by the network when an analogue input module joins it.
    KavroModuleAIM(NetworkConfiguration* config, int address);
    ~KavroModuleAIM() override;
};

}  // namespace KavroLibrary
