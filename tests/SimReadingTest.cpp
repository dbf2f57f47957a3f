// What simulated modules report and read: identification that decodes to
// the intended kind and scale, readings from signals, range replies,
// resolution, read burst and configuration memory.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

namespace {

// The host's reading of a get-info reply, column by column.
struct Decoded {
    std::string type;
    int firmware = 0;
    int stroke = 0;
    std::string info;
    bool newFormat = false;
    std::string units;
    double countsPerUnit = 0;
    double offset = 0;
    int readFormat = -1;
    int factor = 0;
};

Decoded decodeInfo(const Bytes& reply) {
    Decoded d;
    EXPECT_EQ(41u, reply.size());
    if (reply.size() != 41) return d;
    d.type.assign(reply.begin() + 1, reply.begin() + 5);
    d.firmware = static_cast<int>(le(reply, 5, 2));
    d.stroke = static_cast<int>(le(reply, 7, 2));
    d.info.assign(reply.begin() + 9, reply.end());
    const std::string last = d.info.substr(30, 2);
    d.newFormat = last.find_first_not_of(' ') != std::string::npos && std::atoi(last.c_str()) >= 1;
    if (!d.newFormat) return d;
    d.units = d.info.substr(1, 6);
    d.countsPerUnit = std::stod(d.info.substr(7, 8));
    d.offset = std::stod(d.info.substr(15, 6));
    d.readFormat = d.info[22] - '0';
    d.factor = std::atoi(last.c_str());
    return d;
}

long long readTwoWords(WireClient& c, int address) {
    const Reply reply = c.command(addressed('L', address), 5);
    EXPECT_EQ(5u, reply.data.size());
    if (reply.data.size() != 5) return -1;
    return static_cast<std::int32_t>(le(reply.data, 1, 4));
}

}  // namespace

TEST(SimReading, ProbeReadsItsSignalInCountsAndRefusesOutOfRange) {
    EthernetRig rig;
    SimModule probe = SimModule::digitalProbe("GP00000001", 2);
    probe.setSignal(SimSignal::constant(1.0));
    rig.addressModule(probe, 1);
    WireClient& c = *rig.client;

    const Decoded info = decodeInfo(c.command(addressed('B', 1), 41).data);
    EXPECT_EQ("DP  ", info.type);
    ASSERT_TRUE(info.newFormat) << info.info;
    EXPECT_EQ("mm    ", info.units);
    EXPECT_EQ(8192.0, info.countsPerUnit);
    EXPECT_EQ(0.0, info.offset);
    EXPECT_EQ(0, info.readFormat) << "two-word reads";
    EXPECT_EQ(1, info.factor);
    EXPECT_EQ(2000, info.stroke);
    EXPECT_GE(info.firmware, 150);
    EXPECT_EQ(2, le(c.command(addressed('I', 1), 30).data, 28, 2)) << "range in the identify reply";

    EXPECT_EQ(8192, readTwoWords(c, 1));
    EXPECT_EQ((Bytes{'1', 0x00, 0x20}), c.command(addressed('1', 1), 3).data);
    rig.controller.setSignal("GP00000001", SimSignal::constant(2.0));
    EXPECT_EQ(16384, readTwoWords(c, 1)) << "the top of the range is still a reading";
    rig.controller.setSignal("GP00000001", SimSignal::constant(2.001));
    EXPECT_EQ((Bytes{'!', 0x13}), c.command(addressed('L', 1), 5).data);
    rig.controller.setSignal("GP00000001", SimSignal::constant(-0.001));
    EXPECT_EQ((Bytes{'!', 0x12}), c.command(addressed('1', 1), 3).data);

    // Resolution multiplies the counts and shows in the info text; averaging
    // shows in the probe's memory.
    rig.controller.setSignal("GP00000001", SimSignal::constant(0.5));
    EXPECT_EQ((Bytes{'V', 0}), c.command(setMode(1, 51, 18), 2).data);
    EXPECT_EQ(16, decodeInfo(c.command(addressed('B', 1), 41).data).factor);
    EXPECT_EQ(0.5 * 8192 * 16, readTwoWords(c, 1));
    EXPECT_EQ((Bytes{'!', 0x62}), c.command(setMode(1, 51, 15), 2).data);
    EXPECT_EQ((Bytes{'!', 0x60}), c.command(setMode(1, 50, 3), 2).data);
    EXPECT_EQ((Bytes{'!', 0x60}), c.command(setMode(1, 50, 512), 2).data);
    EXPECT_EQ((Bytes{'V', 0}), c.command(setMode(1, 50, 64), 2).data);
    const Bytes readMemory{'M', 1, 0x76, 0xF0, 0x01, 0x08, 2};
    EXPECT_EQ((Bytes{'M', 64, 0}), c.command(readMemory, 3).data);
    EXPECT_EQ(18, rig.controller.module("GP00000001")->resolutionBits());
}

