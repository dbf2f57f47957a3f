// The usb and wireless controllers of a scenario, and the wireless face:
// the serial line's frames over TCP.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <sstream>

#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

namespace {

SimScenario parse(const std::string& text) {
    std::istringstream in(text);
    return parseScenario(in, "test.scn");
}

std::string parseError(const std::string& text) {
    try {
        parse(text);
    } catch (const SimScenarioError& error) {
        return error.what();
    }
    return "(no error)";
}

std::unique_ptr<WireClient> connectTo(const std::string& address, int port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(static_cast<std::uint16_t>(port));
    inet_pton(AF_INET, address.c_str(), &where.sin_addr);
    if (connect(fd, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0) {
        close(fd);
        throw std::runtime_error("cannot connect to " + address);
    }
    return std::make_unique<WireClient>(fd, false);
}

}  // namespace

TEST(SimWirelessFace, ScenarioKindsAndSerialFramesOverTcp) {
    const SimScenario scenario = parse(
        "controller usb channel-a=\"Other A\" channel-b=none flags=1 chip=4 serial=BENCH firmware=149\n"
        "module probe GP00000001 range=2\n"
        "controller wireless auto port=10007\n"
        "module dio2 DO00000001 address=1 signal=constant:9\n");
    ASSERT_EQ(2u, scenario.controllers.size());
    const SimScenarioController& usb = scenario.controllers[0];
    EXPECT_EQ(SimFaceKind::Usb, usb.face);
    EXPECT_EQ("USB2", usb.config.typeCode);
    EXPECT_EQ("Other A", usb.usb.channelA);
    EXPECT_EQ("", usb.usb.channelB);
    EXPECT_EQ(1u, usb.usb.flags);
    EXPECT_EQ(4u, usb.usb.chip);
    EXPECT_EQ("BENCH", usb.usb.serialNumber);
    EXPECT_EQ(std::vector<SimSpeed>{SimSpeed::Low}, usb.config.supportedSpeeds());
    EXPECT_EQ(SimFaceKind::Wireless, scenario.controllers[1].face);
    EXPECT_EQ(10007, scenario.controllers[1].port);

    // A session leaves the usb controller to the stand-in D2XX library.
    SimSession session(scenario);
    ASSERT_EQ(1u, session.size());
    EXPECT_EQ(1u, session.usbControllersLeftOut());
    session.start();
    const std::string location = session.face(0).location();
    ASSERT_EQ(":10007", location.substr(location.find(':')));
    auto client = connectTo(location.substr(0, location.find(':')), 10007);

    client->send(text(std::string("I\0\0", 3)));
    const Bytes identify = client->receive(32);
    ASSERT_EQ(32u, identify.size());
    EXPECT_EQ("WIMSIM0002P770100AWIM21.60 ", std::string(identify.begin() + 3, identify.begin() + 30));
    client->send(text(std::string("B\0\0", 3)));
    const Bytes info = client->receive(43);
    ASSERT_EQ(43u, info.size());
    EXPECT_EQ("WIM2", std::string(info.begin() + 3, info.begin() + 7));
    // The serial line's frames: no trailing bytes after a reply.
    EXPECT_EQ((Bytes{'1', 9, 0}), client->command(addressed('1', 1), 3).data);
    EXPECT_TRUE(client->silentFor(50ms));
    // Above firmware 1.50 a wireless controller offers High, never UltraHigh.
    client->send(Bytes{0x0A, 0x00, 5});
    EXPECT_EQ((Bytes{0, 0}), client->receive(2));
    client->send(Bytes{0x0A, 0x00, 6});
    EXPECT_EQ(1, client->receive(2).at(0));
    session.stop();
}

TEST(SimWirelessFace, BadUsbAndWirelessLines) {
    const std::pair<std::string, std::string> cases[] = {
        {"controller wireless\n", "a wireless controller needs an address"},
        {"controller ethernet auto port=10002\n", "only a wireless controller has a port"},
        {"controller wireless auto port=0\n", "port '0' must be a whole number from 1 to 65535"},
        {"controller serial channel-a=X\n", "unknown setting 'channel-a'"},
        {"controller usb flags=yes\n", "flags 'yes' must be a whole number"},
        {"controller usb serial=ABCDEFGHIJKLMNO\n", "serial 'ABCDEFGHIJKLMNO' is longer than 14"},
        {"controller usb channel-a=\"" + std::string(64, 'x') + "\"\n", "is longer than 63"},
        {"controller wireless 127.0.0.9\ncontroller wireless 127.0.0.9 port=10001\n",
         "test.scn:2: another controller already listens on 127.0.0.9:10001"},
    };
    for (const auto& [scenario, expected] : cases) {
        const std::string error = parseError(scenario);
        EXPECT_NE(std::string::npos, error.find(expected)) << "scenario:\n" << scenario << "error: " << error;
    }
    // Ethernet and wireless may share an address on different ports.
    EXPECT_EQ(2u,
              parse("controller ethernet 127.0.0.9\ncontroller wireless 127.0.0.9 port=10002\n").controllers.size());
}
