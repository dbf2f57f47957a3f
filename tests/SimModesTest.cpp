// The simulated modules' difference and buffered modes, driven on a bus with
// made-up times so that every sample they owe is known exactly.
#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

using Clock = std::chrono::steady_clock;

Bytes control(int action) { return Bytes{'W', 0, static_cast<std::uint8_t>(action)}; }

// A bus whose modules all hear Low, addressed 1, 2, ... in the order added,
// and whose signals start at t0.
struct TimedBus {
    SimBus bus;
    Clock::time_point t0 = Clock::now();

    void add(SimModule module, SimSignal signal) {
        signal.restartAt(t0);
        module.setSignal(signal);
        module.setAddress(static_cast<int>(bus.modules().size()) + 1);
        bus.add(module);
    }
    Bytes ask(const Bytes& command, Clock::time_point at) {
        const SimBusReply reply = bus.carry(0, command, SimSpeed::Low, at);
        return reply.reply ? *reply.reply : Bytes{};
    }
    void broadcast(const Bytes& command, Clock::time_point at) { bus.carry(1, command, SimSpeed::Low, at); }

    // Empties a module's buffer: the words in order, and the answer that ended it.
    std::vector<unsigned> readOut(int address, Clock::time_point at, Bytes* last = nullptr) {
        std::vector<unsigned> words;
        for (int reads = 0; reads < 100; ++reads) {
            const Bytes reply = ask(addressed('Q', address), at);
            if (reply.empty() || reply[0] != 'Q' || reply[1] == 0) {
                if (last != nullptr) *last = reply;
                return words;
            }
            const std::size_t n = reply[1];
            EXPECT_EQ(2 + 2 * n + 2, reply.size());
            unsigned sum = 0;
            for (std::size_t i = 0; i < 2 + 2 * n; ++i) sum += reply[i];
            EXPECT_EQ(0u, (sum + static_cast<unsigned>(le(reply, 2 + 2 * n, 2))) & 0xFFFF) << "checksum";
            for (std::size_t i = 0; i < n; ++i) words.push_back(static_cast<unsigned>(le(reply, 2 + 2 * i, 2)));
        }
        ADD_FAILURE() << "the buffer never ran empty";
        return words;
    }
};

SimModule probe(const std::string& identity, int generation) {
    SimModule module = SimModule::digitalProbe(identity, 2.0);  // 8192 counts a millimetre
    module.setGeneration(generation);
    return module;
}

}  // namespace

// Catches a miscounted sample, a sum cut at 32 bits, samples after the stop,
// wrong refusal codes, and results or arming that outlive an ordinary read.
TEST(SimDifference, WordModuleCountsAndSumsEverySampleOfTheRun) {
    TimedBus b;
    b.add(probe("GPWORDS001", 2), SimSignal::constant(1.0));
    b.add(probe("GPWORDS002", 2), SimSignal::ramp(0.5, 1.5, 1.0));
    b.add(SimModule::diom("DIOM000001"), SimSignal::constant(3));
    SimModule fine = probe("GPFINE0001", 3);
    fine.setResolutionBits(18);
    b.add(fine, SimSignal::constant(1.0));
    const auto t0 = b.t0;

    EXPECT_EQ((Bytes{'!', 0x21}), b.ask(addressed('D', 1), t0)) << "not enabled";
    EXPECT_EQ((Bytes{'!', 0x23}), b.ask(addressed('F', 3), t0)) << "a DIOM does not track";
    EXPECT_EQ((Bytes{'!', 0x27}), b.ask(addressed('F', 4), t0)) << "only at 14 bit";
    EXPECT_EQ((Bytes{'F', 0}), b.ask(addressed('F', 1), t0));
    EXPECT_EQ((Bytes{'F', 0}), b.ask(addressed('F', 2), t0));
    EXPECT_EQ((Bytes{'!', 0x22}), b.ask(addressed('D', 1), t0)) << "waiting for the start";
    EXPECT_EQ((Bytes{'!', 0x03}), b.ask(addressed('X', 1), t0)) << "word modules know only D";
    b.broadcast(Bytes{'O', 0}, t0);

    // Interim: 1 ms apart from the start, 101 samples after 100 ms.
    const Bytes interim = b.ask(addressed('D', 2), t0 + milliseconds(100));
    ASSERT_EQ(13u, interim.size());
    EXPECT_EQ(4096, le(interim, 1, 2));        // 0.5 mm
    EXPECT_EQ(4096 + 819, le(interim, 3, 2));  // 0.6 mm, 8192 x 0.1 = 819.2
    EXPECT_EQ(101, le(interim, 10, 3));
    EXPECT_EQ((Bytes{'!', 0x26}), b.ask(addressed('L', 1), t0 + milliseconds(100))) << "no reads while tracking";

    const auto stop = t0 + seconds(600);
    b.broadcast(Bytes{'H', 0}, stop);
    const Bytes result = b.ask(addressed('D', 1), stop + seconds(5));
    ASSERT_EQ(13u, result.size());
    EXPECT_EQ(8192, le(result, 1, 2));
    EXPECT_EQ(8192, le(result, 3, 2));
    EXPECT_EQ(600001, le(result, 10, 3)) << "samples stop with the stop";
    EXPECT_EQ(600001LL * 8192, le(result, 5, 5));
    EXPECT_EQ(1, result[9]);

    EXPECT_EQ('1', b.ask(addressed('1', 1), stop + seconds(6)).at(0));
    EXPECT_EQ((Bytes{'!', 0x21}), b.ask(addressed('D', 1), stop + seconds(6)));
    b.broadcast(Bytes{'O', 0}, stop + seconds(7));
    EXPECT_EQ((Bytes{'!', 0x21}), b.ask(addressed('D', 1), stop + seconds(8))) << "a start needs F again";
}

