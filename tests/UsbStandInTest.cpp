// The stand-in D2XX library on its own: the device list, the controller's
// serial port, the MPSSE engine and the 20-byte blocks, spoken byte by byte
// from the wire protocol so that the stand-in's own decoder is what is
// tested.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "UsbStandIn.h"
#include "core/SimBytes.h"
#include "core/SimFault.h"
#include "core/SimModule.h"

using namespace kavrosim;
using namespace std::chrono_literals;
using Bytes = UsbStandIn::Bytes;

namespace {

std::string text(const Bytes& bytes, std::size_t from, std::size_t count) {
    return std::string(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                       bytes.begin() + static_cast<std::ptrdiff_t>(from + count));
}

unsigned le16(const Bytes& bytes, std::size_t at) { return bytes.at(at) | (bytes.at(at + 1) << 8); }

std::uint32_t le32(const Bytes& bytes, std::size_t at) { return le16(bytes, at) | (le16(bytes, at + 2) << 16); }

// One request block: wait for ready, clock 20 bytes out.
Bytes block(Bytes head) {
    Bytes out{0x88, 0x10, 0x13, 0x00};
    head.resize(20, 0);
    out.insert(out.end(), head.begin(), head.end());
    return out;
}

// Wait for ready, clock `n` bytes in, and flush when asked.
Bytes clockIn(unsigned n, bool flush = true) {
    Bytes out{0x88, 0x24, static_cast<std::uint8_t>((n - 1) & 0xFF), static_cast<std::uint8_t>((n - 1) >> 8)};
    if (flush) out.push_back(0x87);
    return out;
}

Bytes moduleCommand(const Bytes& command, unsigned replyLength) {
    Bytes head{0x03, static_cast<std::uint8_t>(command.size()), static_cast<std::uint8_t>(replyLength >> 8),
               static_cast<std::uint8_t>(replyLength & 0xFF), 0x00};
    head.insert(head.end(), command.begin(), command.begin() + std::min<std::size_t>(command.size(), 15));
    Bytes out = block(head);
    if (command.size() > 15) {
        const std::size_t rest = command.size() - 15;
        const std::size_t n = std::max<std::size_t>(rest, 20);
        out.insert(out.end(),
                   {0x88, 0x10, static_cast<std::uint8_t>((n - 1) & 0xFF), static_cast<std::uint8_t>((n - 1) >> 8)});
        out.insert(out.end(), command.begin() + 15, command.end());
        out.insert(out.end(), n - rest, 0);
    }
    return out;
}

Bytes setAddress(const std::string& identity, std::uint8_t address) {
    Bytes out{'S', address};
    for (char c : identity) out.push_back(static_cast<std::uint8_t>(c));
    out.push_back(0);
    return out;
}

// An open channel A of the first device, in MPSSE mode with the pins set up.
struct MpsseRig {
    explicit MpsseRig(const std::string& scenario) : standIn(scenario) {
        EXPECT_EQ(kFtOk, d2xx().open(0, &handle));
        EXPECT_EQ(kFtOk, d2xx().setTimeouts(handle, 2000, 2000));
        EXPECT_EQ(kFtOk, d2xx().setBitMode(handle, 0, kFtBitModeMpsse));
        standIn.send(handle, {0x85, 0x8A, 0x86, 0x03, 0x00, 0x82, 0x02, 0x06, 0x80, 0x09, 0x0B});
    }
    ~MpsseRig() { d2xx().close(handle); }
    const UsbStandIn::D2xx& d2xx() const { return standIn.d2xx(); }

    // A module command and its whole reply: length, status and payload.
    struct Reply {
        unsigned length = 0;
        std::uint32_t status = 0;
        Bytes payload;
        std::size_t received = 0;
    };
    Reply exchange(const Bytes& command, unsigned replyLength) {
        standIn.send(handle, moduleCommand(command, replyLength));
        standIn.send(handle, clockIn(20));
        const Bytes first = standIn.receive(handle, 20);
        Reply reply;
        reply.received = first.size();
        if (first.size() < 20) return reply;
        reply.length = le16(first, 0);
        reply.status = le32(first, 2);
        reply.payload.assign(first.begin() + 7, first.begin() + 7 + std::min(reply.length, 13u));
        if (reply.length > 13) {
            const unsigned n = std::max(reply.length - 13, 20u);
            standIn.send(handle, clockIn(n));
            const Bytes more = standIn.receive(handle, n);
            reply.received += more.size();
            reply.payload.insert(reply.payload.end(), more.begin(),
                                 more.begin() + std::min<std::size_t>(more.size(), reply.length - 13));
        }
        return reply;
    }

