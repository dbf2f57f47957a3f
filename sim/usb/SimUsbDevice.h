// One FTDI channel as D2XX shows it: what the device list says about it,
// whether it is open, its bit mode and line settings, and the bytes waiting
// for the host. A channel wired to a controller answers it: as a plain
// serial port (460800 baud, 8N1) the get-info request "B" 0x00 0x00, and in
// MPSSE mode the 20-byte blocks of the USB interface module.
//
// Thread-safe: read() waits without blocking the other calls.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/SimController.h"
#include "usb/D2xx.h"
#include "usb/SimMpsseEngine.h"
#include "usb/SimUsbBlockPort.h"

namespace kavrosim {

// The device-list entry of a channel.
struct SimUsbDeviceInfo {
    std::string description;   // up to 63 characters: "Pellaquin USBIM A"
    std::string serialNumber;  // up to 15 characters
    DWORD type = kFtDevice2232H;
    DWORD flags = 0;        // as listed while nobody here has it open; bit 0: opened elsewhere
    DWORD id = 0x04036010;  // vendor and product
    DWORD locationId = 0;
};

class SimUsbDevice {
public:
    using Clock = std::chrono::steady_clock;

    // A channel wired to nothing when `controller` is null.
    SimUsbDevice(SimUsbDeviceInfo info, std::shared_ptr<SimController> controller);
    SimUsbDevice(const SimUsbDevice&) = delete;
    SimUsbDevice& operator=(const SimUsbDevice&) = delete;

    const SimUsbDeviceInfo& info() const { return info_; }
    SimController* controller() const { return controller_.get(); }
    // The flags of the device list: bit 0 set while open.
    DWORD listedFlags() const;
    bool isOpen() const;

    // Open fails while the channel is open, here or elsewhere.
    FT_STATUS open();
    FT_STATUS close();
    FT_STATUS reset();
    FT_STATUS setBitMode(UCHAR mask, UCHAR mode);
    FT_STATUS setBaudRate(ULONG baudRate);
    FT_STATUS setDataCharacteristics(UCHAR wordLength, UCHAR stopBits, UCHAR parity);
    FT_STATUS setFlowControl(USHORT flowControl);
    FT_STATUS setTimeouts(ULONG readMs, ULONG writeMs);
    FT_STATUS purge(ULONG mask);
    // Bytes the host can read right now.
    DWORD queued() const;
    FT_STATUS write(const std::uint8_t* bytes, DWORD count, DWORD* written);
    // Waits until `count` bytes are there or the read time-out passes, and
    // returns what is there. A time-out of 0 waits only for bytes already
    // on their way, so that a host that never set one cannot hang.
    FT_STATUS read(std::uint8_t* bytes, DWORD count, DWORD* got);

    // Caps how long read() waits, whatever the host's time-out (tests of
    // lost answers); nullopt removes the cap.
    void limitReadWait(std::optional<std::chrono::milliseconds> limit);

    UCHAR bitMode() const;
    ULONG baudRate() const;

private:
    void powerOn();  // the state of a freshly opened channel; mutex_ held
    void serialWrite(const std::uint8_t* bytes, DWORD count);
    void mpsseWrite(const std::uint8_t* bytes, DWORD count);
    void deliver(SimTimedBytes bytes);
    DWORD readyBytes(Clock::time_point now) const;
    std::optional<Clock::time_point> nextArrival(Clock::time_point now) const;

    const SimUsbDeviceInfo info_;
    const std::shared_ptr<SimController> controller_;
    std::unique_ptr<SimUsbBlockPort> port_;

    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    bool open_ = false;
    UCHAR bitMode_ = kFtBitModeReset;
    ULONG baudRate_ = 9600;
    UCHAR wordLength_ = 8;
    UCHAR stopBits_ = 0;
    UCHAR parity_ = 0;
    ULONG readTimeoutMs_ = 0;
    std::optional<std::chrono::milliseconds> readLimit_;
    SimMpsseEngine engine_;
    Bytes serialPending_;
    std::deque<SimTimedBytes> toHost_;
};

}  // namespace kavrosim
