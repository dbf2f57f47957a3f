// Networks against the simulated bus: add modules by identity, read them,
// and refuse what the network cannot do.
#include <cstdio>

#include <gtest/gtest.h>

#include "SimNetworkRig.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace std::chrono_literals;

// Catches a wrong offset for a range that starts below zero, or range replies thrown as errors.
TEST(NetworkEndToEnd, AnalogueRangeStartsBelowZero) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0002"), {SimModule::analogue("AI00000003", 630102)});
    KavroNetworkETHIM& network = *rig.network;
    ASSERT_TRUE(network.IsConnected());
    network.AddModule("AI00000003", "");
    KavroModule* analogue = network.GetModule(0);
    ASSERT_EQ(eModuleType::AIM, analogue->ModuleType());
    rig.controller.setSignal("AI00000003", SimSignal::constant(2.5));
    EXPECT_NEAR(2.5, analogue->ReadingInUnits(), 1.0 / 819.2);
    // Under range reads as the -10 V offset plus the network's extra offset.
    rig.controller.setSignal("AI00000003", SimSignal::constant(-12.0));
    EXPECT_EQ(0, analogue->ReadingInCounts());
    EXPECT_NEAR(-10.0, analogue->ReadingInUnits(), 1e-9);
    analogue->ReadType()->SizeOffset = 0.25;
    EXPECT_NEAR(-9.75, analogue->ReadingInUnits(), 1e-9);
    rig.controller.setSignal("AI00000003", SimSignal::constant(12.0));
    EXPECT_EQ(16384, analogue->ReadingInCounts());
    EXPECT_NEAR(10.25, analogue->ReadingInUnits(), 1e-9);
}

// Catches an off-by-one in the module limit, or refusals that still reach the bus.
TEST(NetworkEndToEnd, ModuleLimitAndRefusals) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0041"), {});  // module limit "L032"
    KavroNetworkETHIM& network = *rig.network;
    SimController& controller = rig.controller;
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("ETHIM (ETHSIM0041)", network.Description());
    EXPECT_EQ(eNetworkType::ETHIM, network.NetworkType());
    EXPECT_EQ(32, network.MaximumAllowableNumberOfModules());

    std::vector<std::string> identities;
    for (int i = 1; i <= 33; ++i) {
        char identity[16];
        std::snprintf(identity, sizeof identity, "LM%08d", i);
        identities.push_back(identity);
        controller.addModule(simProbe(identity, 0.03125 * i, 2.0));
    }
    for (int i = 0; i < 32; ++i) network.AddModule(identities[i], "");
    EXPECT_EQ(32, controller.module(identities[31])->address());
    EXPECT_EQ(32 * 256, network.GetModule(31)->ReadingInCounts());

    const std::uint64_t before = controller.requestCount();
    EXPECT_EQ("Network module limit exceeded.", messageOf([&] { network.AddModule(identities[32], ""); }));
    EXPECT_EQ("Network module limit exceeded.", messageOf([&] { network.AddModule(identities[0], ""); }));
    EXPECT_EQ("Invalid module index.", messageOf([&] { network.DeleteModule(32); }));
    EXPECT_EQ(before, controller.requestCount());

    network.DeleteModule(31);
    const std::uint64_t afterDelete = controller.requestCount();
    EXPECT_EQ("Attempting to add a duplicate module to the network",
              messageOf([&] { network.AddModule(identities[0], ""); }));
    EXPECT_EQ(afterDelete, controller.requestCount());
    network.AddModule(identities[32], "");
    EXPECT_EQ(32, controller.module(identities[32])->address());
    EXPECT_EQ(33 * 256, network.GetModule(31)->ReadingInCounts());

    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(0, network.ModuleCount());
    EXPECT_EQ(0, controller.module(identities[32])->address());
    EXPECT_EQ("Not connected to Kavro.", messageOf([&] { network.DeleteModule(0); }));
}