    UsbStandIn standIn;
    FT_HANDLE handle = nullptr;
};

const char* const kOneProbe =
    "controller usb identity=USBSIM0001 firmware=150\n"
    "module probe GP02000001 range=2 signal=constant:1\n";

}  // namespace

TEST(UsbStandIn, DeviceListFlagsAndOpening) {
    UsbStandIn standIn(
        "controller usb\n"
        "controller usb channel-b=none flags=1 chip=5 serial=BENCH type=ETHI\n");
    const auto& d2xx = standIn.d2xx();
    DWORD count = 0;
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    ASSERT_EQ(3u, count);

    struct Detail {
        DWORD flags = 99, type = 99, id = 0, location = 0;
        char serial[16] = {};
        char description[64] = {};
        FT_HANDLE handle = reinterpret_cast<FT_HANDLE>(1);
    };
    auto detail = [&](DWORD index, Detail& d) {
        return d2xx.getDeviceInfoDetail(index, &d.flags, &d.type, &d.id, &d.location, d.serial, d.description,
                                        &d.handle);
    };
    Detail a, b, other, past;
    ASSERT_EQ(kFtOk, detail(0, a));
    ASSERT_EQ(kFtOk, detail(1, b));
    ASSERT_EQ(kFtOk, detail(2, other));
    EXPECT_EQ(kFtDeviceNotFound, detail(3, past));
    EXPECT_EQ("Pellaquin USBIM A", std::string(a.description));
    EXPECT_EQ("Pellaquin USBIM B", std::string(b.description));
    EXPECT_EQ("SIMUSB0001A", std::string(a.serial));
    EXPECT_EQ("SIMUSB0001B", std::string(b.serial));
    EXPECT_EQ(6u, a.type);
    EXPECT_EQ(0u, a.flags);
    EXPECT_EQ(nullptr, a.handle);
    EXPECT_NE(a.location, b.location);
    EXPECT_EQ("BENCHA", std::string(other.serial));
    EXPECT_EQ(5u, other.type);
    EXPECT_EQ(1u, other.flags);

    FT_HANDLE handle = nullptr;
    ASSERT_EQ(kFtOk, d2xx.open(0, &handle));
    ASSERT_NE(nullptr, handle);
    // The list shows the channel open, with its handle, once it is taken anew.
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    ASSERT_EQ(kFtOk, detail(0, a));
    EXPECT_EQ(kFtFlagOpened, a.flags);
    EXPECT_EQ(handle, a.handle);

    FT_HANDLE again = nullptr;
    EXPECT_EQ(kFtDeviceNotOpened, d2xx.open(0, &again));  // already open here
    EXPECT_EQ(kFtDeviceNotOpened, d2xx.open(2, &again));  // open in another program
    EXPECT_EQ(kFtDeviceNotFound, d2xx.open(3, &again));
    EXPECT_EQ(kFtDeviceNotFound, d2xx.open(-1, &again));

    EXPECT_EQ(kFtOk, d2xx.close(handle));
    EXPECT_EQ(kFtInvalidHandle, d2xx.close(handle));
    DWORD waiting = 0;
    EXPECT_EQ(kFtInvalidHandle, d2xx.getQueueStatus(handle, &waiting));
    EXPECT_EQ(kFtInvalidHandle, d2xx.getQueueStatus(nullptr, &waiting));

    // Replacing the devices invalidates what was open, and a wrong scenario
    // changes nothing.
    ASSERT_EQ(kFtOk, d2xx.open(1, &handle));
    EXPECT_EQ(-1, UsbStandIn::load("controller usb flags=many\n"));
    EXPECT_NE(std::string::npos, UsbStandIn::error().find("scenario text:1:")) << UsbStandIn::error();
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    EXPECT_EQ(3u, count);
    EXPECT_EQ(1, UsbStandIn::load("controller usb channel-b=none\n"));
    EXPECT_EQ(kFtInvalidHandle, d2xx.close(handle));
    ASSERT_EQ(kFtOk, d2xx.createDeviceInfoList(&count));
    EXPECT_EQ(1u, count);
}

