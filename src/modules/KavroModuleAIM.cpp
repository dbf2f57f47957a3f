#include "KavroModuleAIM.h"

namespace KavroLibrary {

KavroModuleAIM::KavroModuleAIM(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleAIM::~KavroModuleAIM() = default;

}  // namespace KavroLibrary
