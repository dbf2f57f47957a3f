#include "KavroModuleDIOM.h"

namespace KavroLibrary {

KavroModuleDIOM::KavroModuleDIOM(NetworkConfiguration* config, int address) : KavroModuleDIOMBase(config, address) {}

KavroModuleDIOM::~KavroModuleDIOM() = default;

}  // namespace KavroLibrary
