// The FTDI devices of the process as the stand-in D2XX library lists them,
// in order: for every usb controller of a scenario its channel A (wired to
// the controller) and, when listed, its channel B (wired to nothing). Open
// handles keep their device alive when the list is replaced.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "core/SimController.h"
#include "core/SimScenario.h"
#include "usb/D2xx.h"
#include "usb/SimUsbDevice.h"

namespace kavrosim {

class SimUsbBus {
public:
    SimUsbBus() = default;
    ~SimUsbBus();
    SimUsbBus(const SimUsbBus&) = delete;
    SimUsbBus& operator=(const SimUsbBus&) = delete;

    // Replaces the devices with those of the scenario's usb controllers
    // (other controllers are not the stand-in's to serve) and invalidates
    // every open handle. Returns the number of devices listed.
    std::size_t load(const SimScenario& scenario);
    void clear();

    std::size_t deviceCount() const;
    std::shared_ptr<SimUsbDevice> device(std::size_t index) const;
    // The controller of the n-th usb controller line; null past the end.
    std::shared_ptr<SimController> controller(std::size_t index) const;
    // Caps how long every device's FT_Read waits (tests of lost answers),
    // now and after later loads; nullopt removes the cap.
    void limitReadWait(std::optional<std::chrono::milliseconds> limit);

    // --- The D2XX device list and handles.
    // Takes the snapshot that deviceInfo() reports from.
    DWORD createInfoList();
    FT_STATUS deviceInfo(DWORD index, DWORD* flags, DWORD* type, DWORD* id, DWORD* locationId, char* serialNumber,
                         char* description, FT_HANDLE* handle) const;
    FT_STATUS open(int index, FT_HANDLE* handle);
    FT_STATUS close(FT_HANDLE handle);
    // The device behind an open handle, or null.
    std::shared_ptr<SimUsbDevice> opened(FT_HANDLE handle) const;

private:
    struct Handle {  // its address is the handle
        std::shared_ptr<SimUsbDevice> device;
    };

    mutable std::mutex mutex_;
    std::vector<std::shared_ptr<SimController>> controllers_;
    std::vector<std::shared_ptr<SimUsbDevice>> devices_;
    std::vector<std::shared_ptr<SimUsbDevice>> listed_;  // the last createInfoList
    std::map<FT_HANDLE, std::unique_ptr<Handle>> handles_;
    std::optional<std::chrono::milliseconds> readLimit_;
};

}  // namespace kavrosim
