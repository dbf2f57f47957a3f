// Difference mode end to end: networks of probes on the simulated bus whose
// signals move between known bounds.
#include <gtest/gtest.h>

#include "ModeTestRig.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

// The modules sample every millisecond: a sine of period 200 ms is never
// more than 0.0002 of its amplitude short of its peaks, well under a count.
constexpr double kCountTolerance = 2;

// Interim read-outs until the module has taken `readings`.
bool waitForReadings(ModuleDifference* difference, std::uint32_t readings) {
    return waitFor(
        [&] {
            difference->ReadDifference();
            return difference->ReadingCount() >= readings;
        },
        std::chrono::seconds(20));
}

}  // namespace

TEST(DifferenceMode, MovingSignalsGiveTheirBoundsInCountsAndUnits) {
    ModeTestRig rig({
        modeProbe("GPWORDS001", 2, 2, SimSignal::sine(1.0, 0.5, 0.2)),  // 0.5 to 1.5 mm, word read-out
        modeProbe("GPWORDS002", 5, 1, SimSignal::ramp(1.0, 2.0, 0.3)),  // 1 to 2 mm, word read-out
        modeProbe("GPFULL0001", 2, 3, SimSignal::sine(1.0, 0.3, 0.2)),  // 0.7 to 1.3 mm, full read-out
        modeProbe("GPIDLE0001", 2, 3, SimSignal::constant(0.25)),       // not taking part
    });
    for (int index = 0; index < 3; ++index) rig.module(index)->Difference()->setEnabled(true);
    NetworkDifference* network = rig.network->Difference();

    network->Start();
    EXPECT_EQ(OperationDifference, rig.operation());
    EXPECT_EQ(eDifferenceModeStatus::Started, network->Status());
    // Modules that take part cannot be read; the others can.
    EXPECT_EQ("Cannot perform an kavro read during an kavro difference operation",
              messageOf([&] { rig.module(0)->ReadingInCounts(); }));
    EXPECT_EQ(2048, rig.module(3)->ReadingInCounts());
    // Two sine periods and more than a ramp period.
    ASSERT_TRUE(waitForReadings(rig.module(0)->Difference(), 450));
    network->Stop();
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eDifferenceModeStatus::Stopped, network->Status());

    const ModuleDifference* sine = rig.module(0)->Difference();
    EXPECT_EQ(eKavroErrors::NoError, sine->Error());
    EXPECT_NEAR(4096, sine->MinCounts(), kCountTolerance);
    EXPECT_NEAR(12288, sine->MaxCounts(), kCountTolerance);
    EXPECT_NEAR(0.5, sine->Min(), 0.0003);
    EXPECT_NEAR(1.0, sine->Diff(), 0.0005);
    EXPECT_GE(sine->ReadingCount(), 450u);
    // The sum in units is the sum in counts scaled; its mean lies inside the bounds.
    EXPECT_NEAR(static_cast<double>(sine->SumCounts()) / 8192, sine->Sum(), 1e-6);
    EXPECT_NEAR(1.0, sine->Sum() / sine->ReadingCount(), 0.2);

    // 3276.8 counts a millimetre on the 5 mm probe; the samples nearest the
    // ramp's ends are at most 1 ms (1/300 mm) inside them.
    const ModuleDifference* ramp = rig.module(1)->Difference();
    EXPECT_GE(ramp->Min(), 1.0 - 0.0005);
    EXPECT_LE(ramp->Min(), 1.0 + 1.0 / 300 + 0.0005);
    EXPECT_LE(ramp->Max(), 2.0 + 0.0005);
    EXPECT_GE(ramp->Max(), 2.0 - 1.0 / 300 - 0.0005);

    const ModuleDifference* full = rig.module(2)->Difference();
    EXPECT_EQ(eKavroErrors::NoError, full->Error());
    EXPECT_NEAR(0.7 * 8192, full->MinCounts(), kCountTolerance);
    EXPECT_NEAR(1.3 * 8192, full->MaxCounts(), kCountTolerance);
    EXPECT_NEAR(0.6, full->Diff(), 0.0005);
    EXPECT_EQ(0, full->SumCounts()) << "full read-outs carry no sum";
    EXPECT_EQ(0u, full->ReadingCount());

    EXPECT_EQ("Read difference called for a module not running difference mode.",
              messageOf([&] { rig.module(0)->Difference()->ReadDifference(); }));
    EXPECT_NEAR(12288, sine->MaxCounts(), kCountTolerance);
    rig.clearLog();
    network->Stop();
    EXPECT_EQ("", rig.commandCodes()) << "a second stop sends nothing";
    EXPECT_NO_THROW(rig.module(0)->ReadingInCounts());
}

// The word read-out's sum carried past 32 bits, not wrapped.
TEST(DifferenceMode, WordSumPastThirtyTwoBitsReachesTheUser) {
    SimModule fast = modeProbe("GPSUM00001", 2, 2, SimSignal::constant(1.999));  // 16376 counts
    fast.difference().setSampleRate(100000);
    ModeTestRig rig({fast});
    ModuleDifference* difference = rig.module(0)->Difference();
    difference->setEnabled(true);
    rig.network->Difference()->Start();
    // 2^32 / 16376 readings make the sum carry into its fifth byte.
    ASSERT_TRUE(waitForReadings(difference, 263000));
    rig.network->Difference()->Stop();

    EXPECT_GT(difference->SumCounts(), 0xFFFFFFFFLL);
    EXPECT_EQ(static_cast<std::int64_t>(difference->ReadingCount()) * 16376, difference->SumCounts());
    EXPECT_NEAR(difference->ReadingCount() * (16376.0 / 8192), difference->Sum(), 1e-3);
}

