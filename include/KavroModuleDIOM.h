// A digital input/output module of the first generations.
#pragma once

#include "KavroModuleDIOMBase.h"

namespace KavroLibrary {

// The first digital input/output module.
class KavroModuleDIOM : public KavroModuleDIOMBase {
public:
    // Made by the network when such a module joins it.
    KavroModuleDIOM(NetworkConfiguration* config, int address);
    ~KavroModuleDIOM() override;
};

}  // namespace KavroLibrary