TEST(UsbStandIn, SerialPortTellsWhatTheControllerIs) {
    UsbStandIn standIn(
        "controller usb firmware=149\n"
        "controller usb type=ETHI\n");
    const auto& d2xx = standIn.d2xx();
    auto ask = [&](int index, ULONG baud) {
        FT_HANDLE handle = nullptr;
        EXPECT_EQ(kFtOk, d2xx.open(index, &handle));
        EXPECT_EQ(kFtOk, d2xx.setTimeouts(handle, 300, 0));
        EXPECT_EQ(kFtOk, d2xx.setBaudRate(handle, baud));
        EXPECT_EQ(kFtOk, d2xx.setDataCharacteristics(handle, 8, 0, 0));
        standIn.send(handle, {'B', 0x00, 0x00});
        Bytes answer = standIn.receive(handle, 43);
        d2xx.close(handle);
        return answer;
    };
    const Bytes usb = ask(0, 460800);
    ASSERT_EQ(43u, usb.size());
    EXPECT_EQ(0, usb[0]);
    EXPECT_EQ("USB2", text(usb, 3, 4));
    EXPECT_EQ(149u, le16(usb, 7));
    EXPECT_EQ("Simulated USBIM ", text(usb, 27, 16));

    EXPECT_EQ("ETHI", text(ask(2, 460800), 3, 4));
    // At another speed the controller hears noise; channel B hears nothing.
    EXPECT_TRUE(ask(0, 115200).empty());
    EXPECT_TRUE(ask(1, 460800).empty());
    EXPECT_EQ(SimRequestKind::Unknown, standIn.controller(0).requestLog().back().kind);
}

TEST(UsbStandIn, MpsseEngineAndControllerRequests) {
    UsbStandIn standIn(kOneProbe);
    const auto& d2xx = standIn.d2xx();
    FT_HANDLE handle = nullptr;
    ASSERT_EQ(kFtOk, d2xx.open(0, &handle));
    ASSERT_EQ(kFtOk, d2xx.setTimeouts(handle, 300, 0));
    ASSERT_EQ(kFtOk, d2xx.setBitMode(handle, 0, kFtBitModeMpsse));

    // Unknown instructions are answered 0xFA and the instruction, at once.
    standIn.send(handle, {0xAB});
    EXPECT_EQ(2u, standIn.queued(handle));
    EXPECT_EQ((Bytes{0xFA, 0xAB}), standIn.receive(handle, 2));
    EXPECT_EQ(kFtInvalidParameter, d2xx.setBitMode(handle, 0, 0x03));

    // Until the clock, data and chip-select pins are outputs the controller
    // sees nothing.
    standIn.send(handle, block({0x08}));
    standIn.send(handle, clockIn(20, false));
    EXPECT_TRUE(standIn.receive(handle, 20).empty());
    EXPECT_EQ(0u, standIn.controller(0).requestCount());

    // An instruction may be split across writes.
    standIn.send(handle, {0x85, 0x8A, 0x86, 0x03});
    standIn.send(handle, {0x00, 0x80, 0x09, 0x0B});
    Bytes identify = block({0x08});
    identify.insert(identify.end(), {0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0x13, 0x00});
    standIn.send(handle, Bytes(identify.begin(), identify.begin() + 10));
    standIn.send(handle, Bytes(identify.begin() + 10, identify.end()));
    const Bytes identity = standIn.receive(handle, 40);
    ASSERT_EQ(40u, identity.size());
    EXPECT_EQ(0u, le32(identity, 2));
    EXPECT_EQ("USBSIM0001P770100AUSB21.50 ", text(identity, 7, 27));

    Bytes info = block({0x09});
    info.insert(info.end(), {0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0x1A, 0x00});
    standIn.send(handle, info);
    const Bytes fields = standIn.receive(handle, 47);
    ASSERT_EQ(47u, fields.size());
    EXPECT_EQ("USB2", text(fields, 7, 4));
    EXPECT_EQ(150u, le16(fields, 11));
    EXPECT_EQ("L032            ", text(fields, 15, 16));
    EXPECT_EQ("Simulated USBIM ", text(fields, 31, 16));

    // Set speed carries the bit rate in bytes 5 to 7; a rate that is no
    // speed is refused and the speed stays.
    auto setRate = [&](std::uint32_t rate) {
        Bytes request = block({0x04, 0, 0, 0, 0, static_cast<std::uint8_t>(rate & 0xFF),
                               static_cast<std::uint8_t>((rate >> 8) & 0xFF), static_cast<std::uint8_t>(rate >> 16)});
        const Bytes read = clockIn(20, false);
        request.insert(request.end(), read.begin(), read.end());
        standIn.send(handle, request);
        const Bytes answer = standIn.receive(handle, 20);
        return answer.size() == 20 ? le32(answer, 2) : 999u;
    };
    EXPECT_EQ(0u, setRate(2250000));
    EXPECT_EQ(SimSpeed::UltraHigh, standIn.controller(0).busSpeed());
    EXPECT_EQ(1u, setRate(0));
    EXPECT_EQ(SimSpeed::UltraHigh, standIn.controller(0).busSpeed());
    EXPECT_EQ(0u, setRate(187500));
    EXPECT_EQ(SimSpeed::Low, standIn.controller(0).busSpeed());

    Bytes idle = block({0x06});
    const Bytes read = clockIn(20, false);
    idle.insert(idle.end(), read.begin(), read.end());
    standIn.send(handle, idle);
    EXPECT_EQ(20u, standIn.receive(handle, 20).size());
    EXPECT_EQ(SimRequestKind::Idle, standIn.controller(0).requestLog().back().kind);
    d2xx.close(handle);
}

