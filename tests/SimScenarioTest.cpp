// Scenario files, sessions built from them, and the kavro-sim program.
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "SimTestClient.h"
#include "TempDir.h"

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

const std::string kKavroSim = KAVRO_BINARY_DIR "/sim/kavro-sim";

}  // namespace

// Catches a setting that is parsed but lands in the wrong field or is dropped.
TEST(SimScenario, SettingsReachControllersAndModules) {
    const SimScenario scenario = parse(R"(
# comment line
controller ethernet auto identity=ETHBENCH01 type=ETH2 firmware=152 description="Line 4 rig" speeds=low,high
  module probe GP00000001 range=5 resolution=16 averaging=32 generation=2 signal=sine:2.5,1,3   # trailing comment
  module encoder LE00000002 cpu=500 range=100 format=old address=3 speed=high announce=yes
  module analogue DA00000003 part=630123 signal=constant:20
  module diom DI00000004 model=IO8 part=P123456B rate=250 buffer=64
controller serial link=/tmp/kavro-test-line
  module encoder-input DE00000005 cpu=36 firmware=99
  module probe GP00000006 range=2 firmware=149
  module probe GP00000007 range=2 firmware=150
controller wireless auto port=10007
controller usb serial=BENCH channel-b=none
)");
    ASSERT_EQ(4u, scenario.controllers.size());
    const auto& first = scenario.controllers[0];
    EXPECT_TRUE(first.address.empty()) << "auto picks a free loopback address";
    EXPECT_EQ("ETHBENCH01", first.config.identity);
    EXPECT_EQ("ETH2", first.config.typeCode);
    EXPECT_EQ(152, first.config.firmwareNumber);
    EXPECT_EQ("Line 4 rig", first.config.description);
    EXPECT_EQ((std::vector<SimSpeed>{SimSpeed::Low, SimSpeed::High}), first.config.supportedSpeeds());
    ASSERT_EQ(4u, first.modules.size());
    const SimModule& probe = first.modules[0];
    EXPECT_EQ(5.0, probe.range());
    EXPECT_EQ(16, probe.resolutionBits());
    EXPECT_EQ(32, probe.averaging());
    EXPECT_EQ(2, probe.generation());
    EXPECT_EQ("sine:2.5,1,3", probe.signal().text());
    const SimModule& encoder = first.modules[1];
    EXPECT_EQ(SimInfoFormat::Old, encoder.infoFormat());
    EXPECT_EQ(3, encoder.address());
    EXPECT_EQ(SimSpeed::High, encoder.speed());
    EXPECT_TRUE(encoder.announcing());
    EXPECT_EQ(20000.0, encoder.scale().countsPerUnit) << "the old scheme fixes the encoder's scale";
    EXPECT_EQ("P630123A", first.modules[2].partNumber());
    EXPECT_EQ("IO8 ", first.modules[3].model());
    EXPECT_EQ(250.0, first.modules[3].difference().sampleRate());
    EXPECT_EQ(64u, first.modules[3].buffered().capacity());
    EXPECT_EQ("/tmp/kavro-test-line", scenario.controllers[1].link);
    // The firmware bands of the generations, at their edges.
    EXPECT_EQ((std::vector<int>{1, 2, 3}), (std::vector<int>{scenario.controllers[1].modules[0].generation(),
                                                             scenario.controllers[1].modules[1].generation(),
                                                             scenario.controllers[1].modules[2].generation()}));
    EXPECT_EQ(SimFaceKind::Wireless, scenario.controllers[2].face);
    EXPECT_EQ(10007, scenario.controllers[2].port);
    EXPECT_EQ("BENCH", scenario.controllers[3].usb.serialNumber);
    EXPECT_EQ("", scenario.controllers[3].usb.channelB);
    // Ethernet and wireless may share an address on different ports.
    EXPECT_EQ(2u,
              parse("controller ethernet 127.0.0.9\ncontroller wireless 127.0.0.9 port=10002\n").controllers.size());
}

