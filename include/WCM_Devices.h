// The six device slots of a wireless concentrator, in slot order.
#pragma once

#include <memory>
#include <vector>

namespace KavroLibrary {

class KavroModuleWCM;
class WCM_Device;

// The six slots of a wireless concentrator.
class WCM_Devices {
public:
    // Slots of a concentrator.
    static constexpr int kSlots = 6;

    // Made by its concentrator; reached through KavroModuleWCM::Devices().
    explicit WCM_Devices(KavroModuleWCM* module);
    ~WCM_Devices();
    WCM_Devices(const WCM_Devices&) = delete;
    WCM_Devices& operator=(const WCM_Devices&) = delete;

    // The device of slot `index` (0 to 5); null for any other index.
    WCM_Device* GetDevice(int index) const {
        return index >= 0 && index < DeviceCount() ? devices_[static_cast<std::size_t>(index)].get() : nullptr;
    }
    // Number of slots (6).
    int DeviceCount() const { return static_cast<int>(devices_.size()); }
    // The concentrator.
    KavroModuleWCM* Module() const { return module_; }

private:
    KavroModuleWCM* module_;  // not owned
    std::vector<std::unique_ptr<WCM_Device>> devices_;
};

}  // namespace KavroLibrary