TEST(SimReading, EachKindDecodesToItsIntendedScale) {
    EthernetRig rig;
    SimModule legacy = SimModule::digitalProbe("GPLEGACY01", 5);
    legacy.setGeneration(0);
    legacy.setSignal(SimSignal::constant(2.5));
    SimModule oldProbe = SimModule::digitalProbe("GPOLDFMT02", 10);
    oldProbe.setGeneration(1);
    oldProbe.setInfoFormat(SimInfoFormat::Old);
    oldProbe.setSignal(SimSignal::constant(2.5));
    SimModule encoder = SimModule::linearEncoder("LE00000003");
    encoder.setSignal(SimSignal::constant(12.345));
    SimModule oldEncoder = SimModule::linearEncoder("LE00000004");
    oldEncoder.setInfoFormat(SimInfoFormat::Old);
    oldEncoder.setSignal(SimSignal::constant(0.5));
    SimModule analogue = SimModule::analogue("DA00000005", 630102);
    analogue.setSignal(SimSignal::constant(0.0));
    SimModule dio = SimModule::dio2("DO00000006");
    dio.setSignal(SimSignal::constant(5));
    int address = 1;
    for (const SimModule& module : {legacy, oldProbe, encoder, oldEncoder, analogue, dio}) {
        rig.addressModule(module, address++);
    }
    WireClient& c = *rig.client;

    // Generation 0 knows no get-info; the host decodes it as a probe from
    // the range in its identify reply (16384 counts over the range).
    EXPECT_EQ((Bytes{'!', 0x03}), c.command(addressed('B', 1), 41).data);
    EXPECT_EQ(5, le(c.command(addressed('I', 1), 30).data, 28, 2));
    EXPECT_EQ((Bytes{'1', 0x00, 0x20}), c.command(addressed('1', 1), 3).data);

    const Decoded old = decodeInfo(c.command(addressed('B', 2), 41).data);
    EXPECT_FALSE(old.newFormat) << old.info;
    EXPECT_LT(old.firmware, 100) << "generation 1";
    EXPECT_EQ(2.5 * 16384 / 10, readTwoWords(c, 2));
    EXPECT_EQ((Bytes{'!', 0x63}), c.command(setMode(2, 51, 16), 2).data) << "the host scales it at 14 bit";

    const Decoded le = decodeInfo(c.command(addressed('B', 3), 41).data);
    EXPECT_EQ("LE  ", le.type);
    EXPECT_EQ(1000.0, le.countsPerUnit);
    EXPECT_EQ(12345, readTwoWords(c, 3));
    EXPECT_FALSE(decodeInfo(c.command(addressed('B', 4), 41).data).newFormat);
    EXPECT_EQ(0.5 * 20000, readTwoWords(c, 4)) << "old-scheme encoders count 20000 per mm";

    // Analogue modules of the old scheme: the part number fixes the scale.
    const Bytes identify = c.command(addressed('I', 5), 30).data;
    EXPECT_EQ("P630102A", std::string(identify.begin() + 11, identify.begin() + 19));
    const Decoded da = decodeInfo(c.command(addressed('B', 5), 41).data);
    EXPECT_EQ("DA  ", da.type);
    EXPECT_FALSE(da.newFormat);
    EXPECT_EQ(8192, readTwoWords(c, 5)) << "0 V on -10..+10 V";
    rig.controller.setSignal("DA00000005", SimSignal::constant(10.5));
    EXPECT_EQ((Bytes{'!', 0x13}), c.command(addressed('L', 5), 5).data);
    rig.controller.setSignal("DA00000005", SimSignal::constant(-10.5));
    EXPECT_EQ((Bytes{'!', 0x12}), c.command(addressed('L', 5), 5).data);

    const Decoded dio2 = decodeInfo(c.command(addressed('B', 6), 41).data);
    EXPECT_EQ("DIO2", dio2.type);
    EXPECT_EQ(1, dio2.readFormat) << "one-word reads";
    EXPECT_EQ((Bytes{'1', 5, 0}), c.command(addressed('1', 6), 3).data);

    // Generations follow the firmware bands the host decodes.
    SimModule probe = SimModule::digitalProbe("GP00000009", 2);
    for (int generation : {1, 2, 3}) {
        probe.setGeneration(generation);
        EXPECT_EQ(generation, probe.generation());
    }
    probe.setFirmwareNumber(149);
    EXPECT_EQ(2, probe.generation());
    probe.setFirmwareNumber(150);
    EXPECT_EQ(3, probe.generation());
    SimModule halfMillimetre = SimModule::digitalProbe("GP00000010", 0.5);
    EXPECT_NO_THROW(halfMillimetre.validate());
    halfMillimetre.setInfoFormat(SimInfoFormat::Old);
    EXPECT_THROW(halfMillimetre.validate(), std::invalid_argument) << "the identify range is whole millimetres";
    SimModule oldHighResolution = SimModule::digitalProbe("GP00000011", 2);
    oldHighResolution.setResolutionBits(16);
    oldHighResolution.setGeneration(0);
    EXPECT_THROW(oldHighResolution.validate(), std::invalid_argument);
}

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

    EXPECT_EQ("sine:1,0.5,2", SimSignal::parse("sine:1,0.5,2").text());
    EXPECT_EQ("noise:2,0.1,42", SimSignal::parse(a.text()).text());
    for (const char* bad : {"sine:1,0.5", "ramp:0,1,0", "noise:1,1,-3", "constant:x", "square:1"}) {
        EXPECT_THROW(SimSignal::parse(bad), std::invalid_argument) << bad;
    }
}

