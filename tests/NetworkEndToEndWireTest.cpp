// What a network puts on the wire, as the simulated controller received it:
// connect, addressing, speed changes, reads and renumbering, byte for byte.
#include <gtest/gtest.h>

#include "EndToEndSupport.h"
#include "KavroNetworkRS232.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace e2e;

namespace {

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes text(const std::string& s) { return Bytes(s.begin(), s.end()); }

// The frame of a set-address command: reply length 2, command length 13.
Bytes setAddressFrame(const std::string& identity, unsigned char address) {
    return concat({{0x02, 0x02, 0x0D, 'S', address}, text(identity), {0x00}});
}

std::vector<Bytes> rawOf(const std::vector<SimRequest>& requests) {
    std::vector<Bytes> raw;
    for (const SimRequest& request : requests) raw.push_back(request.raw);
    return raw;
}

}  // namespace

// Catches any wrong byte, missing or extra request in connect, add, speed change, read, delete and disconnect.
TEST(NetworkEndToEndWire, EthernetNetworkBytesOnTheBus) {
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0071"),
                            {simProbe("GP00000071", 1.0, 2.0), simProbe("GP00000072", 1.0, 2.0)});
    SimController& controller = rig->controller;
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());

    // Get-info and identify, then a reset at each controller speed, ending
    // at Low.
    const std::vector<Bytes> connect{{'B', 0, 0},        {'I', 0, 0},
                                     {0x0A, 0x08, 0x00}, {0x00, 0x02, 'R', 0x00},
                                     {0x0A, 0x08, 0x05}, {0x00, 0x02, 'R', 0x00},
                                     {0x0A, 0x08, 0x00}};
    EXPECT_EQ(connect, rawOf(controller.requestLog()));

    // Set address, identify and get info at the new address, then the
    // probe's averaging from its memory (two bytes at 0x0801F076).
    controller.clearRequestLog();
    network.AddModule("GP00000071", "");
    const std::vector<Bytes> add{setAddressFrame("GP00000071", 1),
                                 {0x02, 30, 0x02, 'I', 0x01},
                                 {0x02, 41, 0x02, 'B', 0x01},
                                 {0x02, 0x03, 0x07, 'M', 0x01, 0x76, 0xF0, 0x01, 0x08, 0x02}};
    EXPECT_EQ(add, rawOf(controller.requestLog()));
    network.AddModule("GP00000072", "");

    // Every module is told the new speed (set mode 41), the control action 10
    // makes them take it, then the controller follows.
    controller.clearRequestLog();
    network.setNetSpeed(eNetSpeed::High);
    const std::vector<Bytes> speed{{0x02, 0x02, 0x06, 'V', 0x01, 41, 0x00, 0x00, 0x00},
                                   {0x02, 0x02, 0x06, 'V', 0x02, 41, 0x00, 0x00, 0x00},
                                   {0x00, 0x03, 'W', 0x00, 10},
                                   {0x0A, 0x08, 0x05}};
    EXPECT_EQ(speed, rawOf(controller.requestLog()));
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());

    // A two-word read, then deleting the first module: clear it, and the
    // second moves to address 1.
    controller.clearRequestLog();
    network.GetModule(1)->ReadingInCounts();
    network.DeleteModule(0);
    const std::vector<Bytes> readAndDelete{
        {0x02, 0x05, 0x02, 'L', 0x02}, {0x02, 0x02, 0x02, 'C', 0x01}, setAddressFrame("GP00000072", 1)};
    EXPECT_EQ(readAndDelete, rawOf(controller.requestLog()));

    // Disconnecting resets the bus and sets the controller to its speed again.
    controller.clearRequestLog();
    network.Disconnect();
    EXPECT_EQ((std::vector<Bytes>{{0x00, 0x02, 'R', 0x00}, {0x0A, 0x08, 0x05}}), rawOf(controller.requestLog()));
}

// Catches a serial speed request without the configured baud index, or UltraHigh offered by a serial line.
TEST(NetworkEndToEndWire, SerialSpeedRequestsCarryTheBaudIndex) {
    SimController controller(SimControllerConfig::serial("SERSIM0071"));
    controller.addModule(simProbe("GP00000073", 1.0, 2.0));
    SimSerialFace line(controller);
    line.start();

    // 28800 is not a rate the line can run at (it runs at 115200), but the
    // controller is still told index 3.
    KavroNetworkRS232 network(0, "Wire", line.slavePath(), 28800);
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    const std::vector<Bytes> connect{{'B', 0, 0},        {'I', 0, 0},
                                     {0x0A, 0x03, 0x00}, {0x00, 0x02, 'R', 0x00},
                                     {0x0A, 0x03, 0x05}, {0x00, 0x02, 'R', 0x00},
                                     {0x0A, 0x03, 0x00}};
    EXPECT_EQ(connect, rawOf(controller.requestLog()));

    network.AddModule("GP00000073", "");
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
    EXPECT_THROW(network.setNetSpeed(eNetSpeed::UltraHigh), std::runtime_error);
    controller.clearRequestLog();
    network.setNetSpeed(eNetSpeed::High);
    const std::vector<SimRequest> log = controller.requestLog();
    ASSERT_EQ(3u, log.size());
    EXPECT_EQ((Bytes{0x0A, 0x03, 0x05}), log[2].raw);
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    EXPECT_NEAR(1.0, network.GetModule(0)->ReadingInUnits(), 1e-9);
}
