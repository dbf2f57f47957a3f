// The stand-in D2XX library on its own, spoken byte by byte from the wire
// protocol: what the library's own USB link never exercises (device list
// edges, MPSSE errors, long commands, faults, the scenario file).
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "UsbStandIn.h"
#include "core/SimBytes.h"
#include "core/SimFault.h"

using namespace kavrosim;
using namespace std::chrono_literals;

namespace {

std::string text(const Bytes& bytes, std::size_t from, std::size_t count) {
    return std::string(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                       bytes.begin() + static_cast<std::ptrdiff_t>(from + count));
}

// Wait for ready, clock `n` bytes in (0x24) or out (0x10), without the data.
Bytes clock(std::uint8_t direction, std::size_t n) {
    return {0x88, direction, static_cast<std::uint8_t>((n - 1) & 0xFF), static_cast<std::uint8_t>((n - 1) >> 8)};
}

// One 20-byte request block, then reads of `reads` bytes each.
Bytes block(Bytes head, std::initializer_list<std::size_t> reads = {}) {
    Bytes out = clock(0x10, 20);
    head.resize(20, 0);
    out.insert(out.end(), head.begin(), head.end());
    for (std::size_t n : reads) {
        const Bytes read = clock(0x24, n);
        out.insert(out.end(), read.begin(), read.end());
    }
    return out;
}

const char* const kOneProbe =
    "controller usb identity=USBSIM0001 firmware=150\n"
    "module probe GP02000001 range=2 signal=constant:1\n";

// An open channel A of the first device in MPSSE mode, with the pins set up when asked.
struct MpsseRig {
    explicit MpsseRig(bool pins = true) : standIn(kOneProbe) {
        EXPECT_EQ(kFtOk, d2xx().open(0, &handle));
        EXPECT_EQ(kFtOk, d2xx().setTimeouts(handle, 2000, 2000));
        EXPECT_EQ(kFtOk, d2xx().setBitMode(handle, 0, kFtBitModeMpsse));
        if (pins) standIn.send(handle, {0x85, 0x8A, 0x86, 0x03, 0x00, 0x82, 0x02, 0x06, 0x80, 0x09, 0x0B});
    }
    ~MpsseRig() { d2xx().close(handle); }
    const UsbStandIn::D2xx& d2xx() const { return standIn.d2xx(); }

    // A module command (continued past 15 bytes) and the first reply block.
    Bytes exchange(const Bytes& command, unsigned replyLength) {
        Bytes head{0x03, static_cast<std::uint8_t>(command.size()), static_cast<std::uint8_t>(replyLength >> 8),
                   static_cast<std::uint8_t>(replyLength & 0xFF), 0x00};
        head.insert(head.end(), command.begin(), command.begin() + std::min<std::size_t>(command.size(), 15));
        Bytes out = block(head);
        if (command.size() > 15) {
            const std::size_t rest = command.size() - 15;
            const Bytes more = clock(0x10, std::max<std::size_t>(rest, 20));
            out.insert(out.end(), more.begin(), more.end());
            out.insert(out.end(), command.begin() + 15, command.end());
            out.resize(out.size() + std::max<std::size_t>(rest, 20) - rest, 0);
        }
        const Bytes read = clock(0x24, 20);
        out.insert(out.end(), read.begin(), read.end());
        out.push_back(0x87);
        standIn.send(handle, out);
        return standIn.receive(handle, 20);
    }

    UsbStandIn standIn;
    FT_HANDLE handle = nullptr;
};

}  // namespace

