#include "KavroModuleLTH.h"

namespace KavroLibrary {

KavroModuleLTH::KavroModuleLTH(NetworkConfiguration* config, int address) : KavroModuleLT(config, address) {}

KavroModuleLTH::~KavroModuleLTH() = default;

}  // namespace KavroLibrary
