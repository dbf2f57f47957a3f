// A laser sensor of the LTA range: a laser module with the laser settings.
#pragma once

#include "KavroModuleLT.h"

namespace KavroLibrary {

// A laser sensor of the LTA kind.
class KavroModuleLTA : public KavroModuleLT {
public:
    // Made by the network when such a sensor joins it.
    KavroModuleLTA(NetworkConfiguration* config, int address);
    ~KavroModuleLTA() override;
};

}  // namespace KavroLibrary
