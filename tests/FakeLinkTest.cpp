// The recording link the command tests build on: it must answer in the order
// it was told, put the link table back, and be safe to use from a worker thread.
#include <thread>

#include <gtest/gtest.h>

#include "FakeLink.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeLink::Bytes;
using std::chrono::milliseconds;

TEST(FakeLink, ScriptThenResponderThenSilenceAndTheTableIsRestored) {
    NetworkConfiguration config(0, "net");
    {
        FakeLink link(config);
        link.reply({'1', 0x01, 0x00});
        link.setResponder([](const FakeLink::Command* last, const FakeLink::Fetch&) {
            // Answer a read of address a with the reading a.
            return FakeLink::Reply{0, {'1', last->Data[1], 0x00}};
        });
        EXPECT_EQ(1, KavroCommands::KavroRead1(&config, 9).Reading);
        EXPECT_EQ(9, KavroCommands::KavroRead1(&config, 9).Reading);
        link.setResponder(nullptr);
        EXPECT_EQ(255u, KavroCommands::KavroRead1(&config, 9).LinkStatus);
        EXPECT_EQ(3u, link.fetches().back().CommandsBefore);
    }
    EXPECT_EQ(nullptr, config.SendCommand);
    EXPECT_EQ(nullptr, config.GetReply);
    EXPECT_EQ(nullptr, config.SetSpeed);
    // With no link at all a command reports that nothing arrived.
    EXPECT_EQ(255u, KavroCommands::KavroRead1(&config, 1).LinkStatus);
}

TEST(FakeLink, WorkerThreadTrafficIsWaitedForWithABound) {
    NetworkConfiguration config(0, "net");
    FakeLink link(config);
    link.setResponder([](const FakeLink::Command*, const FakeLink::Fetch&) {
        return FakeLink::Reply{0, {'N', 'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J'}};
    });
    std::thread worker([&config] {
        for (int i = 0; i < 20; ++i) KavroCommands::KavroNotify(&config);
    });
    EXPECT_TRUE(link.waitForFetches(20, milliseconds(5000)));
    worker.join();
    EXPECT_EQ(20u, link.commandCount());
    EXPECT_FALSE(link.waitForCommands(21, milliseconds(1)));
}
