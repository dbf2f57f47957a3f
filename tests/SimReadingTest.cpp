// What simulated modules read and refuse where the end-to-end tests do not
// look: range edges, burst bytes, direction, resolution refusals, signals and
// configuration memory.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

namespace {

long long readTwoWords(WireClient& c, int address) {
    const Reply reply = c.command(addressed('L', address), 5);
    EXPECT_EQ(5u, reply.data.size());
    if (reply.data.size() != 5) return -1;
    return static_cast<std::int32_t>(le(reply.data, 1, 4));
}

}  // namespace

// Catches the top of the range refused, a value just outside it read, a
// burst that misencodes negative counts or answers for a module that cannot
// burst, a preset that ignores the direction, the resolution factor missing
// from the info text, wrong refusal codes, wrong old-scheme scales, and a
// generation-0 probe that answers get-info or hides its range.
TEST(SimReading, RangeEdgesBurstPresetResolutionAndScales) {
    EthernetRig rig;
    SimModule encoder = SimModule::linearEncoder("LE00000001");
    encoder.setSignal(SimSignal::constant(1.5));
    SimModule probe = SimModule::digitalProbe("GP00000002", 2);
    probe.setSignal(SimSignal::constant(2.0));
    SimModule older = SimModule::digitalProbe("GPOLDFMT03", 10);
    older.setGeneration(1);
    older.setInfoFormat(SimInfoFormat::Old);
    SimModule oldEncoder = SimModule::linearEncoder("LE00000004");
    oldEncoder.setInfoFormat(SimInfoFormat::Old);
    oldEncoder.setSignal(SimSignal::constant(0.5));
    SimModule dio = SimModule::dio2("DO00000005");
    dio.setSignal(SimSignal::constant(5));
    SimModule legacy = SimModule::digitalProbe("GPLEGACY06", 5);
    legacy.setGeneration(0);
    int address = 1;
    for (const SimModule& module : {encoder, probe, older, oldEncoder, dio, legacy}) {
        rig.addressModule(module, address++);
    }
    WireClient& c = *rig.client;
    // Generation 0 knows no get-info: the host takes the range from identify.
    EXPECT_EQ((Bytes{'!', 0x03}), c.command(addressed('B', 6), 41).data);
    EXPECT_EQ(5, le(c.command(addressed('I', 6), 30).data, 28, 2));

    EXPECT_EQ(16384, readTwoWords(c, 2)) << "the top of the range is still a reading";
    rig.controller.setSignal("GP00000002", SimSignal::constant(2.001));
    EXPECT_EQ((Bytes{'!', 0x13}), c.command(addressed('L', 2), 5).data);
    rig.controller.setSignal("GP00000002", SimSignal::constant(-0.001));
    EXPECT_EQ((Bytes{'!', 0x12}), c.command(addressed('1', 2), 3).data);
    EXPECT_EQ(0.5 * 20000, readTwoWords(c, 4)) << "old-scheme encoders count 20000 per mm";
    EXPECT_EQ((Bytes{'1', 5, 0}), c.command(addressed('1', 5), 3).data);

    EXPECT_EQ((Bytes{'U', 1}), c.command(addressed('U', 1), 2).data);
    EXPECT_EQ(-1500, readTwoWords(c, 1));
    // 23-bit two's complement, then the status byte.
    const std::uint32_t minus1500 = static_cast<std::uint32_t>(-1500) & 0x7FFFFF;
    EXPECT_EQ((Bytes{'T', static_cast<std::uint8_t>(minus1500), static_cast<std::uint8_t>(minus1500 >> 8),
                     static_cast<std::uint8_t>(minus1500 >> 16), 0, 0, 0, 0, 0x12}),
              c.command(Bytes{'T', 2}, 9).data);
    EXPECT_EQ(255, c.command(Bytes{'T', 3}, 13).status) << "a module below generation 3 stalls the burst";
    EXPECT_EQ((Bytes{'P', 0}), c.command(Bytes{'P', 1, 0xE8, 0x03, 0, 0}, 2).data);
    EXPECT_EQ(1000, readTwoWords(c, 1));
    rig.controller.setSignal("LE00000001", SimSignal::constant(1.501));
    EXPECT_EQ(999, readTwoWords(c, 1)) << "reversed counting continues from the preset";

    rig.controller.setSignal("GP00000002", SimSignal::constant(0.5));
    EXPECT_EQ((Bytes{'V', 0}), c.command(setMode(2, 51, 18), 2).data);
    const Bytes info = c.command(addressed('B', 2), 41).data;
    ASSERT_EQ(41u, info.size());
    EXPECT_EQ("16", std::string(info.end() - 2, info.end())) << "the resolution factor ends the info text";
    EXPECT_EQ(0.5 * 8192 * 16, readTwoWords(c, 2));
    const struct {
        int address;
        unsigned mode, argument;
        std::uint8_t code;
    } refusals[] = {{2, 51, 15, 0x62}, {2, 50, 3, 0x60}, {2, 50, 512, 0x60}, {3, 51, 16, 0x63}};
    for (const auto& r : refusals) {
        EXPECT_EQ((Bytes{'!', r.code}), c.command(setMode(r.address, r.mode, r.argument), 2).data)
            << "mode " << r.mode << " argument " << r.argument;
    }
    EXPECT_EQ(18, rig.controller.module("GP00000002")->resolutionBits()) << "a refusal changes nothing";
}

