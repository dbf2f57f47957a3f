#include "KavroModuleLE.h"

namespace KavroLibrary {

KavroModuleLE::KavroModuleLE(NetworkConfiguration* config, int address) : KavroModuleEncoder(config, address) {}

KavroModuleLE::~KavroModuleLE() = default;

}  // namespace KavroLibrary
