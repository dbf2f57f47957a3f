// The exported functions of the stand-in libftd2xx.so: the D2XX calls over
// the process's simulated USB devices, and the control functions of
// KavroSimUsb.h. Nothing thrown inside may cross into the C caller.
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>

#include "core/SimScenario.h"
#include "usb/D2xx.h"
#include "usb/KavroSimUsb.h"
#include "usb/SimUsbBus.h"

using namespace kavrosim;

namespace {

const char* const kScenarioVariable = "KAVRO_SIM_USB_SCENARIO";

struct StandIn {
    SimUsbBus bus;
    std::mutex errorLock;
    std::string error;
};

// Never destroyed: the host may close its handles from its own static
// destructors, after this library's would have run.
StandIn& standIn() {
    static StandIn* const instance = new StandIn;
    static std::once_flag scenarioRead;
    std::call_once(scenarioRead, [] {
        const char* path = std::getenv(kScenarioVariable);
        if (path == nullptr || *path == '\0') return;
        try {
            instance->bus.load(loadScenario(path));
        } catch (const std::exception& error) {
            std::cerr << "kavro-sim usb: " << error.what() << std::endl;
        }
    });
    return *instance;
}

SimUsbBus& bus() { return standIn().bus; }

// Runs a call on an open handle's device.
template <typename Call>
FT_STATUS onDevice(FT_HANDLE handle, Call&& call) {
    try {
        const std::shared_ptr<SimUsbDevice> device = bus().opened(handle);
        if (!device) return kFtInvalidHandle;
        return call(*device);
    } catch (...) {
        return kFtOtherError;
    }
}

// Replaces the devices with those of the scenario `read` returns.
template <typename Read>
int loadDevices(Read&& read) {
    StandIn& s = standIn();
    try {
        return static_cast<int>(s.bus.load(read()));
    } catch (const std::exception& error) {
        std::lock_guard<std::mutex> lock(s.errorLock);
        s.error = error.what();
        return -1;
    }
}

}  // namespace

