#include "KavroModuleLTA.h"

namespace KavroLibrary {

KavroModuleLTA::KavroModuleLTA(NetworkConfiguration* config, int address) : KavroModuleLT(config, address) {}

KavroModuleLTA::~KavroModuleLTA() = default;

}  // namespace KavroLibrary
