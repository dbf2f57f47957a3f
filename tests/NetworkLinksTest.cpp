// What a failed connect leaves behind on the Ethernet and serial networks
// (a successful one is in NetworkEndToEndTest.cpp).
#include <gtest/gtest.h>

#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "NetworkTestSupport.h"
#include "core/SimLoopback.h"

using namespace KavroLibrary;

TEST(KavroNetworkETHIM, UnreachableControllerLeavesTheNetworkUnconnected) {
    KavroNetworkETHIM network(0, "Nobody", kavrosim::freeLoopbackAddress());
    EXPECT_EQ("ETHIM (Unknown)", network.Configuration()->ControllerName);
    EXPECT_EQ(eNetworkType::ETHIM, network.NetworkType());
    CerrCapture errors;
    network.Connect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(-1, network.Configuration()->SocketFd);
    EXPECT_NE(std::string::npos, errors.text().find("Unable to communicate with ethim. Sockets error number: "));
    EXPECT_EQ("Unknown Network", network.Description());
    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
}

TEST(KavroNetworkRS232, MissingDeviceLeavesTheNetworkUnconnected) {
    KavroNetworkRS232 network(0, "Nobody", "/nonexistent/kavro-tty", 28800);
    EXPECT_EQ("RS232IM_Mk2 (Unknown)", network.Configuration()->ControllerName);
    EXPECT_EQ(eNetworkType::RS232IM_Mk2, network.NetworkType());
    EXPECT_EQ(28800, network.Configuration()->BaudRate);
    CerrCapture errors;
    network.Connect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ("Unable to open /nonexistent/kavro-tty\n", errors.text());
    EXPECT_EQ(-1, network.Configuration()->SocketFd);
}
