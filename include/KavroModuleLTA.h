// A laser sensor of the LTA range: a laser module with the laser settings.
#pragma once

#include "KavroModuleLT.h"

namespace KavroLibrary {

class KavroModuleLTA : public KavroModuleLT {
public:
    KavroModuleLTA(NetworkConfiguration* config, int address);
    ~KavroModuleLTA() override;
};

}  // namespace KavroLibrary
