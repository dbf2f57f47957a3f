// The stand-in libftd2xx.so, loaded by full path with RTLD_GLOBAL so that the
// library's own dlopen("libftd2xx.so") finds it by its SONAME. A UsbStandIn
// lists the devices of a scenario for a test and offers its D2XX calls.
#pragma once

#include <dlfcn.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/SimController.h"
#include "usb/D2xx.h"
#include "usb/KavroSimUsb.h"

class UsbStandIn {
public:
    using Bytes = std::vector<std::uint8_t>;

    // Lists the usb controllers of `scenario`; throws when it is wrong.
    explicit UsbStandIn(const std::string& scenario) {
        if (load(scenario) < 0) throw std::invalid_argument(error());
    }
    ~UsbStandIn() {
        symbol<KavroSimUsbLimitReadWait>("kavro_sim_usb_limit_read_wait")(0);
        symbol<KavroSimUsbClear>("kavro_sim_usb_clear")();
    }
    UsbStandIn(const UsbStandIn&) = delete;
    UsbStandIn& operator=(const UsbStandIn&) = delete;

    // Replaces the devices; the number listed, or -1.
    static int load(const std::string& scenario) {
        return symbol<KavroSimUsbLoadText>("kavro_sim_usb_load_text")(scenario.c_str());
    }
    static std::string error() { return symbol<KavroSimUsbError>("kavro_sim_usb_error")(); }

    // The controller of the n-th usb controller line.
    kavrosim::SimController& controller(int index) const {
        void* found = symbol<KavroSimUsbController>("kavro_sim_usb_controller")(index);
        if (found == nullptr) throw std::out_of_range("no usb controller " + std::to_string(index));
        return *static_cast<kavrosim::SimController*>(found);
    }

    // Lost answers cost this much instead of the host's full time-out.
    void limitReadWait(std::chrono::milliseconds limit) const {
        symbol<KavroSimUsbLimitReadWait>("kavro_sim_usb_limit_read_wait")(static_cast<unsigned>(limit.count()));
    }

    // The stand-in's own D2XX entry points.
    struct D2xx {
        decltype(&FT_CreateDeviceInfoList) createDeviceInfoList =
            symbol<decltype(&FT_CreateDeviceInfoList)>("FT_CreateDeviceInfoList");
        decltype(&FT_GetDeviceInfoDetail) getDeviceInfoDetail =
            symbol<decltype(&FT_GetDeviceInfoDetail)>("FT_GetDeviceInfoDetail");
        decltype(&FT_Open) open = symbol<decltype(&FT_Open)>("FT_Open");
        decltype(&FT_Close) close = symbol<decltype(&FT_Close)>("FT_Close");
        decltype(&FT_SetBitMode) setBitMode = symbol<decltype(&FT_SetBitMode)>("FT_SetBitMode");
        decltype(&FT_SetBaudRate) setBaudRate = symbol<decltype(&FT_SetBaudRate)>("FT_SetBaudRate");
        decltype(&FT_SetDataCharacteristics) setDataCharacteristics =
            symbol<decltype(&FT_SetDataCharacteristics)>("FT_SetDataCharacteristics");
        decltype(&FT_SetTimeouts) setTimeouts = symbol<decltype(&FT_SetTimeouts)>("FT_SetTimeouts");
        decltype(&FT_GetQueueStatus) getQueueStatus = symbol<decltype(&FT_GetQueueStatus)>("FT_GetQueueStatus");
        decltype(&FT_Write) write = symbol<decltype(&FT_Write)>("FT_Write");
        decltype(&FT_Read) read = symbol<decltype(&FT_Read)>("FT_Read");
    };
    const D2xx& d2xx() const { return d2xx_; }

    // --- Helpers for tests on an open handle.
    void send(kavrosim::FT_HANDLE handle, Bytes bytes) const {
        kavrosim::DWORD written = 0;
        ASSERT_EQ(kavrosim::kFtOk,
                  d2xx_.write(handle, bytes.data(), static_cast<kavrosim::DWORD>(bytes.size()), &written));
        ASSERT_EQ(bytes.size(), written);
    }
    Bytes receive(kavrosim::FT_HANDLE handle, std::size_t count) const {
        Bytes out(count);
        kavrosim::DWORD got = 0;
        EXPECT_EQ(kavrosim::kFtOk, d2xx_.read(handle, out.data(), static_cast<kavrosim::DWORD>(count), &got));
        out.resize(got);
        return out;
    }
    kavrosim::DWORD queued(kavrosim::FT_HANDLE handle) const {
        kavrosim::DWORD waiting = 0;
        EXPECT_EQ(kavrosim::kFtOk, d2xx_.getQueueStatus(handle, &waiting));
        return waiting;
    }

    static void* library() {
        static void* const handle = dlopen(KAVRO_SIM_USB_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
        if (handle == nullptr) throw std::runtime_error(std::string("cannot load the stand-in: ") + dlerror());
        return handle;
    }

private:
    template <typename F>
    static F symbol(const char* name) {
        void* found = dlsym(library(), name);
        if (found == nullptr) throw std::runtime_error(std::string("the stand-in lacks ") + name);
        return reinterpret_cast<F>(found);
    }

    D2xx d2xx_;
};