// Catches double opens, stale handles after a reload, and a bad scenario that clears the devices.
TEST(UsbStandIn, DeviceListAndOpening) {
    UsbStandIn standIn(
        "controller usb\n"
        "controller usb channel-b=none flags=1\n");
    const auto& d2xx = standIn.d2xx();
    DWORD count = 0;
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    ASSERT_EQ(3u, count);
    DWORD flags = 0;
    EXPECT_EQ(kFtDeviceNotFound,
              d2xx.getDeviceInfoDetail(3, &flags, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    FT_HANDLE handle = nullptr, again = nullptr;
    ASSERT_EQ(kFtOk, d2xx.open(0, &handle));
    EXPECT_EQ(kFtDeviceNotOpened, d2xx.open(0, &again));  // already open here
    EXPECT_EQ(kFtDeviceNotOpened, d2xx.open(2, &again));  // open in another program
    EXPECT_EQ(kFtDeviceNotFound, d2xx.open(3, &again));
    EXPECT_EQ(kFtDeviceNotFound, d2xx.open(-1, &again));
    EXPECT_EQ(kFtOk, d2xx.close(handle));
    EXPECT_EQ(kFtInvalidHandle, d2xx.close(handle));
    EXPECT_EQ(kFtInvalidHandle, d2xx.getQueueStatus(nullptr, &flags));

    ASSERT_EQ(kFtOk, d2xx.open(1, &handle));
    EXPECT_EQ(-1, UsbStandIn::load("controller usb flags=many\n"));
    EXPECT_NE(std::string::npos, UsbStandIn::error().find("scenario text:1:")) << UsbStandIn::error();
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    EXPECT_EQ(3u, count);
    EXPECT_EQ(1, UsbStandIn::load("controller usb channel-b=none\n"));
    EXPECT_EQ(kFtInvalidHandle, d2xx.close(handle));
}

// Catches a controller that answers at a speed other than 460800 baud, or on channel B.
TEST(UsbStandIn, SerialPortAnswersOnlyAt460800OnChannelA) {
    UsbStandIn standIn("controller usb\n");
    auto ask = [&](int index, ULONG baud) {
        FT_HANDLE handle = nullptr;
        EXPECT_EQ(kFtOk, standIn.d2xx().open(index, &handle));
        EXPECT_EQ(kFtOk, standIn.d2xx().setTimeouts(handle, 300, 0));
        EXPECT_EQ(kFtOk, standIn.d2xx().setBaudRate(handle, baud));
        EXPECT_EQ(kFtOk, standIn.d2xx().setDataCharacteristics(handle, 8, 0, 0));
        standIn.send(handle, {'B', 0x00, 0x00});
        Bytes answer = standIn.receive(handle, 43);
        standIn.d2xx().close(handle);
        return answer;
    };
    const Bytes usb = ask(0, 460800);
    ASSERT_EQ(43u, usb.size());
    EXPECT_EQ("USB2", text(usb, 3, 4));
    EXPECT_TRUE(ask(0, 115200).empty());
    EXPECT_TRUE(ask(1, 460800).empty());
    EXPECT_EQ(SimRequestKind::Unknown, standIn.controller(0).requestLog().back().kind);
}

// Catches unknown instructions not refused, pins not required, split instructions lost, bad rates taken.
TEST(UsbStandIn, MpsseEngineEdges) {
    MpsseRig rig(false);
    UsbStandIn& standIn = rig.standIn;
    const FT_HANDLE handle = rig.handle;
    ASSERT_EQ(kFtOk, rig.d2xx().setTimeouts(handle, 300, 0));
    standIn.send(handle, {0xAB});
    EXPECT_EQ(2u, standIn.queued(handle));  // answered at once
    EXPECT_EQ((Bytes{0xFA, 0xAB}), standIn.receive(handle, 2));
    EXPECT_EQ(kFtInvalidParameter, rig.d2xx().setBitMode(handle, 0, 0x03));

    // Until the clock, data and chip-select pins are outputs nothing is heard.
    standIn.send(handle, block({0x08}, {20}));
    EXPECT_TRUE(standIn.receive(handle, 20).empty());
    EXPECT_EQ(0u, standIn.controller(0).requestCount());

    standIn.send(handle, {0x85, 0x8A, 0x86, 0x03});
    standIn.send(handle, {0x00, 0x80, 0x09, 0x0B});
    const Bytes identify = block({0x08}, {20, 20});
    standIn.send(handle, Bytes(identify.begin(), identify.begin() + 10));
    standIn.send(handle, Bytes(identify.begin() + 10, identify.end()));
    const Bytes identity = standIn.receive(handle, 40);
    ASSERT_EQ(40u, identity.size());
    EXPECT_EQ(0u, getLe32(identity, 2));
    EXPECT_EQ("USBSIM0001P770100AUSB21.50 ", text(identity, 7, 27));

    // (Good rates are the USB network tests'.)
    standIn.send(handle, block({0x04}, {20}));  // rate 0
    EXPECT_EQ(1u, getLe32(standIn.receive(handle, 20), 2));
    EXPECT_EQ(SimSpeed::Low, standIn.controller(0).busSpeed());
}

// Catches long commands cut at 15 bytes, 0xFFFF misread, and cut answers mishandled.
TEST(UsbStandIn, ModuleCommandsAndFaultsInBlocks) {
    MpsseRig rig;
    SimController& controller = rig.standIn.controller(0);
    rig.exchange({'S', 1, 'G', 'P', '0', '2', '0', '0', '0', '0', '0', '1', 0}, 2);  // to address 1
    Bytes write{'b', 1, 0x10, 0x00, 0x00, 0x00, 3, 0xA0, 0xA1, 0xA2};
    write.resize(39, 0);
    putLe16(write, complementSum16(write, 0, write.size()));
    const Bytes written = rig.exchange(write, 2);
    ASSERT_EQ(20u, written.size());
    EXPECT_EQ(0u, getLe32(written, 2));
    EXPECT_EQ(write, controller.requestLog().back().command);

    rig.exchange({'Q', 1}, 0xFFFF);
    EXPECT_EQ(2, controller.requestLog().back().type);

    // A cut block leaves the read short (silent modules and late answers are
    // the fault matrix's, through the library).
    rig.standIn.limitReadWait(200ms);
    controller.injectFault(SimFault::cutFrame(5).on(SimRequestKind::Identify));
    rig.standIn.send(rig.handle, block({0x08}, {20, 20}));
    EXPECT_EQ(5u, rig.standIn.receive(rig.handle, 40).size());
}

// Catches the scenario file named by the environment not read, or its error not reported.
TEST(UsbStandIn, ScenarioFileNamedByTheEnvironment) {
    // In a fresh process, where the stand-in has not been used yet.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TempDir dir;
    const std::string path = dir.write("bench.scn",
                                       "controller ethernet auto\n"
                                       "controller usb channel-b=none\n"
                                       "module probe GP05000001 range=5\n"
                                       "controller usb\n");
    // The child exits without unwinding: it removes its own folder.
    auto listed = [&dir](const std::string& scenario) {
        setenv("KAVRO_SIM_USB_SCENARIO", scenario.c_str(), 1);
        DWORD count = 99;
        const FT_STATUS status = UsbStandIn::D2xx().createDeviceInfoList(&count);
        std::filesystem::remove_all(dir.path());
        return status == kFtOk ? static_cast<int>(count) : -1;
    };
    EXPECT_EXIT(std::exit(listed(path)), testing::ExitedWithCode(3), "");
    EXPECT_EXIT(std::exit(listed(path + ".missing")), testing::ExitedWithCode(0),
                "kavro-sim usb: .*bench.scn.missing: cannot be read");
}
