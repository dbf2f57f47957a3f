// Buffered mode end to end: probes and I/O modules on the simulated bus
// buffer at their interval or on sample triggers, and the host empties them
// when the run stops.
#include <gtest/gtest.h>

#include <cstdlib>

#include "ModeTestRig.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

std::vector<sReadingItem> itemsOf(const KavroModule* module) {
    int length = -1;
    sReadingItem* items = module->Buffered()->GetBufferedDataArray(length);
    std::vector<sReadingItem> copy(items, items + length);
    std::free(items);
    return copy;
}

std::vector<std::int32_t> countsOf(const KavroModule* module) {
    std::vector<std::int32_t> counts;
    for (const sReadingItem& item : itemsOf(module)) counts.push_back(item.counts);
    return counts;
}

// When the simulated bus received the first control broadcast with `action`.
SimController::Clock::time_point controlAt(const SimController& controller, int action) {
    for (const SimRequest& request : controller.requestLog()) {
        if (request.code() == 'W' && request.command.size() > 2 && request.command[2] == action) {
            return request.received;
        }
    }
    ADD_FAILURE() << "no control action " << action;
    return {};
}

void enable(std::initializer_list<KavroModule*> modules, eBufferedMode mode) {
    for (KavroModule* module : modules) {
        module->Buffered()->setMode(mode);
        module->Buffered()->setEnabled(true);
    }
}

void sampleWith(SimNetworkRig& rig, const std::string& identity, double value) {
    rig.controller.setSignal(identity, SimSignal::constant(value));
    const std::uint64_t before = rig.controller.requestCount();
    rig.network->Buffered()->Sample();
    // The trigger has no answer: wait until the bus has carried it.
    ASSERT_TRUE(rig.controller.waitForRequestCount(before + 1, std::chrono::seconds(5)));
}

}  // namespace

TEST(BufferedMode, SyncRunReturnsEveryReadingInOrder) {
    // One count a millisecond: each reading tells when it was taken.
    ModeTestRig rig({modeProbe("GPSYNC0001", 2, 3, SimSignal::ramp(0.0, 2.0, 16.384))});
    KavroModule* ramp = rig.module(0);
    ramp->Buffered()->setOTUs(100);  // 10.24 ms
    enable({ramp}, eBufferedMode::Sync);
    NetworkBuffered* buffered = rig.network->Buffered();

    buffered->Start();
    EXPECT_EQ(OperationBuffered, rig.operation());
    EXPECT_EQ("No modules configured to sample in buffered mode.", messageOf([&] { buffered->Sample(); }));
    // More than one read-out reply's worth (120).
    ASSERT_TRUE(waitFor([&] { return rig.heldNow("GPSYNC0001") >= 130; }, std::chrono::seconds(20)));
    buffered->Stop();
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eBufferedModeStatus::Finished, ramp->Buffered()->Status());

    // Buffered from the start action to the first stop action.
    const auto running = controlAt(rig.controller, 2) - controlAt(rig.controller, 1);
    const std::vector<std::int32_t> rising = countsOf(ramp);
    ASSERT_GE(rising.size(), 130u);
    EXPECT_NEAR(running / std::chrono::microseconds(10240) + 1, static_cast<long long>(rising.size()), 1);
    for (std::size_t i = 1; i < rising.size(); ++i) {
        const int step = rising[i] - rising[i - 1];
        ASSERT_TRUE(step == 10 || step == 11) << "reading " << i << " steps " << step;
    }
    // Emptied until it reported the end, then the mode ended.
    const std::string expected = "VWWW" + std::string(rising.size() / 120 + 2, 'Q') + "W";
    EXPECT_EQ(expected, rig.commandCodes(expected.size()));
}

