// The wireless concentrator module, which relays up to six wireless hand tools.
#pragma once

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleWCM : public KavroModule {
public:
    KavroModuleWCM(NetworkConfiguration* config, int address);
    ~KavroModuleWCM() override;
};

}  // namespace KavroLibrary
