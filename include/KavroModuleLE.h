// A linear encoder.
#pragma once

#include "KavroModuleEncoder.h"

namespace KavroLibrary {

class KavroModuleLE : public KavroModuleEncoder {
public:
    KavroModuleLE(NetworkConfiguration* config, int address);
    ~KavroModuleLE() override;
};

}  // namespace KavroLibrary