TEST(BufferedMode, SampleRunTakesOneReadingATriggerWithRangeMarkers) {
    ModeTestRig rig({
        modeProbe("GPSAMP0001", 2, 3, SimSignal::constant(0.5)), SimModule::dio2("DIO2000002"),
        modeProbe("GPSAMP0002", 2, 3, SimSignal::constant(1.0)),  // not taking part
    });
    rig.controller.setSignal("DIO2000002", SimSignal::constant(9));
    enable({rig.module(0), rig.module(1)}, eBufferedMode::Sample);
    NetworkBuffered* buffered = rig.network->Buffered();
    EXPECT_EQ("Cannot sample, buffered mode is not running.", messageOf([&] { buffered->Sample(); }));

    buffered->Start();
    struct Case {
        double signal;
        std::int32_t counts;
        double value;
        eKavroErrors error;
    };
    const Case cases[] = {{0.5, 4096, 0.5, eKavroErrors::NoError},
                          {1.0, 8192, 1.0, eKavroErrors::NoError},
                          {-0.1, 0, 0.0, eKavroErrors::UnderRange},
                          {2.5, 16384, 2.0, eKavroErrors::OverRange},
                          {1.5, 12288, 1.5, eKavroErrors::NoError}};
    for (const Case& c : cases) sampleWith(rig, "GPSAMP0001", c.signal);
    buffered->Stop();

    const std::vector<sReadingItem> items = itemsOf(rig.module(0));
    ASSERT_EQ(5u, items.size());
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(cases[i].counts, items[i].counts) << "reading " << i;
        EXPECT_DOUBLE_EQ(cases[i].value, items[i].value) << "reading " << i;
        EXPECT_EQ(cases[i].error, items[i].error) << "reading " << i;
    }
    EXPECT_EQ((std::vector<std::int32_t>(5, 9)), countsOf(rig.module(1)));
    EXPECT_EQ(0, rig.module(2)->Buffered()->BufferedDataLength());
    EXPECT_EQ("VVWWWWWWWQQQQW", rig.commandCodes(14)) << "set-modes, 5 triggers, 2 stops, read-outs, end";
}

TEST(BufferedMode, FailedReadOutsAreReportedOnceEachAfterTheNetworkIsIdle) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    SimModule small = modeProbe("GPFULL0001", 2, 3, SimSignal::constant(1.5));
    small.buffered().setCapacity(5);
    ModeTestRig rig({
        modeProbe("GPTIME0001", 2, 3, SimSignal::constant(1.0)),
        modeProbe("GPFAIL0001", 2, 3, SimSignal::constant(1.0)),
        small,
    });
    enable({rig.module(0), rig.module(1), rig.module(2)}, eBufferedMode::Sync);
    NetworkBuffered* buffered = rig.network->Buffered();
    buffered->Start();
    ASSERT_TRUE(waitFor([&] { return rig.heldNow("GPFULL0001") >= 5; }, std::chrono::seconds(20)));
    // The first module's first two read-outs go unanswered; the second's first is refused.
    rig.controller.injectFault(SimFault::dropReply(2).only('Q'));
    rig.controller.injectFault(SimFault::errorReply(0x19).only('Q'));

    EXPECT_EQ("Read Buffered Error: Timeout Reading Module GPTIME0001\nRead Buffered Error: " +
                  GetErrorDescriptionInternal(0x2119) + "\n",
              messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(0, rig.module(0)->Buffered()->BufferedDataLength());
    EXPECT_EQ((std::vector<std::int32_t>(5, 12288)), countsOf(rig.module(2))) << "what the full module kept";
    EXPECT_EQ("VVVWWWQQQQQQW", rig.commandCodes(13)) << "two, one and three read-outs";
    EXPECT_EQ(8192, rig.module(0)->ReadingInCounts());
}

// A module that answers every read-out with an overflow must not loop the stop forever.
TEST(BufferedMode, AModuleThatOnlyReportsOverflowCannotHangTheStop) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    ModeTestRig rig({modeProbe("GPSTUCK001", 2, 3, SimSignal::constant(1.0))});
    enable({rig.module(0)}, eBufferedMode::Sync);
    NetworkBuffered* buffered = rig.network->Buffered();
    buffered->Start();
    rig.controller.injectFault(SimFault::errorReply(0x16, 1000).only('Q'));
    EXPECT_EQ("Read Buffered Error: " + GetErrorDescriptionInternal(0x2116) + "\n",
              messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
}

