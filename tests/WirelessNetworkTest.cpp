// Networks behind a wireless interface module over TCP, against the
// simulated bus's wireless face, also when the network comes from a
// configuration file.
#include <gtest/gtest.h>

#include <memory>

#include "ConfigurationHome.h"
#include "NetworkTestSupport.h"
#include "core/KavroSim.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

SimModule probeAt(const std::string& identity, double rangeMm, double value) {
    SimModule probe = SimModule::digitalProbe(identity, rangeMm);
    probe.setSignal(SimSignal::constant(value));
    return probe;
}

}  // namespace

// Catches wrong capabilities or speeds of a wireless controller, and readings lost over TCP.
TEST(WirelessNetwork, ConnectsReadsAndOffersHighAbove150) {
    SimController controller(SimControllerConfig::wireless("WIMSIM0001"));
    controller.addModule(probeAt("GP02000001", 2.0, 0.5));
    SimWirelessFace face(controller, "", 10040);
    face.start();

    KavroNetworkWIM network(0, "Radio", face.location(), 5);
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("WIM2 (WIMSIM0001)", network.Description());
    const NetworkConfiguration* config = network.Configuration();
    EXPECT_FALSE(config->ReadburstFlag || config->DynamicFlag || config->BufferedExternalSourceFlag);

    network.AddModule("GP02000001", "Gauge");
    EXPECT_EQ(4096, network.GetModule(0)->ReadingInCounts());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
    network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_NEAR(0.5, network.GetModule(0)->ReadingInUnits(), 1e-9);
    EXPECT_THROW(network.setNetSpeed(eNetSpeed::UltraHigh), std::runtime_error);
    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
}

// Catches a file address not defaulting to port 10001, a bad address unreported, no reset on destruction.
TEST(WirelessNetwork, FromAConfigurationFileOnTheDefaultPort) {
    SimController controller(SimControllerConfig::wireless("WIMSIM0002"));
    controller.addModule(probeAt("GP05000002", 5.0, 2.5));
    SimWirelessFace face(controller);  // port 10001
    face.start();
    ConfigurationHome home;
    home.writeUserFile(ConfigurationHome::settings(
        "    <network controllertype=\"WIM\"><address>" + face.address() +
        "</address></network>\n"
        "    <network controllertype=\"WIM\"><address>not an address</address></network>\n"));

    auto networks = std::make_unique<KavroNetworks>();
    {
        DiagnosticCapture quiet;
        networks->FindNetworks();
        ASSERT_EQ(2u, networks->Count());
        networks->ConnectAll();
        EXPECT_NE(std::string::npos, quiet.text().find("not an address"));
    }
    KavroNetwork* radio = networks->Network(0);
    ASSERT_TRUE(radio->IsConnected());
    EXPECT_FALSE(networks->Network(1)->IsConnected());
    radio->AddModule("GP05000002", "");
    EXPECT_NEAR(2.5, radio->GetModule(0)->ReadingInUnits(), 1e-3);
    EXPECT_EQ(1, controller.module("GP05000002")->address());

    networks.reset();  // destroyed while connected
    EXPECT_EQ(0, controller.module("GP05000002")->address());
}
