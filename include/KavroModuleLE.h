// A linear encoder.
#pragma once

#include "KavroModuleEncoder.h"

namespace KavroLibrary {

// A linear encoder.
class KavroModuleLE : public KavroModuleEncoder {
public:
    // Made by the network when a linear encoder joins it.
    KavroModuleLE(NetworkConfiguration* config, int address);
    ~KavroModuleLE() override;
};

}  // namespace KavroLibrary