extern "C" {

FT_STATUS FT_CreateDeviceInfoList(DWORD* numDevices) {
    if (numDevices == nullptr) return kFtInvalidParameter;
    try {
        *numDevices = bus().createInfoList();
        return kFtOk;
    } catch (...) {
        return kFtOtherError;
    }
}

FT_STATUS FT_GetDeviceInfoDetail(DWORD index, DWORD* flags, DWORD* type, DWORD* id, DWORD* locId, void* serialNumber,
                                 void* description, FT_HANDLE* handle) {
    try {
        return bus().deviceInfo(index, flags, type, id, locId, static_cast<char*>(serialNumber),
                                static_cast<char*>(description), handle);
    } catch (...) {
        return kFtOtherError;
    }
}

FT_STATUS FT_GetDeviceInfo(FT_HANDLE handle, DWORD* type, DWORD* id, char* serialNumber, char* description,
                           void* /*dummy*/) {
    try {
        const std::shared_ptr<SimUsbDevice> device = bus().opened(handle);
        if (!device) return kFtInvalidHandle;
        const SimUsbDeviceInfo& info = device->info();
        if (type != nullptr) *type = info.type;
        if (id != nullptr) *id = info.id;
        if (serialNumber != nullptr) {
            const std::string text = info.serialNumber.substr(0, kFtSerialNumberSize - 1);
            std::memcpy(serialNumber, text.c_str(), text.size() + 1);
        }
        if (description != nullptr) {
            const std::string text = info.description.substr(0, kFtDescriptionSize - 1);
            std::memcpy(description, text.c_str(), text.size() + 1);
        }
        return kFtOk;
    } catch (...) {
        return kFtOtherError;
    }
}

FT_STATUS FT_Open(int deviceNumber, FT_HANDLE* handle) {
    try {
        return bus().open(deviceNumber, handle);
    } catch (...) {
        return kFtOtherError;
    }
}

FT_STATUS FT_Close(FT_HANDLE handle) {
    try {
        return bus().close(handle);
    } catch (...) {
        return kFtOtherError;
    }
}

FT_STATUS FT_ResetDevice(FT_HANDLE handle) {
    return onDevice(handle, [](SimUsbDevice& device) { return device.reset(); });
}

FT_STATUS FT_SetBitMode(FT_HANDLE handle, UCHAR mask, UCHAR mode) {
    return onDevice(handle, [&](SimUsbDevice& device) { return device.setBitMode(mask, mode); });
}

FT_STATUS FT_SetBaudRate(FT_HANDLE handle, ULONG baudRate) {
    return onDevice(handle, [&](SimUsbDevice& device) { return device.setBaudRate(baudRate); });
}

FT_STATUS FT_SetDataCharacteristics(FT_HANDLE handle, UCHAR wordLength, UCHAR stopBits, UCHAR parity) {
    return onDevice(handle,
                    [&](SimUsbDevice& device) { return device.setDataCharacteristics(wordLength, stopBits, parity); });
}

FT_STATUS FT_SetFlowControl(FT_HANDLE handle, USHORT flowControl, UCHAR, UCHAR) {
    return onDevice(handle, [&](SimUsbDevice& device) { return device.setFlowControl(flowControl); });
}

FT_STATUS FT_SetChars(FT_HANDLE handle, UCHAR, UCHAR, UCHAR, UCHAR) {
    // Event and error characters change nothing the controller sees.
    return onDevice(handle, [](SimUsbDevice&) { return kFtOk; });
}

FT_STATUS FT_SetTimeouts(FT_HANDLE handle, ULONG readTimeout, ULONG writeTimeout) {
    return onDevice(handle, [&](SimUsbDevice& device) { return device.setTimeouts(readTimeout, writeTimeout); });
}

FT_STATUS FT_Purge(FT_HANDLE handle, ULONG mask) {
    return onDevice(handle, [&](SimUsbDevice& device) { return device.purge(mask); });
}

FT_STATUS FT_GetStatus(FT_HANDLE handle, DWORD* rxBytes, DWORD* txBytes, DWORD* eventStatus) {
    if (rxBytes == nullptr || txBytes == nullptr || eventStatus == nullptr) return kFtInvalidParameter;
    return onDevice(handle, [&](SimUsbDevice& device) {
        *rxBytes = device.queued();
        *txBytes = 0;  // writes are carried out at once
        *eventStatus = 0;
        return kFtOk;
    });
}

FT_STATUS FT_GetQueueStatus(FT_HANDLE handle, DWORD* rxBytes) {
    if (rxBytes == nullptr) return kFtInvalidParameter;
    return onDevice(handle, [&](SimUsbDevice& device) {
        *rxBytes = device.queued();
        return kFtOk;
    });
}

FT_STATUS FT_Write(FT_HANDLE handle, void* buffer, DWORD bytesToWrite, DWORD* bytesWritten) {
    if (buffer == nullptr && bytesToWrite > 0) return kFtInvalidParameter;
    return onDevice(handle, [&](SimUsbDevice& device) {
        return device.write(static_cast<const std::uint8_t*>(buffer), bytesToWrite, bytesWritten);
    });
}

FT_STATUS FT_Read(FT_HANDLE handle, void* buffer, DWORD bytesToRead, DWORD* bytesReturned) {
    if (buffer == nullptr && bytesToRead > 0) return kFtInvalidParameter;
    return onDevice(handle, [&](SimUsbDevice& device) {
        return device.read(static_cast<std::uint8_t*>(buffer), bytesToRead, bytesReturned);
    });
}

int kavro_sim_usb_load_text(const char* scenario) {
    if (scenario == nullptr) return -1;
    return loadDevices([scenario] {
        std::istringstream in(scenario);
        return parseScenario(in, "scenario text");
    });
}

int kavro_sim_usb_load_file(const char* path) {
    if (path == nullptr) return -1;
    return loadDevices([path] { return loadScenario(path); });
}

void kavro_sim_usb_clear(void) {
    try {
        bus().clear();
    } catch (...) {
    }
}

const char* kavro_sim_usb_error(void) {
    StandIn& s = standIn();
    std::lock_guard<std::mutex> lock(s.errorLock);
    return s.error.c_str();
}

void* kavro_sim_usb_controller(int index) {
    if (index < 0) return nullptr;
    return bus().controller(static_cast<std::size_t>(index)).get();
}

void kavro_sim_usb_limit_read_wait(unsigned milliseconds) {
    if (milliseconds == 0) {
        bus().limitReadWait(std::nullopt);
    } else {
        bus().limitReadWait(std::chrono::milliseconds(milliseconds));
    }
}

}  // extern "C"
