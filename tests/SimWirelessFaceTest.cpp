// The wireless face: the serial line's frames over TCP on a chosen port.
#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

// Catches Ethernet framing (trailing bytes) leaking into the wireless face,
// a wrong port, and UltraHigh offered by a wireless controller.
TEST(SimWirelessFace, SerialFramesOverTcp) {
    SimController controller(SimControllerConfig::wireless("WIMSIM0002"));
    SimModule dio = SimModule::dio2("DO00000001");
    dio.setAddress(1);
    dio.setSignal(SimSignal::constant(9));
    controller.addModule(dio);
    SimWirelessFace face(controller, "", 10007);
    face.start();
    EXPECT_EQ(face.address() + ":10007", face.location());
    auto client = WireClient::tcp(face.address(), 10007, false);

    client->send(text(std::string("I\0\0", 3)));
    const Bytes identify = client->receive(32);
    ASSERT_EQ(32u, identify.size());
    EXPECT_EQ("WIMSIM0002P770100AWIM21.60 ", std::string(identify.begin() + 3, identify.begin() + 30));
    client->send(text(std::string("B\0\0", 3)));
    const Bytes info = client->receive(43);
    ASSERT_EQ(43u, info.size());
    EXPECT_EQ("WIM2", std::string(info.begin() + 3, info.begin() + 7));
    EXPECT_EQ((Bytes{'1', 9, 0}), client->command(addressed('1', 1), 3).data);
    EXPECT_TRUE(client->silentFor(50ms)) << "no trailing bytes after a reply";
    client->send(Bytes{0x0A, 0x00, 5});
    EXPECT_EQ((Bytes{0, 0}), client->receive(2));
    client->send(Bytes{0x0A, 0x00, 6});
    EXPECT_EQ(1, client->receive(2).at(0));
    face.stop();
    EXPECT_FALSE(face.running());
}