// Catches bad lines that are accepted, or errors without the file and line.
TEST(SimScenario, BadLinesAreNamedWithTheirLine) {
    const std::string controller = "controller ethernet auto\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "names no controller"},
        {"module probe GP00000001 range=2\n", "test.scn:1: a module line must follow a controller line"},
        {"controller bluetooth\n", "test.scn:1: unknown controller face 'bluetooth'"},
        {"controller wireless\n", "a wireless controller needs an address"},
        {"controller ethernet auto identity=SHORT\n", "identity 'SHORT' must be 10 characters"},
        {"controller serial speeds=low,warp\n", "unknown speed 'warp'"},
        {"controller wireless 127.0.0.9\ncontroller wireless 127.0.0.9 port=10001\n",
         "test.scn:2: another controller already listens on 127.0.0.9:10001"},
        {"controller ethernet auto link=/tmp/x\n", "only a serial controller has a link"},
        {"controller ethernet auto port=10002\n", "only a wireless controller has a port"},
        {"controller wireless auto port=0\n", "port '0' must be a whole number from 1 to 65535"},
        {"controller serial channel-a=X\n", "unknown setting 'channel-a'"},
        {"controller usb flags=yes\n", "flags 'yes' must be a whole number"},
        {"controller usb serial=ABCDEFGHIJKLMNO\n", "serial 'ABCDEFGHIJKLMNO' is longer than 14"},
        {"controller usb channel-a=\"" + std::string(64, 'x') + "\"\n", "is longer than 63"},
        {controller + "modul probe GP00000001\n", "test.scn:2: unknown line 'modul'"},
        {controller + "module prob GP00000001\n", "unknown module kind 'prob'"},
        {controller + "module probe GP00000001\n", "a probe needs range=MILLIMETRES"},
        {controller + "module probe GP0001 range=2\n", "must be exactly 10 characters"},
        {controller + "module probe GP00000001 range=two\n", "range 'two' is not a number"},
        {controller + "module probe GP00000001 range=2 colour=red\n", "unknown setting 'colour'"},
        {controller + "module probe GP00000001 range=2 range=3\n", "'range' is given twice"},
        {controller + "module probe GP00000001 range=2 generation=4\n", "generation '4' must be"},
        {controller + "module probe GP00000001 range=2 resolution=15\n", "resolution must be 14, 16 or 18"},
        {controller + "module probe GP00000001 range=2 signal=sine:1\n", "must be written sine:MEAN"},
        {controller + "module probe GP00000001 range=2.5 format=old\n", "whole millimetres"},
        {controller + "module probe GP00000001 range=2 resolution=16 generation=0\n", "it stays at 14 bit"},
        {controller + "module analogue DA00000001 part=630199\n", "part number '630199'"},
        {controller + "module dio2 DO00000001 cpu=3\n", "only encoders take cpu"},
        {controller + "module probe GP00000001 range=2 rate=0\n", "sample rate must be from 1"},
        {controller + "module probe GP00000001 range=2 buffer=0\n", "buffer '0' must be"},
        {controller + "module dio2 DO00000001 description=\"open\n", "a quote is not closed"},
        {controller + "module dio2 DO00000001\nmodule diom DO00000001\n",
         "test.scn:3: the identity DO00000001 is already used on line 2"},
        {controller + "module dio2 DO00000001\ntool 1 WHT\n", "test.scn:3: a tool line must follow a wcm"},
        {controller + "module wcm WC00000001\ntool 7 WHT\n", "tool slot '7' must be from 1 to 6"},
        {controller + "module wcm WC00000001\ntool 1 WHT\ntool 1 WHT_M\n", "slot 1 already holds a tool"},
        {controller + "module wcm WC00000001\ntool 1 WHT fault=sometimes\n", "unknown fault 'sometimes'"},
        {controller + "module wcm WC00000001\ntool 1 WHT connection=connected@x\n", "connection time 'x'"},
        {controller + "module wcm WC00000001\ntool 1 WHT identity=SHORT\n", "must be 10 characters or empty"},
        {controller + "module dio2 DO00000001 scan=3\n", "only a wcm has scan and restart times"},
    };
    for (const auto& [text, expected] : cases) {
        const std::string error = parseError(text);
        EXPECT_NE(std::string::npos, error.find(expected)) << "scenario:\n" << text << "error: " << error;
    }
    EXPECT_THROW(loadScenario("/nonexistent/scenario.scn"), SimScenarioError);
}

// Catches a session that serves usb controllers itself, serves only some
// controllers, or leaves a face running after stop.
TEST(SimScenario, SessionServesEveryControllerButUsb) {
    SimSession session(
        parse("controller usb\ncontroller serial\nmodule dio2 DO00000001 address=1 signal=constant:9\n"));
    ASSERT_EQ(1u, session.size());
    EXPECT_EQ(1u, session.usbControllersLeftOut());
    session.start();  // served: the example programs' tests talk to a session
    EXPECT_TRUE(session.face(0).running());
    session.stop();
    EXPECT_FALSE(session.face(0).running());
}

// Catches a program that does not serve, trace, stop on SIGTERM or give
// the documented exit statuses.
TEST(SimScenario, ProgramServesUntilTerminated) {
    TempDir dir;
    const std::string scenario =
        dir.write("bench.scn", "controller ethernet auto\nmodule probe GP00000001 range=2\ncontroller serial\n");
    ChildProcess program(kKavroSim, {"--trace", "--scenario", scenario});
    const std::string output = program.readUntil("Running");
    std::smatch where;
    ASSERT_TRUE(std::regex_search(output, where, std::regex("on ethernet ([0-9.]+):10001"))) << output;
    EXPECT_NE(std::string::npos, output.find("GP00000001"));
    EXPECT_NE(std::string::npos, output.find("on serial /dev/pts/"));
    auto client = WireClient::tcp(where[1]);
    client->send(text(std::string("I\0\0", 3)));
    EXPECT_EQ(34u, client->receive(34).size());
    EXPECT_NE(std::string::npos, program.readUntil("->").find("identify [49 00 00]  ->  status 0"));
    program.signal(SIGTERM);
    EXPECT_EQ(0, program.exitStatus());

    ChildProcess help(kKavroSim, {"--help"});
    EXPECT_NE(std::string::npos, help.readUntil("SEED").find("Scenario format"));
    EXPECT_EQ(0, help.exitStatus());
    ChildProcess broken(kKavroSim,
                        {"--scenario", dir.write("bad.scn", "controller ethernet auto\nmodule probe X range=2\n")});
    EXPECT_NE(std::string::npos, broken.readUntil("characters").find("bad.scn:2:"));
    EXPECT_EQ(1, broken.exitStatus());
    ChildProcess unknown(kKavroSim, {"--verbose"});
    EXPECT_EQ(2, unknown.exitStatus());
}
