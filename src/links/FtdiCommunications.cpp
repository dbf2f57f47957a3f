#include "links/FtdiCommunications.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "core/Diagnostics.h"
#include "core/ProtocolSleep.h"

namespace KavroLibrary {

namespace {

FtdiApi& api() { return ftdiTable(); }

FT_STATUS writeBytes(void* handle, std::initializer_list<unsigned char> bytes) {
    std::vector<unsigned char> buffer(bytes);
    DWORD written = 0;
    return api().Write(handle, buffer.data(), static_cast<DWORD>(buffer.size()), &written);
}

// A transmit queue that never empties means a dead device; give up after
// this long rather than hang the caller.
constexpr auto kTransmitQueueLimit = std::chrono::seconds(5);

}  // namespace

bool WaitForEmptyTransmitQueue(void* handle, long stepMilliseconds) {
    const auto deadline = std::chrono::steady_clock::now() + kTransmitQueueLimit;
    for (;;) {
        DWORD rx = 0;
        DWORD tx = 0;
        DWORD events = 0;
        if (api().GetStatus(handle, &rx, &tx, &events) != FT_OK) return false;
        if (tx == 0) return true;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        protocolSleepMs(stepMilliseconds);
    }
}

FT_STATUS SetRS232BaudRate(void* handle) {
    FT_STATUS status = FT_OK;
    try {
        status = api().SetFlowControl(handle, FT_FLOW_NONE, 0, 0);
        if (status == FT_OK) status = api().SetBaudRate(handle, 460800);
    } catch (...) {
        status = FT_OTHER_ERROR;
    }
    if (status != FT_OK) diagnostic("FTDI library returned an error in FTDI SetRS232BaudRate.");
    return status;
}

FT_STATUS ResetupDevice(void*& handle, int deviceIndex) {
    FT_STATUS status = FT_OK;
    try {
        status = api().Open(deviceIndex, &handle);
        if (status == FT_OK) status = api().ResetDevice(handle);
        if (status == FT_OK) {
            protocolSleepMs(5);
            status = api().SetBitMode(handle, 0, FT_BITMODE_RESET);
        }
        if (status == FT_OK) {
            protocolSleepMs(150);
            status = api().SetTimeouts(handle, 1000, 0);
        }
        if (status == FT_OK) status = SetRS232BaudRate(handle);
        if (status == FT_OK) status = api().SetDataCharacteristics(handle, FT_BITS_8, FT_STOP_BITS_1, FT_PARITY_NONE);
        if (status == FT_OK) status = api().Purge(handle, FT_PURGE_RX | FT_PURGE_TX);
    } catch (...) {
        status = FT_OTHER_ERROR;
    }
    if (status != FT_OK) diagnostic("FTDI library returned an error in ResetupDevice.");
    return status;
}

std::string GetModuleTypeController(void* handle) {
    std::string type;
    try {
        writeBytes(handle, {'B', 0x00, 0x00});
        WaitForEmptyTransmitQueue(handle, 150);
        unsigned char reply[43] = {};
        DWORD got = 0;
        if (api().Read(handle, reply, sizeof reply, &got) != FT_OK || got < sizeof reply) return std::string();
        const char* text = reinterpret_cast<const char*>(reply + 3);
        type.assign(text, strnlen(text, 4));
    } catch (...) {
        diagnostic("Error in controller identification.");
    }
    return type;
}

FT_STATUS SetupSPI(void* handle, NetworkConfiguration* /*config*/) {
    FT_STATUS status = api().ResetDevice(handle);
    if (status != FT_OK) return status;
    protocolSleepMs(350);
    if ((status = api().Purge(handle, FT_PURGE_RX | FT_PURGE_TX)) != FT_OK) return status;
    if ((status = api().SetChars(handle, 0, 0, 0, 0)) != FT_OK) return status;
    if ((status = api().SetTimeouts(handle, 5000, 5000)) != FT_OK) return status;
    if ((status = api().SetFlowControl(handle, FT_FLOW_NONE, 0, 0)) != FT_OK) return status;
    if ((status = api().SetBitMode(handle, 0, FT_BITMODE_RESET)) != FT_OK) return status;
    if ((status = api().SetBitMode(handle, 0, FT_BITMODE_MPSSE)) != FT_OK) return status;
    protocolSleepMs(350);
    // An invalid instruction makes the engine answer, proving it is in MPSSE.
    if ((status = writeBytes(handle, {0xAB})) != FT_OK) return status;
    protocolSleepMs(350);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    DWORD waiting = 0;
    for (;;) {
        if ((status = api().GetQueueStatus(handle, &waiting)) != FT_OK) return status;
        if (waiting > 0 || std::chrono::steady_clock::now() >= deadline) break;
        protocolSleepMs(1);
    }
    // An engine that never answered is not in MPSSE mode.
    if (waiting == 0) return FT_OTHER_ERROR;
    {
        std::vector<unsigned char> discard(waiting);
        DWORD got = 0;
        if ((status = api().Read(handle, discard.data(), waiting, &got)) != FT_OK) return status;
    }
    if ((status = writeBytes(handle, {0x85})) != FT_OK) return status;  // loop-back off
    if ((status = api().GetQueueStatus(handle, &waiting)) != FT_OK) return status;
    if ((status = writeBytes(handle, {0x8A})) != FT_OK) return status;              // 60 MHz base clock
    if ((status = writeBytes(handle, {0x86, 0x03, 0x00})) != FT_OK) return status;  // 7.5 MHz serial clock
    if ((status = writeBytes(handle, {0x82, 0x02, 0x06})) != FT_OK) return status;  // upper pins
    protocolSleepMs(10);
    if (!WaitForEmptyTransmitQueue(handle, 10)) return FT_OTHER_ERROR;
    if ((status = writeBytes(handle, {0x80, 0x09, 0x0B})) != FT_OK) return status;  // lower pins
    protocolSleepMs(10);
    if (!WaitForEmptyTransmitQueue(handle, 10)) return FT_OTHER_ERROR;
    return api().Purge(handle, FT_PURGE_RX | FT_PURGE_TX);
}

FT_STATUS FTDICommunications::Open(NetworkConfiguration* config) {
    if (!ftdiBind()) return FT_DEVICE_NOT_OPENED;
    void* handle = nullptr;
    if (ResetupDevice(handle, config->DeviceIndex) != FT_OK) {
        if (handle != nullptr) api().Close(handle);
        return FT_DEVICE_NOT_OPENED;
    }
    // Devices plugged in or out since the search move the indices: talk only
    // to the controller that was found.
    if (!config->DeviceSerial.empty() && api().GetDeviceInfo != nullptr) {
        DWORD type = 0;
        DWORD id = 0;
        char serial[64] = {};
        char description[65] = {};
        if (api().GetDeviceInfo(handle, &type, &id, serial, description, nullptr) != FT_OK ||
            config->DeviceSerial != std::string(serial, strnlen(serial, sizeof serial))) {
            diagnostic("USB interface module ", config->DeviceSerial, " is no longer device ", config->DeviceIndex);
            api().Close(handle);
            return FT_DEVICE_NOT_OPENED;
        }
    }
    if (GetModuleTypeController(handle) != "USB2") {
        api().Close(handle);
        return FT_DEVICE_NOT_OPENED;
    }
    const FT_STATUS status = SetupSPI(handle, config);
    if (status != FT_OK) {
        diagnostic("Error setting SPI", status);
        api().Close(handle);
        return status;
    }
    config->FtdiHandle = handle;
    return FT_OK;
}

void FTDICommunications::Close(void* handle) {
    if (handle != nullptr && ftdiBind()) api().Close(handle);
}

void UpdateCapabilitiesUSBIM(NetworkConfiguration* config) {
    const bool modern = config->ControllerValue > 149;
    config->ControllerFlag0 = true;
    config->BufferedExternalSourceFlag = modern;
    config->ReadburstFlag = modern;
    config->DynamicFlag = modern;
    config->Dynamic2Flag = modern;
    config->DynamicExternalSourceFlag = false;
    config->ControllerFlag6 = false;
    if (modern) {
        config->offerSpeed(eNetSpeed::High);
        config->offerSpeed(eNetSpeed::UltraHigh);
    }
}

}  // namespace KavroLibrary
