// Failure paths a long-running station meets: networks dropped mid-run,
// refusals, reconnects, threads sharing one link.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "LinkRig.h"
#include "NetworkTestSupport.h"
#include "ModeTestRig.h"

using namespace KavroLibrary;
using namespace kavrosim;

TEST(FailurePath, DroppingANetworkMidRunStopsTheModeOnTheBus) {
    for (const bool buffered : {false, true}) {
        ModeTestRig rig({modeProbe("GPDROP0001", 2, 3, SimSignal::constant(0.5))});
        if (buffered) {
            rig.module(0)->Buffered()->setMode(eBufferedMode::Sync);
            rig.module(0)->Buffered()->setEnabled(true);
            rig.network->Buffered()->Start();
        } else {
            rig.module(0)->Difference()->setEnabled(true);
            rig.network->Difference()->Start();
        }
        rig.clearLog();
        rig.network.reset();  // must not end the process
        // The mode was stopped before the bus was reset.
        const std::string codes = rig.commandCodes(2);
        const char stop = buffered ? 'W' : 'H';
        ASSERT_NE(std::string::npos, codes.find(stop)) << codes;
        EXPECT_LT(codes.find(stop), codes.find('R')) << codes;
    }
}

// A controller that restarted while nobody listened: connecting again starts
// from an empty module list, not from modules the bus no longer knows.
TEST(FailurePath, ConnectAfterAFailedReconnectStartsClean) {
    LinkRig rig(LinkKind::Ethernet, {modeProbe("GPRECON001", 2, 3, SimSignal::constant(0.5))});
    ASSERT_TRUE(rig.network->IsConnected());
    rig.network->AddModule("GPRECON001", "");
    const std::string address = rig.face->location();
    rig.face->stop();
    {
        // Gone: reads fail at once, and the network knows it.
        DiagnosticCapture errors;
        const Stopwatch watch;
        EXPECT_THROW(rig.network->GetModule(0)->ReadingInCounts(), KavroException);
        EXPECT_THROW(rig.network->GetModule(0)->ReadingInCounts(), KavroException);
        EXPECT_LT(watch.elapsed(), std::chrono::milliseconds(700));
        EXPECT_FALSE(rig.network->IsConnected());
        EXPECT_NE(std::string::npos, errors.text().find("Unable to connect to ethim")) << errors.text();
    }
    rig.face = std::make_unique<SimEthernetFace>(rig.controller(), address);
    rig.face->start();
    rig.network->Connect();
    ASSERT_TRUE(rig.network->IsConnected());
    EXPECT_EQ(0, rig.network->ModuleCount());
    rig.network->AddModule("GPRECON001", "");
    EXPECT_EQ(4096, rig.network->GetModule(0)->ReadingInCounts());
}

// One exchange at a time per link: whatever thread asks, its request waits
// while another exchange holds the link.
TEST(FailurePath, EveryExchangeWaitsForTheLink) {
    LinkRig rig(LinkKind::Ethernet, {modeProbe("GPLOCK0001", 2, 3, SimSignal::constant(0.5))});
    ASSERT_TRUE(rig.network->IsConnected());
    rig.network->AddModule("GPLOCK0001", "");
    auto* probe = dynamic_cast<KavroModuleDP*>(rig.network->GetModule(0));
    ASSERT_NE(nullptr, probe);
    const std::vector<std::pair<const char*, std::function<void()>>> operations{
        {"GetProbeID", [&] { probe->GetProbeID(); }},
        {"UpdateStatus", [&] { probe->ModuleStatus()->UpdateStatus(); }},
        {"setAveraging", [&] { probe->setAveraging(eAveraging::average8); }},
        {"setNetSpeed", [&] { rig.network->setNetSpeed(eNetSpeed::High); }},
    };
    for (const auto& operation : operations) {
        SCOPED_TRACE(operation.first);
        std::unique_lock<std::mutex> held(rig.network->Configuration()->LinkLock);
        const std::uint64_t before = rig.controller().requestCount();
        std::atomic<bool> done{false};
        std::thread caller([&] {
            operation.second();
            done = true;
        });
        // Nothing reaches the bus while the link is held.
        EXPECT_FALSE(rig.controller().waitForRequestCount(before + 1, std::chrono::milliseconds(150)));
        held.unlock();
        EXPECT_TRUE(waitFor([&] { return done.load(); }, std::chrono::seconds(5)));
        caller.join();
    }
}

// A notification still ending keeps the link: a new one waits for it.
TEST(FailurePath, BeginNotifyingWaitsForAPendingEnd) {
    LinkRig rig(LinkKind::Ethernet, {});
    ASSERT_TRUE(rig.network->IsConnected());
    NetworkConfiguration* config = rig.network->Configuration();
    config->ActiveOperation = OperationNotifyEnding;
    std::atomic<bool> begun{false};
    std::thread caller([&] {
        rig.network->BeginNotifying();
        begun = true;
    });
    EXPECT_FALSE(waitFor([&] { return begun.load(); }, std::chrono::milliseconds(150)));
    EXPECT_EQ(OperationNotifyEnding, config->ActiveOperation.load());
    config->ActiveOperation = OperationIdle;  // the ending thread's last word
    EXPECT_TRUE(waitFor([&] { return begun.load(); }, std::chrono::seconds(5)));
    caller.join();
    EXPECT_TRUE(rig.network->Notifying());
    rig.network->CancelNotifying();
    EXPECT_FALSE(rig.network->Notifying());
}