TEST(SimReading, BurstPresetAndDirection) {
    EthernetRig rig;
    SimModule encoder = SimModule::linearEncoder("LE00000001");
    encoder.setSignal(SimSignal::constant(1.5));
    SimModule probe = SimModule::digitalProbe("GP00000002", 2);
    probe.setSignal(SimSignal::constant(-1));
    SimModule older = SimModule::digitalProbe("GP00000003", 2);
    older.setGeneration(2);
    rig.addressModule(encoder, 1);
    rig.addressModule(probe, 2);
    rig.addressModule(older, 3);
    WireClient& c = *rig.client;

    EXPECT_EQ((Bytes{'U', 1}), c.command(addressed('U', 1), 2).data);
    EXPECT_EQ(-1500, readTwoWords(c, 1));
    // 23-bit two's complement, then the status byte.
    const Reply burst = c.command(Bytes{'T', 2}, 9);
    const std::uint32_t minus1500 = static_cast<std::uint32_t>(-1500) & 0x7FFFFF;
    EXPECT_EQ((Bytes{'T', static_cast<std::uint8_t>(minus1500), static_cast<std::uint8_t>(minus1500 >> 8),
                     static_cast<std::uint8_t>(minus1500 >> 16), 0, 0, 0, 0, 0x12}),
              burst.data);
    EXPECT_EQ(255, c.command(Bytes{'T', 3}, 13).status) << "a module below generation 3 stalls the burst";

    const Bytes preset{'P', 1, 0xE8, 0x03, 0, 0};
    EXPECT_EQ((Bytes{'P', 0}), c.command(preset, 2).data);
    EXPECT_EQ(1000, readTwoWords(c, 1));
    rig.controller.setSignal("LE00000001", SimSignal::constant(1.501));
    EXPECT_EQ(999, readTwoWords(c, 1)) << "reversed counting continues from the preset";
}

TEST(SimReading, ConfigurationMemoryStatusAndUnknownCommands) {
    EthernetRig rig;
    rig.addressModule(SimModule::digitalProbe("GP00000001", 2), 1);
    WireClient& c = *rig.client;

    Bytes write{'b', 1, 0x34, 0x12, 0, 0, 3, 'a', 'b', 'c'};
    write.resize(39, 0);
    auto withChecksum = [](Bytes block) {
        unsigned sum = 0;
        for (std::uint8_t byte : block) sum += byte;
        const unsigned word = (0x10000 - (sum & 0xFFFF)) & 0xFFFF;
        block.push_back(static_cast<std::uint8_t>(word & 0xFF));
        block.push_back(static_cast<std::uint8_t>(word >> 8));
        return block;
    };
    Bytes broken = withChecksum(write);
    broken[40] ^= 1;
    EXPECT_EQ((Bytes{'!', 0x0B}), c.command(broken, 2).data);
    EXPECT_EQ((Bytes{'b', 0}), c.command(withChecksum(write), 2).data);
    Bytes tooLong = write;
    tooLong[6] = 33;
    EXPECT_EQ((Bytes{'!', 0x3F}), c.command(withChecksum(tooLong), 2).data);

    const Reply read = c.command(Bytes{'c', 1, 0x34, 0x12, 0, 0}, 36);
    ASSERT_EQ(36u, read.data.size());
    EXPECT_EQ(3, read.data[1]);
    EXPECT_EQ(text("abc"), Bytes(read.data.begin() + 2, read.data.begin() + 5));
    unsigned sum = 0;
    for (int i = 0; i < 34; ++i) sum += read.data[i];
    EXPECT_EQ(0u, (sum + le(read.data, 34, 2)) & 0xFFFF);
    EXPECT_EQ(0, c.command(Bytes{'c', 1, 0x35, 0x12, 0, 0}, 36).data.at(1)) << "nothing stored there";

    EXPECT_EQ((Bytes{'G', 0, 0, 0}), c.command(addressed('G', 1), 4).data);
    rig.controller.updateModule("GP00000001", [](SimModule& m) { m.setStatus(0x07, 0x1234); });
    EXPECT_EQ((Bytes{'G', 0x07, 0x34, 0x12}), c.command(addressed('G', 1), 4).data);

    EXPECT_EQ((Bytes{'!', 0x03}), c.command(addressed('Z', 1), 2).data);
    c.send(Bytes{0x0E, 2, 'Q', 1});
    EXPECT_EQ((Bytes{'!', 0x17}), c.readReply().data) << "no buffered run to read out";
}
