// A laser sensor of the LTH range: a laser module with the laser settings.
#pragma once

#include "KavroModuleLT.h"

namespace KavroLibrary {

// A laser sensor of the LTH kind.
class KavroModuleLTH : public KavroModuleLT {
public:
    // Made by the network when such a sensor joins it.
    KavroModuleLTH(NetworkConfiguration* config, int address);
    ~KavroModuleLTH() override;
};

}  // namespace KavroLibrary
