// A laser sensor of the LTH range: a laser module with the laser settings.
#pragma once

#include "KavroModuleLT.h"

namespace KavroLibrary {

class KavroModuleLTH : public KavroModuleLT {
public:
    KavroModuleLTH(NetworkConfiguration* config, int address);
    ~KavroModuleLTH() override;
};

}  // namespace KavroLibrary
