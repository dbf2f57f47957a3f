// Buffered mode end to end: probes and I/O modules on the simulated bus
// buffer at their interval or on sample triggers, and the host empties them
// when the run stops.
#include <gtest/gtest.h>

#include <cstdlib>

#include "KavroDynamic.h"
#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroNetwork.h"
#include "ModeTestRig.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;
using namespace kavrosim;
using std::chrono::milliseconds;

namespace {

// The module's readings as the application gets them.
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

// When the simulated bus received the n-th control broadcast with `action`.
SimController::Clock::time_point controlAt(const SimController& controller, int action, int nth = 1) {
    for (const SimRequest& request : controller.requestLog()) {
        if (request.code() == 'W' && request.command.size() > 2 && request.command[2] == action && --nth == 0) {
            return request.received;
        }
    }
    ADD_FAILURE() << "no control action " << action;
    return {};
}

long long readingsBetween(SimController::Clock::time_point from, SimController::Clock::time_point to,
                          std::chrono::nanoseconds interval) {
    return (to - from) / interval + 1;
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
    ModeTestRig rig({
        modeProbe("GPSYNC0001", 2, 3, SimSignal::ramp(0.0, 2.0, 16.384)),  // one count a millisecond
        modeProbe("GPSYNC0002", 2, 3, SimSignal::constant(1.0)),
        SimModule::dio2("DIO2000001"),
    });
    rig.controller.setSignal("DIO2000001", SimSignal::constant(5));
    KavroModule* ramp = rig.module(0);
    KavroModule* constant = rig.module(1);
    KavroModule* io = rig.module(2);
    ramp->Buffered()->setOTUs(100);                  // 10.24 ms
    constant->Buffered()->setReadingInterval(8192);  // 80 units
    EXPECT_EQ(80, constant->Buffered()->OTUs());
    EXPECT_EQ(0, constant->Buffered()->ReadingIntervalErrorUs());
    for (KavroModule* module : {ramp, constant, io}) {
        module->Buffered()->setMode(eBufferedMode::Sync);
        module->Buffered()->setEnabled(true);
    }
    NetworkBuffered* buffered = rig.network->Buffered();
    EXPECT_EQ(3, buffered->EnabledCount());

    buffered->Start();
    EXPECT_EQ(OperationBuffered, rig.operation());
    EXPECT_EQ(eBufferedModeStatus::Reading, buffered->Status());
    EXPECT_EQ(eBufferedModeStatus::Reading, ramp->Buffered()->Status());
    EXPECT_EQ(3, buffered->SyncCount());
    EXPECT_EQ("No modules configured to sample in buffered mode.", messageOf([&] { buffered->Sample(); }));
    // More than one read-out reply's worth (120) for the ramp.
    ASSERT_TRUE(waitFor([&] { return rig.heldNow("GPSYNC0001") >= 130; }, std::chrono::seconds(20)));
    buffered->Stop();
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eBufferedModeStatus::Finished, buffered->Status());
    EXPECT_EQ(eBufferedModeStatus::Finished, ramp->Buffered()->Status());

    // The modules buffered from the start action to the first stop action.
    const auto started = controlAt(rig.controller, 1);
    const auto stopped = controlAt(rig.controller, 2);
    const long long rampReadings = readingsBetween(started, stopped, std::chrono::microseconds(10240));
    const std::vector<std::int32_t> rising = countsOf(ramp);
    ASSERT_GE(rising.size(), 130u);
    EXPECT_NEAR(rampReadings, static_cast<long long>(rising.size()), 1);
    for (std::size_t i = 1; i < rising.size(); ++i) {
        const int step = rising[i] - rising[i - 1];
        ASSERT_TRUE(step == 10 || step == 11) << "reading " << i << " steps " << step;
    }
    const std::vector<sReadingItem> flat = itemsOf(constant);
    EXPECT_NEAR(readingsBetween(started, stopped, std::chrono::microseconds(8192)), static_cast<long long>(flat.size()),
                1);
    for (const sReadingItem& item : flat) {
        ASSERT_EQ(eKavroErrors::NoError, item.error);
        ASSERT_EQ(8192, item.counts);
        ASSERT_DOUBLE_EQ(1.0, item.value);
    }
    const std::vector<sReadingItem> inputs = itemsOf(io);
    ASSERT_FALSE(inputs.empty());
    EXPECT_EQ(5, inputs.back().counts);
    EXPECT_DOUBLE_EQ(5.0, inputs.back().value);

