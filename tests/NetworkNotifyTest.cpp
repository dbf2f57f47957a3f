// Notification against the simulated bus: a module that announces itself is
// added by the background thread, which the application can cancel, and
// which never takes the application down.
#include <gtest/gtest.h>

#include <algorithm>

#include "NetworkTestSupport.h"
#include "SimNetworkRig.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace std::chrono_literals;

TEST(Notification, AddsTheAnnouncedModuleAndRestoresTheSpeed) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0101"), {simProbe("GP00000101", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000101", "First");
    network.setNetSpeed(eNetSpeed::High);

    network.BeginNotifying();
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());
    // Everything that would use the bus is refused meanwhile.
    EXPECT_EQ("Cannot change network speed whilst performing an Kavro operation.",
              messageOf([&] { network.AddModule("GP00000109", ""); }));
    EXPECT_EQ("Cannot perform an kavro read during an kavro operation",
              messageOf([&] { network.GetModule(0)->ReadingInCounts(); }));

    SimModule pressed = simProbe("GP00000102", 0.5);
    pressed.setAnnouncing(true);
    rig.controller.addModule(pressed);
    // The list is looked at while the thread may be adding to it.
    ASSERT_TRUE(waitFor(
        [&] {
            if (KavroModule* added = network.GetModule(1)) (void)added->ModuleID();
            (void)network.AvailableSpeeds();
            return !network.Notifying();
        },
        5000ms));

    ASSERT_EQ(2, network.ModuleCount());
    EXPECT_EQ(2, rig.controller.module("GP00000102")->address());
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ(SimSpeed::High, rig.controller.busSpeed());
    EXPECT_NEAR(0.5, network.GetModule(1)->ReadingInUnits(), 1e-3);
}

TEST(Notification, KeepsAskingUntilCancelledAndTheCancelIsPrompt) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0102"), {simProbe("GP00000103", 1.0)});
    KavroNetwork& network = *rig.network;

    auto start = std::chrono::steady_clock::now();
    network.CancelNotifying();  // nothing running: nothing to wait for
    EXPECT_LT(std::chrono::steady_clock::now() - start, 100ms);
    EXPECT_FALSE(network.Notifying());

    rig.controller.clearRequestLog();
    const std::uint64_t before = rig.controller.requestCount();
    network.BeginNotifying();
    // Nobody announces: every answer is a time-out, and the thread asks again.
    ASSERT_TRUE(rig.controller.waitForRequestCount(before + 6, 3000ms));
    EXPECT_GE(rig.logged('N').size(), 6u);
    EXPECT_TRUE(network.Notifying());

    start = std::chrono::steady_clock::now();
    network.CancelNotifying();
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took, 400ms) << std::chrono::duration_cast<std::chrono::milliseconds>(took).count() << " ms";
    EXPECT_FALSE(network.Notifying());
    EXPECT_EQ(OperationIdle, rig.operation());
    network.AddModule("GP00000103", "");  // idle again: the bus is the application's
    EXPECT_EQ(1, network.ModuleCount());
}

TEST(Notification, ARefusedAdditionEndsItWithOneLineInsteadOfEndingTheProcess) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0103"), {simProbe("GP00000104", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000104", "");

    std::string errors;
    {
        DiagnosticCapture capture;
        // A module already on the network announces itself: a duplicate.
        rig.controller.announce("GP00000104");
        network.BeginNotifying();
        ASSERT_TRUE(waitFor([&] { return !network.Notifying(); }, 5000ms));
        errors = capture.text();
    }
    EXPECT_NE(std::string::npos, errors.find("Attempting to add a duplicate module to the network")) << errors;
    EXPECT_EQ(1, std::count(errors.begin(), errors.end(), '\n')) << errors;
    EXPECT_EQ(1, network.ModuleCount());
    EXPECT_EQ(OperationIdle, rig.operation());
}

TEST(Notification, DisconnectingOrDestroyingTheNetworkEndsIt) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0104"));
    rig.connect();

    rig.network->BeginNotifying();
    rig.network->Disconnect();
    EXPECT_FALSE(rig.network->Notifying());
    EXPECT_EQ(OperationIdle, rig.operation());
    EXPECT_EQ("Not connected to Kavro.", messageOf([&] { rig.network->BeginNotifying(); }));

    rig.connect();
    rig.network->BeginNotifying();
    const std::uint64_t before = rig.controller.requestCount();
    ASSERT_TRUE(rig.controller.waitForRequestCount(before + 1, 3000ms));
    // The thread must be gone before the network's memory is.
    rig.network.reset();
}
