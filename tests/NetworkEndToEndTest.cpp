// Networks against the simulated bus: connect over TCP and over a serial
// line, add probes by identity, read them, change the bus speed.
#include <gtest/gtest.h>

#include "KavroException.h"
#include "KavroModuleDP.h"
#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "core/KavroSim.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

SimModule probeReading(const std::string& identity, double rangeMm, double value) {
    SimModule probe = SimModule::digitalProbe(identity, rangeMm);
    probe.setSignal(SimSignal::constant(value));
    return probe;
}

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(NetworkEndToEnd, EthernetNetworkAddsReadsAndChangesSpeed) {
    SimControllerConfig second = SimControllerConfig::ethernet("ETHSIM0001");
    second.typeCode = "ETH2";  // the second Ethernet controller offers UltraHigh
    SimController controller(second);
    controller.addModule(probeReading("GP00000001", 2.0, 1.0));
    controller.addModule(probeReading("GP00000002", 5.0, 2.5));
    SimEthernetFace face(controller);
    face.start();

    KavroNetworkETHIM network(0, "Line 1", face.address());
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("ETHIM 2 (ETHSIM0001)", network.Description());
    EXPECT_EQ(eNetworkType::ETHIM2, network.NetworkType());
    EXPECT_EQ(32, network.MaximumAllowableNumberOfModules());
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());

    network.AddModule("GP00000001", "Left");
    network.AddModule("GP00000002", "Right");
    ASSERT_EQ(2, network.ModuleCount());
    KavroModule* left = network.GetModule(0);
    KavroModule* right = network.GetModule(1);
    EXPECT_EQ(eModuleType::DP, left->ModuleType());
    EXPECT_EQ(eGeneration::Kavro3, left->KavroGeneration());
    EXPECT_EQ(8192, left->ReadingInCounts());
    EXPECT_NEAR(1.0, left->ReadingInUnits(), 1e-9);
    EXPECT_NEAR(2.5, right->ReadingInUnits(), 1e-3);
    EXPECT_EQ(1, controller.module("GP00000001")->address());
    EXPECT_EQ(2, controller.module("GP00000002")->address());

    network.setNetSpeed(eNetSpeed::UltraHigh);
    EXPECT_EQ(SimSpeed::UltraHigh, controller.busSpeed());
    EXPECT_EQ(SimSpeed::UltraHigh, controller.module("GP00000002")->speed());
    EXPECT_NEAR(1.0, left->ReadingInUnits(), 1e-9);
    network.setNetSpeed(eNetSpeed::Low);
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());
    EXPECT_NEAR(2.5, right->ReadingInUnits(), 1e-3);

    // The probe at 18 bits reads the same value with 16 times the counts.
    auto* probe = dynamic_cast<KavroModuleDP*>(right);
    ASSERT_NE(nullptr, probe);
    probe->setResolution(eResolution::res18Bit);
    EXPECT_EQ(18, controller.module("GP00000002")->resolutionBits());
    EXPECT_NEAR(2.5, probe->ReadingInUnits(), 1e-3);
    EXPECT_EQ(16 * 8192, probe->ReadingInCounts());

    network.DeleteModule(0);
    ASSERT_EQ(1, network.ModuleCount());
    EXPECT_EQ("GP00000002", network.GetModule(0)->ModuleID());
    EXPECT_EQ(1, controller.module("GP00000002")->address());
    EXPECT_NEAR(2.5, network.GetModule(0)->ReadingInUnits(), 1e-3);

    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(0, network.ModuleCount());
    EXPECT_EQ(0, controller.module("GP00000002")->address());
}

TEST(NetworkEndToEnd, AbsentModulesAndRangeReplies) {
    SimController controller(SimControllerConfig::ethernet("ETHSIM0002"));
    controller.addModule(probeReading("GP00000003", 2.0, 1.0));
    SimEthernetFace face(controller);
    face.start();
    KavroNetworkETHIM network(0, "Line 2", face.address());
    network.Connect();
    ASSERT_TRUE(network.IsConnected());

    EXPECT_EQ("Module Identity GP00000099. Unable to add module.",
              messageOf([&] { network.AddModule("GP00000099", ""); }));
    EXPECT_EQ(0, network.ModuleCount());
    network.AddModule("GP00000003", "");
    KavroModule* module = network.GetModule(0);

    controller.injectFault(SimFault::errorReply(0x12).only('L'));
    EXPECT_EQ(0, module->ReadingInCounts());
    controller.injectFault(SimFault::errorReply(0x13).only('L'));
    EXPECT_EQ(16384, module->ReadingInCounts());
    controller.injectFault(SimFault::errorReply(0x05).only('L'));
    try {
        module->ReadingInCounts();
        FAIL() << "expected the module's error";
    } catch (const KavroException& error) {
        EXPECT_EQ(0x2105, error.ErrorCode);
    }
    EXPECT_EQ(8192, module->ReadingInCounts());
}

TEST(NetworkEndToEnd, SerialNetworkReadsAtTheSpeedsItOffers) {
    SimController controller(SimControllerConfig::serial("SERSIM0001"));
    SimModule older = probeReading("GP00000004", 5.0, 1.25);
    older.setGeneration(2);
    controller.addModule(older);
    SimSerialFace line(controller);
    line.start();

    KavroNetworkRS232 network(0, "Bench", line.slavePath(), 115200);
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("RS232IM (SERSIM0001)", network.Description());
    network.AddModule("GP00000004", "Old probe");
    KavroModule* module = network.GetModule(0);
    EXPECT_EQ(eGeneration::Kavro2_B, module->KavroGeneration());
    EXPECT_NEAR(1.25, module->ReadingInUnits(), 1e-3);

    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
    EXPECT_THROW(network.setNetSpeed(eNetSpeed::UltraHigh), std::runtime_error);
    network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_NEAR(1.25, module->ReadingInUnits(), 1e-3);
    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
}