    // Each module emptied until it reported the end, then the mode ended.
    std::size_t readOuts = 0;
    for (const KavroModule* module : {ramp, constant, io}) {
        readOuts += static_cast<std::size_t>(module->Buffered()->BufferedDataLength()) / 120 + 2;
    }
    const std::string expected = "VVVWWW" + std::string(readOuts, 'Q') + "W";
    EXPECT_EQ(expected, rig.commandCodes(expected.size()));
}

TEST(BufferedMode, SampleRunTakesOneReadingATriggerWithRangeMarkers) {
    ModeTestRig rig({
        modeProbe("GPSAMP0001", 2, 3, SimSignal::constant(0.5)), SimModule::dio2("DIO2000002"),
        modeProbe("GPSAMP0002", 2, 3, SimSignal::constant(1.0)),  // not taking part
    });
    rig.controller.setSignal("DIO2000002", SimSignal::constant(9));
    KavroModule* stepped = rig.module(0);
    KavroModule* io = rig.module(1);
    for (KavroModule* module : {stepped, io}) {
        module->Buffered()->setMode(eBufferedMode::Sample);
        module->Buffered()->setEnabled(true);
    }
    NetworkBuffered* buffered = rig.network->Buffered();
    EXPECT_EQ("Cannot sample, buffered mode is not running.", messageOf([&] { buffered->Sample(); }));

    buffered->Start();
    EXPECT_EQ(2, buffered->SampleCount());
    for (double value : {0.5, 1.0, -0.1, 2.5, 1.5}) sampleWith(rig, "GPSAMP0001", value);
    buffered->Stop();

    const std::vector<sReadingItem> items = itemsOf(stepped);
    ASSERT_EQ(5u, items.size());
    const std::int32_t counts[] = {4096, 8192, 0, 16384, 12288};
    const double values[] = {0.5, 1.0, 0.0, 2.0, 1.5};
    const eKavroErrors errors[] = {eKavroErrors::NoError, eKavroErrors::NoError, eKavroErrors::UnderRange,
                                   eKavroErrors::OverRange, eKavroErrors::NoError};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(counts[i], items[i].counts) << "reading " << i;
        EXPECT_DOUBLE_EQ(values[i], items[i].value) << "reading " << i;
        EXPECT_EQ(errors[i], items[i].error) << "reading " << i;
    }
    EXPECT_EQ((std::vector<std::int32_t>(5, 9)), countsOf(io));
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
    for (int index = 0; index < 3; ++index) {
        rig.module(index)->Buffered()->setMode(eBufferedMode::Sync);
        rig.module(index)->Buffered()->setEnabled(true);
    }
    NetworkBuffered* buffered = rig.network->Buffered();
    buffered->Start();
    ASSERT_TRUE(waitFor([&] { return rig.heldNow("GPFULL0001") >= 5; }, std::chrono::seconds(20)));
    // The first module's first two read-outs go unanswered; the second
    // module's first is refused.
    rig.controller.injectFault(SimFault::dropReply(2).only('Q'));
    rig.controller.injectFault(SimFault::errorReply(0x19).only('Q'));

    EXPECT_EQ("Read Buffered Error: Timeout Reading Module GPTIME0001\nRead Buffered Error: " +
                  GetErrorDescriptionInternal(0x2119) + "\n",
              messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eBufferedModeStatus::Finished, buffered->Status());
    EXPECT_EQ(eBufferedModeStatus::Finished, rig.module(0)->Buffered()->Status());
    EXPECT_EQ(0, rig.module(0)->Buffered()->BufferedDataLength());
    // The full module said so, then handed out what it kept.
    EXPECT_EQ((std::vector<std::int32_t>(5, 12288)), countsOf(rig.module(2)));
    // The bus ended the mode and reads normally again.
    EXPECT_EQ("VVVWWWQQQQQQW", rig.commandCodes(13)) << "two, one and three read-outs";
    EXPECT_EQ(8192, rig.module(0)->ReadingInCounts());
    EXPECT_EQ("Buffered mode not running.", messageOf([&] { buffered->Stop(); }));
}

