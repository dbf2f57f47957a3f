// Networks against the simulated bus: connect over TCP and over a serial
// line, add modules by identity, read them, change the bus speed, renumber
// and refuse what the network cannot do.
#include <cstdio>

#include <gtest/gtest.h>

#include "EndToEndSupport.h"
#include "KavroException.h"
#include "KavroModuleDP.h"
#include "KavroModuleStatus.h"
#include "KavroNetworkRS232.h"
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

SimControllerConfig secondEthernet(const std::string& identity) {
    SimControllerConfig config = SimControllerConfig::ethernet(identity);
    config.typeCode = "ETH2";  // offers UltraHigh
    return config;
}

}  // namespace

TEST(NetworkEndToEnd, EthernetNetworkAddsReadsAndChangesSpeed) {
    auto rig = connectedRig(secondEthernet("ETHSIM0001"),
                            {simProbe("GP00000001", 1.0, 2.0), simProbe("GP00000002", 2.5, 5.0)});
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("ETHIM 2 (ETHSIM0001)", network.Description());
    EXPECT_EQ("ETHSIM0001", network.ControllerID());
    EXPECT_EQ(eNetworkType::ETHIM2, network.NetworkType());
    EXPECT_EQ(32, network.MaximumAllowableNumberOfModules());
    EXPECT_EQ(SimSpeed::Low, rig->controller.busSpeed());

    network.AddModule("GP00000001", "Left");
    network.AddModule("GP00000002", "Right");
    ASSERT_EQ(2, network.ModuleCount());
    KavroModule* left = network.GetModule(0);
    KavroModule* right = network.GetModule(1);
    EXPECT_EQ("Left", left->ModuleName());
    EXPECT_EQ(eModuleType::DP, left->ModuleType());
    EXPECT_EQ(eGeneration::Kavro3, left->KavroGeneration());
    EXPECT_EQ("mm", right->UnitsOfMeasure());
    // Half of each range: 8192 counts at 14 bit, whatever the range.
    EXPECT_EQ(8192, left->ReadingInCounts());
    EXPECT_NEAR(1.0, left->ReadingInUnits(), 1e-9);
    EXPECT_EQ(8192, right->ReadingInCounts());
    EXPECT_NEAR(2.5, right->ReadingInUnits(), 1e-9);
    EXPECT_EQ(1, rig->controller.module("GP00000001")->address());
    EXPECT_EQ(2, rig->controller.module("GP00000002")->address());

    network.setNetSpeed(eNetSpeed::UltraHigh);
    EXPECT_EQ(SimSpeed::UltraHigh, rig->controller.busSpeed());
    EXPECT_EQ(SimSpeed::UltraHigh, rig->controller.module("GP00000001")->speed());
    EXPECT_EQ(SimSpeed::UltraHigh, rig->controller.module("GP00000002")->speed());
    EXPECT_NEAR(1.0, left->ReadingInUnits(), 1e-9);
    network.setNetSpeed(eNetSpeed::Low);
    EXPECT_EQ(SimSpeed::Low, rig->controller.busSpeed());
    EXPECT_NEAR(2.5, right->ReadingInUnits(), 1e-9);

    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(0, network.ModuleCount());
    EXPECT_EQ(0, rig->controller.module("GP00000001")->address());
    EXPECT_EQ(0, rig->controller.module("GP00000002")->address());
}