TEST(BufferedMode, MasterPacesTheSampleModulesUntilStopped) {
    ModeTestRig rig({
        modeProbe("GPPACE0001", 2, 3, SimSignal::constant(1.0)),
        modeProbe("GPPACE0002", 2, 3, SimSignal::constant(1.5)),
        SimModule::encoderInput("EIM0000001"),
    });
    auto* encoderInput = dynamic_cast<KavroModuleEIM*>(rig.module(2));
    ASSERT_NE(nullptr, encoderInput);
    encoderInput->setRefAction(eRefAction::Reset);
    encoderInput->Buffered()->setTxSample(2);  // a trigger every 8.192 ms
    enable({rig.module(0), rig.module(1)}, eBufferedMode::Sample);
    NetworkBuffered* buffered = rig.network->Buffered();
    buffered->setMasterIndex(2);
    rig.clearLog();

    buffered->Start();
    EXPECT_EQ("VVVV*", rig.commandCodes(5)) << "two sample set-modes, the master's two, then idle";
    const std::vector<SimRequest> setUp = rig.controller.requestLog();
    EXPECT_EQ((Bytes{'V', 3, 77, 0, 2, 0}), setUp[2].command);
    EXPECT_EQ((Bytes{'V', 3, 75, 0, 5, 0}), setUp[3].command);
    EXPECT_TRUE(rig.controller.module("EIM0000001")->buffered().isMaster());
    ASSERT_TRUE(waitFor([&] { return rig.heldNow("GPPACE0001") >= 20; }, std::chrono::seconds(20)));
    rig.clearLog();
    buffered->Stop();

    EXPECT_FALSE(rig.controller.module("EIM0000001")->buffered().isMaster());
    const std::vector<std::int32_t> first = countsOf(rig.module(0));
    const std::string readOuts(2 * (first.size() / 120 + 2), 'Q');
    EXPECT_EQ("VVWW" + readOuts + "W", rig.commandCodes(5 + readOuts.size()));
    ASSERT_GE(first.size(), 20u);
    EXPECT_EQ(std::vector<std::int32_t>(first.size(), 8192), first);
    EXPECT_EQ(std::vector<std::int32_t>(first.size(), 12288), countsOf(rig.module(1))) << "the same triggers";
    EXPECT_EQ(eRefAction::None, encoderInput->RefAction());
}

TEST(BufferedMode, RefusalsChangeNothingAndSendNothing) {
    ModeTestRig rig({
        modeProbe("GPREFU0001", 2, 3, SimSignal::constant(1.0)),
        modeProbe("GPREFU0002", 2, 3, SimSignal::constant(1.0)),
        SimModule::dio2("DIO2000003"),
    });
    auto* first = dynamic_cast<KavroModuleDP*>(rig.module(0));
    ASSERT_NE(nullptr, first);
    KavroModule* io = rig.module(2);
    NetworkBuffered* buffered = rig.network->Buffered();
    KavroNetwork& bus = *rig.network;

    EXPECT_EQ("No modules are enabled for buffered mode", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("Buffered mode not running.", messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ("Unable To Set TxSample Value.", messageOf([&] { first->Buffered()->setTxSample(3); }));
    EXPECT_EQ(1, first->Buffered()->TxSample());
    enable({first}, eBufferedMode::Sync);
    first->setResolution(eResolution::res16Bit);
    io->Buffered()->setEnabled(true);
    buffered->setMasterIndex(2);
    rig.clearLog();
    EXPECT_EQ("Buffered master must be at the end of the buffered collection", messageOf([&] { buffered->Start(); }));
    io->Buffered()->setEnabled(false);
    EXPECT_EQ("Unable to start buffered, buffered mode is 14 bit resolution only.",
              messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("", rig.commandCodes());
    EXPECT_EQ(eBufferedModeStatus::None, buffered->Status());
    first->setResolution(eResolution::res14Bit);
    rig.controller.injectFault(SimFault::errorReply(0x41).only('V'));
    EXPECT_EQ("Unable to set module buffered sync mode.", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ(OperationIdle, rig.operation());

    buffered->setMasterIndex(-1);
    buffered->Start();
    rig.clearLog();
    EXPECT_EQ("Cannot start buffered whilst the network is busy", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("Cannot prepare dynamic whilst the network is busy.\n", messageOf([&] { bus.Dynamic()->Prepare(); }));
    EXPECT_EQ("Cannot change TxSample whilst the network is busy", messageOf([&] { io->Buffered()->setTxSample(4); }));
    EXPECT_EQ("", rig.commandCodes());
    buffered->Stop();

    // A master index left behind by a deletion no longer names a module.
    buffered->setMasterIndex(2);
    bus.DeleteModule(0);
    EXPECT_EQ("No module at the buffered master index", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
}