// Catches wrong marker words and out-of-range samples counted.
// Catches readings off the interval grid, out of order, from before the
// start or after the stop, and wrong codes for the buffer's states.
TEST(SimBuffered, SyncReadingsAtTheIntervalHandedOutOldestFirst) {
    TimedBus b;
    // One count a millisecond: every reading tells when it was taken.
    b.add(probe("GPSYNC0001", 3), SimSignal::ramp(0.0, 2.0, 16.384));
    b.add(probe("GPOLDGEN01", 2), SimSignal::constant(1.0));
    const auto t0 = b.t0;

    EXPECT_EQ((Bytes{'!', 0x17}), b.ask(addressed('Q', 1), t0)) << "nothing armed";
    EXPECT_EQ((Bytes{'!', 0x40}), b.ask(setMode(2, 11, 40), t0)) << "earlier generations do not buffer";
    EXPECT_EQ((Bytes{'!', 0x41}), b.ask(setMode(1, 11, 39), t0));
    EXPECT_EQ((Bytes{'V', 0}), b.ask(setMode(1, 11, 100), t0));  // 10.24 ms
    EXPECT_EQ((Bytes{'Q', 0, 0xAF, 0xFF}), b.ask(addressed('Q', 1), t0 + seconds(1))) << "waits for action 1";

    const auto start = t0 + milliseconds(50);
    b.broadcast(control(1), start);
    EXPECT_EQ((Bytes{'!', 0x43}), b.ask(setMode(1, 11, 40), start)) << "running";
    const auto stop = start + milliseconds(3000);
    b.broadcast(control(2), stop);
    b.broadcast(control(2), stop + milliseconds(50));

    Bytes last;
    const std::vector<unsigned> words = b.readOut(1, stop + seconds(1), &last);
    ASSERT_EQ(3000u * 100 / 1024 + 1, words.size()) << "one at the start and one every 10.24 ms";
    for (std::size_t i = 0; i < words.size(); ++i) {
        ASSERT_NEAR(50 + 10.24 * static_cast<double>(i), words[i], 1.0) << "reading " << i;
    }
    EXPECT_EQ((Bytes{'!', 0x1B}), last) << "stopped and empty";
    b.broadcast(control(0), stop + seconds(2));
    EXPECT_EQ((Bytes{'!', 0x17}), b.ask(addressed('Q', 1), stop + seconds(2))) << "action 0 ends the mode";
}

// Catches a master that ticks at the wrong pace, keeps ticking after its
// role ends, or accepts a pace that differs from the one armed.
TEST(SimBuffered, MasterPacesTheSampleModules) {
    TimedBus b;
    b.add(probe("GPSAMP0001", 3), SimSignal::ramp(0.0, 2.0, 16.384));
    b.add(SimModule::encoderInput("EIM0000001"), SimSignal::constant(0));
    const auto armed = b.t0 + seconds(2);

    EXPECT_EQ((Bytes{'!', 0x40}), b.ask(setMode(1, 75, 5), armed)) << "a probe cannot be master";
    EXPECT_EQ((Bytes{'V', 0}), b.ask(setMode(1, 21, 0), armed));
    EXPECT_EQ((Bytes{'V', 0}), b.ask(setMode(2, 77, 5), armed));  // TxSample 5: 20.48 ms a tick
    EXPECT_EQ((Bytes{'!', 0x3F}), b.ask(setMode(2, 75, 4), armed));
    EXPECT_EQ((Bytes{'V', 0}), b.ask(setMode(2, 75, 5), armed));
    b.ask(setMode(2, 0, 0), armed + milliseconds(1000));
    b.broadcast(control(2), armed + milliseconds(1500));
    const std::vector<unsigned> paced = b.readOut(1, armed + seconds(2));
    ASSERT_EQ(48u, paced.size()) << "ticks in the one second before the role ended";
    for (std::size_t i = 0; i < paced.size(); ++i) {
        ASSERT_NEAR(2000 + 20.48 * static_cast<double>(i + 1), paced[i], 1.0) << "tick " << i;
    }
}
