// An analogue input module: a voltage, current or temperature input read as counts.
#pragma once

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleAIM : public KavroModule {
public:
    KavroModuleAIM(NetworkConfiguration* config, int address);
    ~KavroModuleAIM() override;
};

}  // namespace KavroLibrary
