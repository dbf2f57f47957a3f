#include "KavroModuleWCM.h"

namespace KavroLibrary {

KavroModuleWCM::KavroModuleWCM(NetworkConfiguration* config, int address) : KavroModule(config, address) {}

KavroModuleWCM::~KavroModuleWCM() = default;

}  // namespace KavroLibrary