// Catches signals tied to the wrong clock origin, a ramp that does not wrap,
// noise that is not repeatable by seed or leaves its band, and bad texts.
TEST(SimReading, SignalsFollowTheMonotonicClock) {
    const auto origin = std::chrono::steady_clock::now();
    SimSignal sine = SimSignal::sine(1.0, 0.5, 2.0);
    sine.restartAt(origin);
    EXPECT_NEAR(1.0, sine.valueAt(origin), 1e-9);
    EXPECT_NEAR(1.5, sine.valueAt(origin + 500ms), 1e-9);
    EXPECT_NEAR(0.5, sine.valueAt(origin + 1500ms), 1e-9);
    SimSignal ramp = SimSignal::ramp(0, 10, 4);
    ramp.restartAt(origin);
    EXPECT_NEAR(5.0, ramp.valueAt(origin + 2s), 1e-9);
    EXPECT_NEAR(2.5, ramp.valueAt(origin + 5s), 1e-9) << "the ramp starts over";

    SimSignal a = SimSignal::noise(2.0, 0.1, 42);
    SimSignal b = SimSignal::noise(2.0, 0.1, 42);
    SimSignal other = SimSignal::noise(2.0, 0.1, 43);
    bool differs = false;
    for (int i = 0; i < 100; ++i) {
        const double value = a.valueAt(origin);
        EXPECT_EQ(value, b.valueAt(origin));
        EXPECT_LE(std::fabs(value - 2.0), 0.1);
        differs = differs || value != other.valueAt(origin);
    }
    EXPECT_TRUE(differs);

    EXPECT_EQ("noise:2,0.1,42", SimSignal::parse(a.text()).text());
    for (const char* bad : {"sine:1,0.5", "ramp:0,1,0", "noise:1,1,-3", "constant:x", "square:1"}) {
        EXPECT_THROW(SimSignal::parse(bad), std::invalid_argument) << bad;
    }
}

// Catches a bad checksum or an oversized block accepted, a read-back without
// a valid checksum, and status or unknown commands answered wrongly.
TEST(SimReading, ConfigurationMemoryStatusAndUnknownCommands) {
    EthernetRig rig;
    rig.addressModule(SimModule::digitalProbe("GP00000001", 2), 1);
    WireClient& c = *rig.client;

    auto withChecksum = [](Bytes block) {
        unsigned sum = 0;
        for (std::uint8_t byte : block) sum += byte;
        const unsigned word = (0x10000 - (sum & 0xFFFF)) & 0xFFFF;
        block.push_back(static_cast<std::uint8_t>(word & 0xFF));
        block.push_back(static_cast<std::uint8_t>(word >> 8));
        return block;
    };
    Bytes write{'b', 1, 0x34, 0x12, 0, 0, 3, 'a', 'b', 'c'};
    write.resize(39, 0);
    Bytes broken = withChecksum(write);
    broken[40] ^= 1;
    EXPECT_EQ((Bytes{'!', 0x0B}), c.command(broken, 2).data);
    EXPECT_EQ((Bytes{'b', 0}), c.command(withChecksum(write), 2).data);
    Bytes tooLong = write;
    tooLong[6] = 33;
    EXPECT_EQ((Bytes{'!', 0x3F}), c.command(withChecksum(tooLong), 2).data);

    const Bytes read = c.command(Bytes{'c', 1, 0x34, 0x12, 0, 0}, 36).data;
    ASSERT_EQ(36u, read.size());
    EXPECT_EQ(withChecksum(Bytes(read.begin(), read.begin() + 34)), read);
    EXPECT_EQ(concat(Bytes{3}, text("abc")), Bytes(read.begin() + 1, read.begin() + 5));
    EXPECT_EQ(0, c.command(Bytes{'c', 1, 0x35, 0x12, 0, 0}, 36).data.at(1)) << "nothing stored there";

    EXPECT_EQ((Bytes{'G', 0, 0, 0}), c.command(addressed('G', 1), 4).data);
    rig.controller.updateModule("GP00000001", [](SimModule& m) { m.setStatus(0x07, 0x1234); });
    EXPECT_EQ((Bytes{'G', 0x07, 0x34, 0x12}), c.command(addressed('G', 1), 4).data);
    EXPECT_EQ((Bytes{'!', 0x03}), c.command(addressed('Z', 1), 2).data);
}
