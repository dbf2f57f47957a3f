// The wireless concentrator module (WCM), which relays up to six wireless hand
// tools. It keeps what it knows of each tool in numbered fields of its
// configuration memory; WCM_Devices holds one WCM_Device per slot.
#pragma once

#include <cstdint>
#include <memory>

#include "KavroModule.h"

namespace KavroLibrary {

class WCM_Devices;

// A wireless concentrator module: up to six hand tools in its slots.
class KavroModuleWCM : public KavroModule {
public:
    // Reads the scan duration and every slot's fields. A concentrator whose
    // fields cannot be read still joins the network: the failure is written
    // as a diagnostic and UpdateFieldData() may be called again later.
    KavroModuleWCM(NetworkConfiguration* config, int address);
    ~KavroModuleWCM() override;

    // The concentrator's six slots.
    WCM_Devices* Devices() const { return devices_.get(); }

    // The scan time in seconds, as last read.
    std::uint32_t ScanDuration() const { return scanDuration_; }
    // Reads the scan time afresh; throws "Unable to get WCM ScanDuration value.".
    std::uint32_t getScanDuration();
    // The scan duration, then every device's fields, in slot order.
    void UpdateFieldData();
    // True while a restart runs; throws "Unable to get WCM Restart flag value.".
    bool getRestartFlag();
    // Restarts the concentrator and returns when its restart flag clears, or
    // once more than ScanDuration() whole seconds have passed with the flag
    // still set. Throws "Unable to restart WCM" when the request fails.
    void Restart();

private:
    std::unique_ptr<WCM_Devices> devices_;
    std::uint32_t scanDuration_ = 0;
};

}  // namespace KavroLibrary
