// Networks against the simulated bus: add modules by identity, read them,
// change the bus speed, renumber and refuse what the network cannot do.
#include <cstdio>

#include <gtest/gtest.h>

#include "EndToEndSupport.h"
#include "KavroException.h"
#include "KavroModuleDP.h"
#include "core/ErrorDictionary.h"
#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace e2e;

namespace {

SimModule olderProbe(const std::string& identity, double value, double rangeMm, int generation) {
    SimModule probe = simProbe(identity, value, rangeMm);
    probe.setGeneration(generation);
    return probe;
}

}  // namespace

// Catches a bus left faster than its slowest module, or one not restored after an addition or deletion.
TEST(NetworkEndToEnd, TheModuleSetDecidesTheSpeeds) {
    SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0011");
    config.typeCode = "ETH2";  // offers UltraHigh
    auto rig = connectedRig(config, {simProbe("GP00000011", 0.5, 2.0), olderProbe("GP00000012", 1.25, 5.0, 2),
                                     simProbe("GP00000013", 7.5, 10.0)});
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ(eNetworkType::ETHIM2, network.NetworkType());
    const std::vector<eNetSpeed> all{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh};
    EXPECT_EQ(all, network.AvailableSpeeds());

    network.AddModule("GP00000011", "");
    network.setNetSpeed(eNetSpeed::UltraHigh);
    // A second-generation module joins at Low, and the bus stays there.
    network.AddModule("GP00000012", "");
    EXPECT_EQ(eGeneration::Kavro2_B, network.GetModule(1)->KavroGeneration());
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());
    EXPECT_EQ(SimSpeed::Low, controller.module("GP00000011")->speed());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());

    network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ(SimSpeed::High, controller.module("GP00000011")->speed());
    EXPECT_EQ(4096, network.GetModule(1)->ReadingInCounts());
    // A module added at High ends up at High with the rest.
    network.AddModule("GP00000013", "");
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_EQ(SimSpeed::High, controller.module("GP00000013")->speed());
    EXPECT_EQ(12288, network.GetModule(2)->ReadingInCounts());

    // Without the older module UltraHigh is offered again.
    network.DeleteModule("GP00000012");
    EXPECT_EQ(all, network.AvailableSpeeds());
    network.setNetSpeed(eNetSpeed::UltraHigh);
    EXPECT_EQ(SimSpeed::UltraHigh, controller.busSpeed());
    EXPECT_NEAR(0.5, network.GetModule(0)->ReadingInUnits(), 1e-9);
    EXPECT_NEAR(7.5, network.GetModule(1)->ReadingInUnits(), 1e-9);
}

// Catches a wrong offset for a range that starts below zero, or range replies thrown as errors.
TEST(NetworkEndToEnd, AnalogueRangeStartsBelowZero) {
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0002"), {SimModule::analogue("AI00000003", 630102)});
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());
    network.AddModule("AI00000003", "");
    KavroModule* analogue = network.GetModule(0);
    ASSERT_EQ(eModuleType::AIM, analogue->ModuleType());
    rig->controller.setSignal("AI00000003", SimSignal::constant(2.5));
    EXPECT_NEAR(2.5, analogue->ReadingInUnits(), 1.0 / 819.2);
    // Under range reads as the -10 V offset plus the network's extra offset.
    rig->controller.setSignal("AI00000003", SimSignal::constant(-12.0));
    EXPECT_EQ(0, analogue->ReadingInCounts());
    EXPECT_NEAR(-10.0, analogue->ReadingInUnits(), 1e-9);
    analogue->ReadType()->SizeOffset = 0.25;
    EXPECT_NEAR(-9.75, analogue->ReadingInUnits(), 1e-9);
    rig->controller.setSignal("AI00000003", SimSignal::constant(12.0));
    EXPECT_EQ(16384, analogue->ReadingInCounts());
    EXPECT_NEAR(10.25, analogue->ReadingInUnits(), 1e-9);
}

// Catches modules not renumbered on the bus after a deletion, or a stale pointer reading its successor.
// Catches a refused averaging taken as set, 18-bit counts not scaled, or an old-format probe given a resolution.
TEST(NetworkEndToEnd, ProbeAveragingAndResolution) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    SimModule probe = simProbe("GP00000031", 1.5, 2.0);
    probe.setAveraging(64);
    SimModule oldFormat = simProbe("GP00000032", 2.5, 5.0);
    oldFormat.setInfoFormat(SimInfoFormat::Old);
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0031"), {probe, oldFormat});
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
    ASSERT_TRUE(network.IsConnected());
    for (const char* identity : {"GP00000031", "GP00000032"}) network.AddModule(identity, "");
    auto* dp = dynamic_cast<KavroModuleDP*>(network.GetModule(0));
    auto* older = dynamic_cast<KavroModuleDP*>(network.GetModule(1));
    ASSERT_TRUE(dp != nullptr && older != nullptr);

    EXPECT_EQ(eAveraging::average64, dp->Averaging());
    dp->setAveraging(eAveraging::average4);
    EXPECT_EQ(4, controller.module("GP00000031")->averaging());
    controller.injectFault(SimFault::errorReply(0x60).only('V'));
    try {
        dp->setAveraging(eAveraging::average256);
        FAIL() << "expected the probe's refusal";
    } catch (const KavroException& error) {
        EXPECT_EQ(0x2160, error.ErrorCode);
        EXPECT_EQ("The averaging value is not valid.", error.Message);
    }
    EXPECT_EQ(eAveraging::average4, dp->Averaging());
    EXPECT_EQ(4, controller.module("GP00000031")->averaging());

    // 18 bits count 16 times finer; the reading in millimetres stays.
    EXPECT_EQ(12288, dp->ReadingInCounts());
    dp->setResolution(eResolution::res18Bit);
    EXPECT_EQ(18, controller.module("GP00000031")->resolutionBits());
    EXPECT_EQ(16 * 12288, dp->ReadingInCounts());
    EXPECT_NEAR(1.5, dp->ReadingInUnits(), 1e-9);
    // A probe describing itself the old way refuses a resolution and keeps 14 bit.
    EXPECT_EQ("Unable to set resolution", messageOf([&] { older->setResolution(eResolution::res18Bit); }));
    EXPECT_EQ(8192, older->ReadingInCounts());
}

// Catches an off-by-one in the module limit, or refusals that still reach the bus.
TEST(NetworkEndToEnd, ModuleLimitAndRefusals) {
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0041"));  // module limit "L032"
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
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
