// The serial face on a pseudo-terminal.
#include <filesystem>

#include <gtest/gtest.h>

#include "SimTestClient.h"
#include "TempDir.h"

using namespace kavrosim;
using namespace simtest;

// Catches Ethernet framing on the line (closing bytes, four-byte answers), a
// baud index not decoded, a wrong long header, UltraHigh offered, and a line
// lost when the host reopens. (Controller answers and module frames through
// the library are the end-to-end tests'.)
TEST(SimSerialFace, FramesWithoutTrailingBytes) {
    SimController controller(SimControllerConfig::serial("SERSIM0001"));
    SimModule probe = SimModule::digitalProbe("GP00000001", 2);
    probe.setAddress(1);
    probe.setSignal(SimSignal::constant(1));
    controller.addModule(probe);
    SimSerialFace face(controller);
    face.start();
    EXPECT_EQ(0u, face.slavePath().rfind("/dev/pts/", 0));
    auto c = WireClient::serial(face.slavePath());

    c->send(Bytes{0x0A, 6, 5});
    EXPECT_EQ((Bytes{0, 0}), c->receive(2));
    EXPECT_EQ(6, controller.requestLog().back().baudIndex);
    EXPECT_EQ(5, controller.requestLog().back().speedValue);
    EXPECT_EQ(SimSpeed::High, controller.busSpeed());
    c->send(Bytes{0x0A, 6, 6});
    EXPECT_EQ((Bytes{1, 0}), c->receive(2)) << "a serial controller offers no UltraHigh";
    c->send(Bytes{0x10});
    EXPECT_EQ((Bytes{0, 0}), c->receive(2));
    c->send(Bytes{0x0A, 6, 0});  // back to the modules' Low
    EXPECT_EQ((Bytes{0, 0}), c->receive(2));

    EXPECT_EQ((Bytes{'L', 0, 0x20, 0, 0}), c->command(addressed('L', 1), 5).data);
    EXPECT_TRUE(c->silentFor(100ms)) << "nothing follows the reply";
    c->send(Bytes{0x02, 30, 2, 'I', 9});
    EXPECT_EQ((Bytes{255, 0}), c->receive(2));
    c->send(Bytes{0x20, 0x01, 0x2C, 2, 'T', 0});
    EXPECT_EQ((Bytes{0, 0, 1, 'T'}), c->receive(4)) << "long header, high byte first";

    c.reset();
    c = WireClient::serial(face.slavePath());
    EXPECT_EQ('L', c->command(addressed('L', 1), 5).data.at(0)) << "the line outlives a host that reopens it";
    face.stop();
    EXPECT_FALSE(face.running());
}

// Catches a link left behind after stop, a stale link not replaced, and a
// real file overwritten.
TEST(SimSerialFace, LinkPathFollowsTheFace) {
    TempDir dir;
    SimController controller(SimControllerConfig::serial("SERSIM0001"));
    const std::string link = (dir.path() / "kavro-line").string();
    {
        SimSerialFace face(controller, link);
        face.start();
        EXPECT_EQ(link, face.location());
        EXPECT_EQ(face.slavePath(), std::filesystem::read_symlink(link).string());
    }
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));

    std::filesystem::create_symlink("/nonexistent", link);
    SimSerialFace stale(controller, link);
    stale.start();
    EXPECT_EQ(stale.slavePath(), std::filesystem::read_symlink(link).string());
    stale.stop();
    const std::string file = dir.write("plain", "keep me");
    SimSerialFace refused(controller, file);
    EXPECT_THROW(refused.start(), std::runtime_error);
    EXPECT_TRUE(std::filesystem::is_regular_file(file));
}
