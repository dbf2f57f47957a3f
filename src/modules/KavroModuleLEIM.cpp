#include "KavroModuleLEIM.h"

namespace KavroLibrary {

KavroModuleLEIM::KavroModuleLEIM(NetworkConfiguration* config, int address) : KavroModuleEIM(config, address) {}

KavroModuleLEIM::~KavroModuleLEIM() = default;

}  // namespace KavroLibrary