TEST(BufferedMode, MasterPacesTheSampleModulesUntilStopped) {
    SimModule master = SimModule::encoderInput("EIM0000001");
    ModeTestRig rig({
        modeProbe("GPPACE0001", 2, 3, SimSignal::constant(1.0)),
        modeProbe("GPPACE0002", 2, 3, SimSignal::constant(1.5)),
        master,
    });
    auto* encoderInput = dynamic_cast<KavroModuleEIM*>(rig.module(2));
    ASSERT_NE(nullptr, encoderInput);
    encoderInput->setRefAction(eRefAction::Reset);
    encoderInput->Buffered()->setTxSample(2);  // a trigger every 8.192 ms
    EXPECT_EQ(2, encoderInput->Buffered()->TxSample());
    for (int index = 0; index < 2; ++index) {
        rig.module(index)->Buffered()->setMode(eBufferedMode::Sample);
        rig.module(index)->Buffered()->setEnabled(true);
    }
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
    EXPECT_EQ("VVWW" + readOuts + "W", rig.commandCodes(5 + readOuts.size()))
        << "the master cleared once, before the stop actions";
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

    EXPECT_EQ("No modules are enabled for buffered mode", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("Buffered mode not running.", messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ("Unable To Set TxSample Value.", messageOf([&] { first->Buffered()->setTxSample(3); }));
    EXPECT_EQ(1, first->Buffered()->TxSample());
    first->Buffered()->setMode(eBufferedMode::Sync);
    first->Buffered()->setEnabled(true);
    first->setResolution(eResolution::res16Bit);
    io->Buffered()->setEnabled(true);
    buffered->setMasterIndex(2);
    rig.clearLog();
    EXPECT_EQ("Buffered master must be at the end of the buffered collection", messageOf([&] { buffered->Start(); }));
    io->Buffered()->setEnabled(false);
    EXPECT_EQ("Unable to start buffered, buffered mode is 14 bit resolution only.",
              messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("", rig.commandCodes());
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eBufferedModeStatus::None, buffered->Status());
    first->setResolution(eResolution::res14Bit);

    // A module that refuses its set-mode stops the start; the network stays idle.
    rig.controller.injectFault(SimFault::errorReply(0x41).only('V'));
    EXPECT_EQ("Unable to set module buffered sync mode.", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ(OperationIdle, rig.operation());

    buffered->setMasterIndex(-1);
    buffered->Start();
    rig.clearLog();
    KavroNetwork& bus = *rig.network;
    EXPECT_EQ("Cannot start buffered whilst the network is busy", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ("Cannot perform an kavro read during an kavro operation",
              messageOf([&] { rig.module(1)->ReadingInCounts(); }));
    EXPECT_EQ("Cannot start a difference operation whilst performing an kavro operation",
              messageOf([&] { bus.Difference()->Start(); }));
    EXPECT_EQ("Cannot change module enable state during an kavro operation",
              messageOf([&] { rig.module(1)->Difference()->setEnabled(true); }));
    EXPECT_EQ("Cannot prepare dynamic whilst the network is busy.\n", messageOf([&] { bus.Dynamic()->Prepare(); }));
    EXPECT_EQ("Cannot change OTUs whilst the network is busy", messageOf([&] { first->Buffered()->setOTUs(80); }));
    EXPECT_EQ("Cannot change TxSample whilst the network is busy", messageOf([&] { io->Buffered()->setTxSample(4); }));
    EXPECT_EQ("Cannot change network speed whilst performing an Kavro operation.",
              messageOf([&] { bus.setNetSpeed(eNetSpeed::High); }));
    EXPECT_EQ("Cannot delete a module whilst performing an Kavro operation.", messageOf([&] { bus.DeleteModule(0); }));
    EXPECT_EQ("", rig.commandCodes());
    EXPECT_EQ(40, first->Buffered()->OTUs());
    buffered->Stop();
    EXPECT_EQ(OperationIdle, rig.operation());

    // A master index left behind by a deletion no longer names a module.
    buffered->setMasterIndex(2);
    bus.DeleteModule(0);
    EXPECT_EQ("No module at the buffered master index", messageOf([&] { buffered->Start(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
}

TEST(BufferedMode, AModuleThatOnlyReportsOverflowCannotHangTheStop) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    ModeTestRig rig({modeProbe("GPSTUCK001", 2, 3, SimSignal::constant(1.0))});
    rig.module(0)->Buffered()->setMode(eBufferedMode::Sync);
    rig.module(0)->Buffered()->setEnabled(true);
    NetworkBuffered* buffered = rig.network->Buffered();
    buffered->Start();
    rig.controller.injectFault(SimFault::errorReply(0x16, 1000).only('Q'));
    EXPECT_EQ("Read Buffered Error: " + GetErrorDescriptionInternal(0x2116) + "\n",
              messageOf([&] { buffered->Stop(); }));
    EXPECT_EQ(OperationIdle, rig.operation());
}
