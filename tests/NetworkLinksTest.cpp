// What a failed connect leaves behind on the serial network (the Ethernet
// one is in NetworkEndToEndFailureTest.cpp).
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"

using namespace KavroLibrary;

TEST(KavroNetworkRS232, MissingDeviceLeavesTheNetworkUnconnected) {
    KavroNetworkRS232 network(0, "Nobody", "/nonexistent/kavro-tty", 28800);
    EXPECT_EQ(eNetworkType::RS232IM_Mk2, network.NetworkType());
    DiagnosticCapture errors;
    network.Connect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ("Unable to open /nonexistent/kavro-tty\n", errors.text());
    EXPECT_EQ(-1, network.Configuration()->SocketFd);
}
