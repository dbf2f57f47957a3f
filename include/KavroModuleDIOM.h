// A digital input/output module of the first generations.
#pragma once

#include "KavroModuleDIOMBase.h"

namespace KavroLibrary {

class KavroModuleDIOM : public KavroModuleDIOMBase {
public:
    KavroModuleDIOM(NetworkConfiguration* config, int address);
    ~KavroModuleDIOM() override;
};

}  // namespace KavroLibrary