TEST(NetworkEndToEnd, AbsentModulesAndRangeReplies) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0002"),
                            {simProbe("GP00000003", 1.0, 2.0), SimModule::analogue("AI00000003", 630102)});
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());

    EXPECT_EQ("Module Identity GP00000099. Unable to add module.",
              messageOf([&] { network.AddModule("GP00000099", ""); }));
    EXPECT_EQ(0, network.ModuleCount());
    network.AddModule("GP00000003", "");
    network.AddModule("AI00000003", "");
    KavroModule* probe = network.GetModule(0);
    KavroModule* analogue = network.GetModule(1);

    // Out of range is a reading, not an error: zero counts under the range
    // and full scale over it, in units the ends of the range.
    rig->controller.setSignal("GP00000003", SimSignal::constant(-0.5));
    EXPECT_EQ(0, probe->ReadingInCounts());
    EXPECT_EQ(static_cast<int>(eKavroErrors::UnderRange), probe->ModuleStatus()->ErrorCode());
    rig->controller.setSignal("GP00000003", SimSignal::constant(2.5));
    EXPECT_EQ(16384, probe->ReadingInCounts());
    EXPECT_EQ(static_cast<int>(eKavroErrors::OverRange), probe->ModuleStatus()->ErrorCode());
    EXPECT_NEAR(2.0, probe->ReadingInUnits(), 1e-9);

    // The analogue module's range starts at -10 V: under range reads as its
    // offset, plus the extra offset the network may give it.
    ASSERT_EQ(eModuleType::AIM, analogue->ModuleType());
    EXPECT_NEAR(-10.0, analogue->Offset(), 1e-9);
    rig->controller.setSignal("AI00000003", SimSignal::constant(2.5));
    EXPECT_NEAR(2.5, analogue->ReadingInUnits(), 1.0 / 819.2);
    rig->controller.setSignal("AI00000003", SimSignal::constant(-12.0));
    EXPECT_EQ(0, analogue->ReadingInCounts());
    EXPECT_NEAR(-10.0, analogue->ReadingInUnits(), 1e-9);
    analogue->ReadType()->SizeOffset = 0.25;
    EXPECT_NEAR(-9.75, analogue->ReadingInUnits(), 1e-9);
    rig->controller.setSignal("AI00000003", SimSignal::constant(12.0));
    EXPECT_EQ(16384, analogue->ReadingInCounts());
    EXPECT_NEAR(10.25, analogue->ReadingInUnits(), 1e-9);

    // A refusal other than a range is the module's error, with its text.
    rig->controller.injectFault(SimFault::errorReply(0x07).only('L'));
    try {
        probe->ReadingInCounts();
        FAIL() << "expected the module's error";
    } catch (const KavroException& error) {
        EXPECT_EQ(0x2107, error.ErrorCode);
        EXPECT_EQ("The module is in the wrong mode for this command.", error.Message);
        EXPECT_EQ(error.Message, error.what());
    }
    rig->controller.setSignal("GP00000003", SimSignal::constant(1.0));
    EXPECT_EQ(8192, probe->ReadingInCounts());
}

TEST(NetworkEndToEnd, SerialNetworkReadsAtTheSpeedsItOffers) {
    SimController controller(SimControllerConfig::serial("SERSIM0001"));
    controller.addModule(olderProbe("GP00000004", 1.25, 5.0, 2));
    SimSerialFace line(controller);
    line.start();

    KavroNetworkRS232 network(0, "Bench", line.slavePath(), 115200);
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("RS232IM (SERSIM0001)", network.Description());
    EXPECT_EQ(eNetworkType::RS232IM_Mk2, network.NetworkType());
    network.AddModule("GP00000004", "Old probe");
    KavroModule* module = network.GetModule(0);
    EXPECT_EQ(eGeneration::Kavro2_B, module->KavroGeneration());
    EXPECT_EQ(4096, module->ReadingInCounts());
    EXPECT_NEAR(1.25, module->ReadingInUnits(), 1e-9);

    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
    EXPECT_THROW(network.setNetSpeed(eNetSpeed::UltraHigh), std::runtime_error);
    network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_NEAR(1.25, module->ReadingInUnits(), 1e-9);
    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(0, controller.module("GP00000004")->address());
}

TEST(NetworkEndToEnd, TheModuleSetDecidesTheSpeeds) {
    auto rig = connectedRig(
        secondEthernet("ETHSIM0011"),
        {simProbe("GP00000011", 0.5, 2.0), olderProbe("GP00000012", 1.25, 5.0, 2), simProbe("GP00000013", 7.5, 10.0)});
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
    ASSERT_TRUE(network.IsConnected());
    const std::vector<eNetSpeed> all{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh};
    EXPECT_EQ(all, network.AvailableSpeeds());

    network.AddModule("GP00000011", "");
    network.setNetSpeed(eNetSpeed::UltraHigh);
    // A second-generation module joins at Low, and the bus stays there: the
    // module has no UltraHigh.
    network.AddModule("GP00000012", "");
    EXPECT_EQ(eNetSpeed::Low, network.NetSpeed());
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());
    EXPECT_EQ(SimSpeed::Low, controller.module("GP00000011")->speed());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
    EXPECT_EQ("Kavro speed not supported by the network and module combination.",
              messageOf([&] { network.setNetSpeed(eNetSpeed::UltraHigh); }));
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());

    network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ(SimSpeed::High, controller.module("GP00000011")->speed());
    EXPECT_EQ(SimSpeed::High, controller.module("GP00000012")->speed());
    EXPECT_EQ(4096, network.GetModule(0)->ReadingInCounts());
    EXPECT_EQ(4096, network.GetModule(1)->ReadingInCounts());

    // A module added at High is addressed at Low, then the bus goes back up
    // with the new module on it.
    network.AddModule("GP00000013", "");
    EXPECT_EQ(eNetSpeed::High, network.NetSpeed());
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_EQ(SimSpeed::High, controller.module("GP00000013")->speed());
    EXPECT_EQ(12288, network.GetModule(2)->ReadingInCounts());
    EXPECT_NEAR(7.5, network.GetModule(2)->ReadingInUnits(), 1e-9);

    // Without the older module UltraHigh is offered again.
    network.DeleteModule("GP00000012");
    EXPECT_EQ(all, network.AvailableSpeeds());
    network.setNetSpeed(eNetSpeed::UltraHigh);
    EXPECT_EQ(SimSpeed::UltraHigh, controller.busSpeed());
    EXPECT_NEAR(0.5, network.GetModule(0)->ReadingInUnits(), 1e-9);
    EXPECT_NEAR(7.5, network.GetModule(1)->ReadingInUnits(), 1e-9);
}

