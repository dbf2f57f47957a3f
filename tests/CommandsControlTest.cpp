// Control commands: the broadcasts, the pauses, and the checked replies of
// preset, reference mark and status.
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

TEST(CommandsControl, ClearPausesOnlyWhenAnswered) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'C', 0x01});
    Clock::time_point start = Clock::now();
    EXPECT_EQ(0x01, KavroCommands::KavroClr(&config, 6).Value);
    EXPECT_GE(Clock::now() - start, milliseconds(500));

    link.reply({}, 255);
    start = Clock::now();
    KavroCommands::KavroClr(&config, 6);
    EXPECT_LT(Clock::now() - start, milliseconds(400));

    link.reply({'U', 0x01});
    start = Clock::now();
    EXPECT_EQ(0x01, KavroCommands::KavroDirection(&config, 9).Value);
    EXPECT_GE(Clock::now() - start, milliseconds(1));
}

TEST(CommandsControl, BroadcastsFetchNothingAndKeepTheirPauses) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    Clock::time_point start = Clock::now();
    KavroCommands::KavroRst(&config);
    EXPECT_GE(Clock::now() - start, milliseconds(500));
    start = Clock::now();
    KavroCommands::KavroClearTCon(&config);
    EXPECT_GE(Clock::now() - start, milliseconds(50));
    KavroCommands::KavroControl(&config, eKavroControlAction::ApplySpeed);
    KavroCommands::KavroStartDiff(&config);
    KavroCommands::KavroStopDiff(&config);

    const std::vector<Bytes> expected{{'R', 0}, {'r', 0}, {'W', 0, 10}, {'O', 0}, {'H', 0}};
    EXPECT_EQ(expected, link.commands);
    for (const FakeModuleBus::Sent& sent : link.sent) {
        EXPECT_EQ(1, sent.Type);
        EXPECT_EQ(0, sent.ReplyLength);
    }
    EXPECT_TRUE(link.fetches.empty());
}

TEST(CommandsControl, SetModeSendsLow16BitsOfModeAndArgument) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'V', 0x05});
    EXPECT_EQ(0x05, KavroCommands::KavroSetMode(&config, 2, eSetModeMode::TxSample, 0x1FFFF).Value);
    EXPECT_EQ((Bytes{'V', 2, 77, 0, 0xFF, 0xFF}), link.commands.back());
}

TEST(CommandsControl, PresetRefMarkAndStatusCheckTheirReplies) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'P', 0x02});
    const KavroCheckedValueResult preset = KavroCommands::KavroPreset(&config, 4, 1);
    EXPECT_EQ(0u, preset.ModuleError);
    EXPECT_EQ(0x02, preset.Value);
    // Each checks its own echo.
    link.reply({'K', 0x09});
    EXPECT_EQ(255u, KavroCommands::KavroPreset(&config, 4, 1).ModuleError);
    link.reply({'K', 0x09});
    EXPECT_EQ(0x09, KavroCommands::KavroRefMark(&config, 7).Value);

    link.reply({'G', 0x00, 0x34, 0x12});
    const KavroStatusResult good = KavroCommands::KavroGetStatus(&config, 3);
    EXPECT_EQ(0u, good.ModuleError);
    EXPECT_EQ(0x1234, good.StatusWord);
    link.reply({'G', 0x77, 0x01, 0x00});
    const KavroStatusResult faulty = KavroCommands::KavroGetStatus(&config, 3);
    EXPECT_EQ(0x2177u, faulty.ModuleError);
    EXPECT_EQ(0x0001, faulty.StatusWord);
}
