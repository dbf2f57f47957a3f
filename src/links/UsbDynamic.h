// Dynamic streaming over the USB interface module.
#pragma once

#include <cstdint>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// The link table's StartDynamic: packet checking as the controller's firmware
// allows, then the run's two threads.
void StartDynamicFTDI(NetworkConfiguration* config, sDynamicMode mode);
// Sends the start request; false when the link is lost.
bool SendStartDynMasterCMD(NetworkConfiguration* config, sDynamicMode mode);
// Sends the stop request; the controller's status.
std::uint32_t StopDynamic(NetworkConfiguration* config);
// The read thread.
void DynamicReadThreadProcessFTDI(NetworkConfiguration* config, sDynamicMode mode) noexcept;

}  // namespace KavroLibrary