TEST(DifferenceMode, RangeFlagsCombineAndRealErrorsWin) {
    ModeTestRig rig({
        modeProbe("GPDROP0001", 2, 2, SimSignal::constant(1.0)),        // its last read-out is lost
        modeProbe("GPBOTH0001", 2, 2, SimSignal::sine(1.0, 1.5, 0.2)),  // below and above 0 to 2 mm
        modeProbe("GPFAIL0001", 2, 2, SimSignal::constant(1.0)),        // refuses one interim read-out
        modeProbe("GPFULL0002", 2, 3, SimSignal::constant(1.0)),        // refuses the last read-out
        modeProbe("GPFULL0003", 2, 3, SimSignal::sine(1.0, 1.5, 0.2)),  // full read-out, both sides
        modeProbe("GPOVER0001", 2, 2, SimSignal::sine(1.8, 0.5, 0.2)),  // above only
    });
    for (int index = 0; index < 6; ++index) rig.module(index)->Difference()->setEnabled(true);
    NetworkDifference* network = rig.network->Difference();
    network->Start();
    // A module's own error during the run is kept through the final read-out.
    rig.controller.injectFault(SimFault::errorReply(0x05).only('D'));
    rig.module(2)->Difference()->ReadDifference();
    EXPECT_EQ(eKavroErrors::ADDR_NA, rig.module(2)->Difference()->Error());
    // Some 540 ms: more than two periods, less than half of them in range.
    ASSERT_TRUE(waitForReadings(rig.module(1)->Difference(), 250));
    rig.controller.injectFault(SimFault::dropReply().only('D'));  // the stop's first read-out
    rig.controller.injectFault(SimFault::errorReply(0x24).only('X'));
    network->Stop();

    // A lost final read-out leaves no results; range markers combine; a
    // module's own error beats them; full read-outs have no markers.
    struct Expected {
        eKavroErrors error;
        std::int32_t min, max;
    };
    const Expected expected[] = {{eKavroErrors::Timeout, 0, 0},
                                 {eKavroErrors::OverAndUnderRange, 0, 16384},
                                 {eKavroErrors::ADDR_NA, 8192, 8192},
                                 {eKavroErrors::NUM_OVERFLOW, 0, 0},
                                 {eKavroErrors::NoError, 0, 16384}};
    for (int index = 0; index < 5; ++index) {
        const ModuleDifference* difference = rig.module(index)->Difference();
        EXPECT_EQ(expected[index].error, difference->Error()) << index;
        EXPECT_EQ(expected[index].min, difference->MinCounts()) << index;
        EXPECT_EQ(expected[index].max, difference->MaxCounts()) << index;
    }
    EXPECT_EQ(0u, rig.module(0)->Difference()->ReadingCount());
    EXPECT_EQ(0.0, rig.module(0)->Difference()->Diff());
    EXPECT_NEAR(2.0, rig.module(1)->Difference()->Diff(), 1e-9);
    const ModuleDifference* over = rig.module(5)->Difference();
    EXPECT_EQ(eKavroErrors::OverRange, over->Error());
    EXPECT_NEAR(1.3 * 8192, over->MinCounts(), kCountTolerance);
    EXPECT_EQ(16384, over->MaxCounts());
}

// A refused start arms nothing; while running, enables and other modes are locked.
TEST(DifferenceMode, RefusalsChangeNothingAndSendNothing) {
    ModeTestRig rig({
        modeProbe("GPREF00001", 2, 3, SimSignal::constant(1.0)),
        modeProbe("GPREF00002", 2, 3, SimSignal::constant(1.0)),
        SimModule::diom("DIOM000001"),
    });
    NetworkDifference* network = rig.network->Difference();
    auto* second = dynamic_cast<KavroModuleDP*>(rig.module(1));
    ASSERT_NE(nullptr, second);

    EXPECT_EQ("No modules difference enabled", messageOf([&] { network->Start(); }));
    EXPECT_EQ("Module is not difference mode capable.",
              messageOf([&] { rig.module(2)->Difference()->setEnabled(true); }));
    second->setResolution(eResolution::res16Bit);
    EXPECT_EQ("Module must be set to 14bit resolution for difference mode.",
              messageOf([&] { second->Difference()->setEnabled(true); }));
    second->setResolution(eResolution::res14Bit);
    rig.module(0)->Difference()->setEnabled(true);
    second->Difference()->setEnabled(true);
    second->setResolution(eResolution::res18Bit);
    rig.clearLog();
    EXPECT_EQ("GPREF00002 is not set to 14bit resolution.", messageOf([&] { network->Start(); }));
    EXPECT_EQ("", rig.commandCodes()) << "nothing is armed before every check passed";
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(eDifferenceModeStatus::None, network->Status());
    network->Stop();
    EXPECT_EQ("", rig.commandCodes()) << "a stop with nothing running";

    second->Difference()->setEnabled(false);
    network->Start();
    rig.clearLog();
    EXPECT_EQ("Cannot start a difference operation whilst performing an kavro operation",
              messageOf([&] { network->Start(); }));
    EXPECT_EQ("Cannot change module enable state during an kavro operation",
              messageOf([&] { second->Difference()->setEnabled(true); }));
    EXPECT_EQ("Cannot change module buffered state whilst the network is busy",
              messageOf([&] { second->Buffered()->setEnabled(true); }));
    EXPECT_EQ("", rig.commandCodes());
    EXPECT_FALSE(second->Difference()->Enabled());
    network->Stop();
    EXPECT_EQ(OperationIdle, rig.operation());
}
