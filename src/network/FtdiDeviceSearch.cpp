// Enumeration of the USB interface modules attached to the machine.
#include <cstring>

#include "KavroNetworkUSBIM.h"
#include "core/Diagnostics.h"
#include "links/FtdiCommunications.h"

namespace KavroLibrary {

namespace {

constexpr char kDescriptionPrefix[] = "Pellaquin USBIM";
constexpr DWORD kFlagOpened = 1;

// Channel A is wired to the controller: the description's last non-blank
// character names the channel.
bool isChannelA(const char* description) {
    const std::size_t length = strnlen(description, 64);
    for (std::size_t i = length; i > 0; --i) {
        if (description[i - 1] != ' ') return description[i - 1] == 'A';
    }
    return false;
}

}  // namespace

void FTDICommunications::FindDevices(std::vector<KavroNetwork*>& networks) {
    if (!ftdiBind()) return;
    FtdiApi& api = ftdiTable();
    DWORD count = 0;
    if (api.CreateDeviceInfoList(&count) != FT_OK) {
        diagnostic("Could not create FTDI info list.");
        return;
    }
    for (DWORD i = 0; i < count; ++i) {
        DWORD flags = 0;
        DWORD type = 0;
        DWORD id = 0;
        DWORD location = 0;
        char serial[64] = {};
        char description[65] = {};
        FT_HANDLE listed = nullptr;
        if (api.GetDeviceInfoDetail(i, &flags, &type, &id, &location, serial, description, &listed) != FT_OK) {
            diagnostic("Could not get FTDI device info detail.");
            continue;
        }
        description[64] = '\0';
        // Bit 0 says another program has the device open; bit 1 only that
        // it runs at high speed, as every free FT2232H does.
        if (type != FT_DEVICE_2232H || (flags & kFlagOpened) != 0) continue;
        if (std::strncmp(description, kDescriptionPrefix, sizeof kDescriptionPrefix - 1) != 0) continue;
        if (!isChannelA(description)) continue;

        void* handle = nullptr;
        const bool usable =
            ResetupDevice(handle, static_cast<int>(i)) == FT_OK && GetModuleTypeController(handle) == "USB2";
        if (usable) {
            auto* network = new KavroNetworkUSBIM(static_cast<int>(networks.size()), static_cast<int>(i));
            network->Configuration()->DeviceSerial.assign(serial, strnlen(serial, sizeof serial));
            networks.push_back(network);
        }
        if (handle != nullptr) api.Close(handle);
    }
}

}  // namespace KavroLibrary
