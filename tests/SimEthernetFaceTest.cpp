// The Ethernet face: frames on TCP port 10001, one client at a time, and a
// clean start and stop.
#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

// Catches a long reply length sent low byte first, a silent module's frame
// without its closing pair, and a broadcast answered.
TEST(SimEthernetFace, LongAndSilentFrames) {
    EthernetRig rig;
    WireClient& c = *rig.client;
    c.send(Bytes{0x02, 30, 2, 'I', 1});
    EXPECT_EQ((Bytes{255, 0, 0, 0}), c.receive(4));
    c.broadcast(Bytes{'R', 0});
    EXPECT_TRUE(c.silentFor(100ms));
    // 63 modules' burst needs the long frame: 16-bit length, high byte first.
    for (int i = 0; i < 63; ++i)
        rig.controller.hotPlug(SimModule::digitalProbe("GP" + std::to_string(10000000 + i), 2));
    c.send(Bytes{0x20, 0x01, 253 & 0xFF, 2, 'T', 63});
    const Reply burst = c.readReply(true);
    EXPECT_EQ(0, burst.status);
    ASSERT_EQ(253u, burst.data.size());
    EXPECT_EQ(253, rig.controller.requestLog().back().replyLength);
}

// Catches a second client served alongside the first, or never served.
TEST(SimEthernetFace, OneClientAtATime) {
    EthernetRig rig;
    auto second = WireClient::tcp(rig.face.address());  // waits in the backlog
    second->send(text(std::string("I\0\0", 3)));
    EXPECT_TRUE(second->silentFor(200ms));
    rig.client->send(text(std::string("I\0\0", 3)));
    EXPECT_EQ(34u, rig.client->receive(34).size());
    rig.client.reset();
    EXPECT_EQ(34u, second->receive(34).size()) << "served once the first client left";
    EXPECT_EQ(2u, rig.face.connectionsAccepted());
}

// Catches a stop that waits for a held-back answer, a listener left open,
// an address that cannot be reused, and two faces sharing one address.
TEST(SimEthernetFace, StopsPromptlyAndRestarts) {
    SimController controller(SimControllerConfig::ethernet("ETHSIM0001"));
    SimEthernetFace face(controller);
    face.start();
    const std::string address = face.address();
    EXPECT_EQ(0u, address.rfind("127.", 0));
    EXPECT_NE("127.0.0.1", address);

    auto client = WireClient::tcp(address);
    controller.injectFault(SimFault::delay(10000ms).on(SimRequestKind::Identify));
    client->send(text(std::string("I\0\0", 3)));
    ASSERT_TRUE(controller.waitForRequestCount(1, 2000ms));
    const auto start = std::chrono::steady_clock::now();
    face.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1000ms);
    EXPECT_FALSE(face.running());
    EXPECT_TRUE(client->closedWithin(1000ms));
    EXPECT_THROW(WireClient::tcp(address), std::runtime_error) << "the listener is closed";

    SimEthernetFace again(controller, address);
    again.start();
    SimEthernetFace clash(controller, address);
    EXPECT_NE(std::string::npos, messageOf([&] { clash.start(); }).find(address)) << "two faces on one address";
    SimEthernetFace bad(controller, "300.1.2.3");
    EXPECT_THROW(bad.start(), std::invalid_argument);
    EXPECT_NE(freeLoopbackAddress(), address);
}