TEST(UsbStandIn, ModuleCommandsInBlocks) {
    MpsseRig rig(kOneProbe);
    SimController& controller = rig.standIn.controller(0);

    auto named = rig.exchange(setAddress("GP02000001", 1), 2);
    EXPECT_EQ(0u, named.status);
    EXPECT_EQ((Bytes{'S', 1}), named.payload);

    // A reply longer than 13 bytes continues in a second read of at least 20.
    auto identify = rig.exchange({'I', 1}, 30);
    EXPECT_EQ(0u, identify.status);
    ASSERT_EQ(30u, identify.length);
    EXPECT_EQ(40u, identify.received);
    EXPECT_EQ("GP02000001", text(identify.payload, 1, 10));

    // Nobody at address 5: status 255, no data.
    auto silent = rig.exchange({'I', 5}, 30);
    EXPECT_EQ(20u, silent.received);
    EXPECT_EQ(255u, silent.status);
    EXPECT_EQ(0u, silent.length);

    // A command without a reply is acknowledged with one empty block.
    rig.standIn.send(rig.handle, moduleCommand({'R', 0}, 0));
    rig.standIn.send(rig.handle, clockIn(20, false));
    EXPECT_EQ(Bytes(20, 0), rig.standIn.receive(rig.handle, 20));
    EXPECT_EQ(1, controller.requestLog().back().type);
    EXPECT_EQ(0, controller.module("GP02000001")->address());

    // A command of more than 15 bytes continues in a block of its own, and
    // the controller gets it whole: a configuration write of 41 bytes.
    rig.exchange(setAddress("GP02000001", 1), 2);
    Bytes write{'b', 1, 0x10, 0x00, 0x00, 0x00, 3};
    for (int i = 0; i < 32; ++i) write.push_back(i < 3 ? static_cast<std::uint8_t>(0xA0 + i) : 0);
    putLe16(write, complementSum16(write, 0, write.size()));
    auto written = rig.exchange(write, 2);
    EXPECT_EQ(0u, written.status);
    ASSERT_EQ(2u, written.payload.size());
    EXPECT_EQ('b', written.payload[0]);
    EXPECT_EQ(write, controller.requestLog().back().command);

    // 0xFF 0xFF asks for a reply of unknown length.
    rig.exchange({'Q', 1}, 0xFFFF);
    EXPECT_EQ(2, controller.requestLog().back().type);
}

TEST(UsbStandIn, FaultsLoseCutOrDelayAnswers) {
    MpsseRig rig(kOneProbe);
    SimController& controller = rig.standIn.controller(0);
    rig.standIn.limitReadWait(200ms);
    rig.exchange(setAddress("GP02000001", 1), 2);

    // A dropped reply block never comes; the next exchange is served.
    controller.injectFault(SimFault::dropReply().only('L'));
    EXPECT_EQ(0u, rig.exchange({'L', 1}, 5).received);
    const auto reading = rig.exchange({'L', 1}, 5);
    EXPECT_EQ(0u, reading.status);
    EXPECT_EQ('L', reading.payload.at(0));

    // A short module reply is framed as such; a refusal is "!" and its byte.
    controller.injectFault(SimFault::shortReply(3).only('I'));
    EXPECT_EQ(3u, rig.exchange({'I', 1}, 30).length);
    controller.injectFault(SimFault::errorReply(0x12).only('L'));
    EXPECT_EQ((Bytes{'!', 0x12}), rig.exchange({'L', 1}, 5).payload);

    // A cut block leaves the read short.
    controller.injectFault(SimFault::cutFrame(5).on(SimRequestKind::Identify));
    Bytes identify = block({0x08});
    identify.insert(identify.end(), {0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0x13, 0x00});
    rig.standIn.send(rig.handle, identify);
    EXPECT_EQ(5u, rig.standIn.receive(rig.handle, 40).size());

    // A late answer is not there at once, and a read waits for it.
    controller.injectFault(SimFault::delay(150ms).on(SimRequestKind::Idle));
    Bytes idle = block({0x06});
    const Bytes read = clockIn(20, false);
    idle.insert(idle.end(), read.begin(), read.end());
    const auto start = std::chrono::steady_clock::now();
    rig.standIn.send(rig.handle, idle);
    EXPECT_EQ(0u, rig.standIn.queued(rig.handle));
    EXPECT_EQ(20u, rig.standIn.receive(rig.handle, 20).size());
    EXPECT_GE(std::chrono::steady_clock::now() - start, 140ms);
    EXPECT_EQ(0u, controller.pendingFaults());
}

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