TEST(NetworkEndToEnd, DeletedModulesLeaveTheRestRenumbered) {
    auto rig = connectedRig(
        SimControllerConfig::ethernet("ETHSIM0021"),
        {simProbe("GP00000021", 0.5, 2.0), simProbe("GP00000022", 1.0, 2.0), simProbe("GP00000023", 1.5, 2.0)});
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());
    for (const char* identity : {"GP00000021", "GP00000022", "GP00000023"}) network.AddModule(identity, "");
    KavroModule* middle = network.GetModule(1);

    network.DeleteModule(1);
    ASSERT_EQ(2, network.ModuleCount());
    EXPECT_EQ(0, rig->controller.module("GP00000022")->address());
    EXPECT_EQ(2, rig->controller.module("GP00000023")->address());
    EXPECT_EQ(2, network.GetModule(1)->Address());
    EXPECT_EQ(1, network.GetModuleIndexByID("GP00000023"));
    EXPECT_EQ(-1, network.GetModuleIndexByID("GP00000022"));
    EXPECT_EQ(4096, network.GetModule(0)->ReadingInCounts());
    EXPECT_EQ(12288, network.GetModule(1)->ReadingInCounts());
    // The application's pointer stays valid, but no longer reaches the bus:
    // its old address belongs to the next module now.
    EXPECT_EQ("GP00000022", middle->ModuleID());
    EXPECT_THROW(middle->ReadingInCounts(), KavroException);

    network.DeleteModule("GP00000021");
    ASSERT_EQ(1, network.ModuleCount());
    EXPECT_EQ(0, rig->controller.module("GP00000021")->address());
    EXPECT_EQ(1, rig->controller.module("GP00000023")->address());
    EXPECT_NEAR(1.5, network.GetModule(0)->ReadingInUnits(), 1e-9);

    // A deleted module can come back; it takes the next address.
    network.AddModule("GP00000022", "");
    EXPECT_EQ(2, rig->controller.module("GP00000022")->address());
    EXPECT_EQ(8192, network.GetModule(1)->ReadingInCounts());
}

