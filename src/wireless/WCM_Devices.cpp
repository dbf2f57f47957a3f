#include "WCM_Devices.h"

#include "WCM_Device.h"

namespace KavroLibrary {

WCM_Devices::WCM_Devices(KavroModuleWCM* module) : module_(module) {
    for (int i = 0; i < kSlots; ++i) devices_.push_back(std::make_unique<WCM_Device>(i, module));
}

WCM_Devices::~WCM_Devices() = default;

}  // namespace KavroLibrary