TEST(NetworkEndToEnd, ProbeAveragingAndResolution) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    SimModule probe = simProbe("GP00000031", 1.5, 2.0);
    probe.setAveraging(64);
    SimModule oldFormat = simProbe("GP00000032", 2.5, 5.0);
    oldFormat.setInfoFormat(SimInfoFormat::Old);
    SimModule firstGeneration = olderProbe("GP00000033", 1.25, 5.0, 0);
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0031"), {probe, oldFormat, firstGeneration});
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
    ASSERT_TRUE(network.IsConnected());
    for (const char* identity : {"GP00000031", "GP00000032", "GP00000033"}) network.AddModule(identity, "");
    auto* dp = dynamic_cast<KavroModuleDP*>(network.GetModule(0));
    auto* older = dynamic_cast<KavroModuleDP*>(network.GetModule(1));
    auto* first = dynamic_cast<KavroModuleDP*>(network.GetModule(2));
    ASSERT_TRUE(dp != nullptr && older != nullptr && first != nullptr);

    // Averaging: what the probe powered up with, then what the host sets.
    EXPECT_EQ(eAveraging::average64, dp->Averaging());
    dp->setAveraging(eAveraging::average4);
    EXPECT_EQ(eAveraging::average4, dp->Averaging());
    EXPECT_EQ(4, controller.module("GP00000031")->averaging());
    // The Ethernet link expects the echo of set mode and takes a refusal
    // for no answer at all.
    controller.injectFault(SimFault::errorReply(0x60).only('V'));
    try {
        dp->setAveraging(eAveraging::average256);
        FAIL() << "expected the probe's refusal";
    } catch (const KavroException& error) {
        EXPECT_EQ(static_cast<int>(eKavroErrors::Timeout), error.ErrorCode);
        EXPECT_EQ("No reply from the module within the time-out.", error.Message);
    }
    EXPECT_EQ(eAveraging::average4, dp->Averaging());
    EXPECT_EQ(4, controller.module("GP00000031")->averaging());

    // Resolution: 16 and 18 bits count 4 and 16 times finer; the reading in
    // millimetres stays.
    EXPECT_EQ(eResolution::res14Bit, dp->Resolution());
    EXPECT_EQ(12288, dp->ReadingInCounts());
    dp->setResolution(eResolution::res16Bit);
    EXPECT_EQ(16, controller.module("GP00000031")->resolutionBits());
    EXPECT_EQ(4 * 12288, dp->ReadingInCounts());
    EXPECT_NEAR(1.5, dp->ReadingInUnits(), 1e-9);
    dp->setResolution(eResolution::res18Bit);
    EXPECT_EQ(eResolution::res18Bit, dp->Resolution());
    EXPECT_EQ(262144, dp->ReadType()->FullScale);
    const int counts = dp->ReadingInCounts();
    EXPECT_EQ(16 * 12288, counts);
    EXPECT_NEAR(counts / (16 * dp->CPUOM()), dp->ReadingInUnits(), 1e-12);
    EXPECT_NEAR(1.5, dp->ReadingInUnits(), 1e-9);
    controller.setSignal("GP00000031", SimSignal::constant(2.1));
    EXPECT_EQ(262144, dp->ReadingInCounts());
    EXPECT_NEAR(2.0, dp->ReadingInUnits(), 1e-9);
    controller.setSignal("GP00000031", SimSignal::constant(1.5));

    controller.injectFault(SimFault::errorReply(0x62).only('V'));
    EXPECT_EQ("Unable to set resolution", messageOf([&] { dp->setResolution(eResolution::res14Bit); }));
    EXPECT_EQ(eResolution::res18Bit, dp->Resolution());
    EXPECT_EQ(18, controller.module("GP00000031")->resolutionBits());
    EXPECT_EQ(16 * 12288, dp->ReadingInCounts());

    // A probe that describes itself the old way offers no resolution and
    // refuses one; it keeps counting at 14 bit.
    EXPECT_TRUE(older->AvailableResolutions().empty());
    EXPECT_EQ("Unable to set resolution", messageOf([&] { older->setResolution(eResolution::res18Bit); }));
    EXPECT_EQ(eResolution::res14Bit, older->Resolution());
    EXPECT_EQ(8192, older->ReadingInCounts());
    EXPECT_NEAR(2.5, older->ReadingInUnits(), 1e-9);

    // A first-generation probe has no get-info answer: averaging 16, and its
    // memory is never asked.
    EXPECT_EQ(eGeneration::Classic, first->KavroGeneration());
    EXPECT_EQ(eAveraging::average16, first->Averaging());
    for (const SimRequest& request : rig->logged('M')) {
        EXPECT_FALSE(request.command.size() > 1 && request.command[1] == 3) << request.describe();
    }
    EXPECT_NEAR(1.25, first->ReadingInUnits(), 1e-9);
}

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
    ASSERT_EQ(32, network.ModuleCount());
    EXPECT_EQ(32, controller.module(identities[31])->address());
    EXPECT_EQ(32 * 256, network.GetModule(31)->ReadingInCounts());

    // Refusals reach nothing on the bus.
    const std::uint64_t before = controller.requestCount();
    EXPECT_EQ("Network module limit exceeded.", messageOf([&] { network.AddModule(identities[32], ""); }));
    EXPECT_EQ("Network module limit exceeded.", messageOf([&] { network.AddModule(identities[0], ""); }));
    EXPECT_EQ(0, controller.module(identities[32])->address());
    network.Configuration()->ActiveOperation = OperationBuffered;
    EXPECT_EQ("Cannot perform an kavro read during an kavro operation",
              messageOf([&] { network.GetModule(0)->ReadingInCounts(); }));
    EXPECT_EQ("Cannot add a module during an Kavro operation",
              messageOf([&] { network.AddModule(identities[32], ""); }));
    EXPECT_EQ("Cannot delete a module whilst performing an Kavro operation.",
              messageOf([&] { network.DeleteModule(0); }));
    EXPECT_EQ("Cannot change network speed whilst performing an Kavro operation.",
              messageOf([&] { network.setNetSpeed(eNetSpeed::High); }));
    network.Configuration()->ActiveOperation = OperationIdle;
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
    EXPECT_EQ(0, controller.module(identities[32])->address());
    EXPECT_EQ("Not connected to Kavro!", messageOf([&] { network.AddModule(identities[0], ""); }));
    EXPECT_EQ("Not connected to Kavro.", messageOf([&] { network.setNetSpeed(eNetSpeed::High); }));
    EXPECT_EQ("Not connected to Kavro.", messageOf([&] { network.DeleteModule(0); }));
}
