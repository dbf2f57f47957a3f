// The first example program against the default scenario, so that neither
// the example nor the scenario can drift away from the other.
#include <regex>

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "ConfigurationHome.h"
#include "core/KavroSim.h"

using namespace kavrosim;

namespace {

const std::string kExample = KAVRO_BINARY_DIR "/examples/example-read_probes";

}  // namespace

TEST(ExampleProgram, WithoutAControllerItSaysWhatToStart) {
    ChildProcess example(kExample, {freeLoopbackAddress()});
    const std::string output = example.output();
    EXPECT_EQ(1, example.exitStatus()) << output;
    EXPECT_NE(std::string::npos, output.find(": start kavro-sim first")) << output;
    EXPECT_EQ(std::string::npos, output.find(" mm\n")) << output;
}

// A second's worth of four probes over Ethernet and over the stand-in USB
// controller of the same scenario, with nothing lost.
TEST(ExampleProgram, StreamsTheProbesOverEthernetAndUsb) {
    SimScenario scenario = loadScenario(KAVRO_SOURCE_DIR "/sim/scenarios/default.scn");
    scenario.controllers.front().address.clear();
    SimSession session(scenario);
    session.start();
    // The child loads the stand-in D2XX library and serves the scenario's usb controller.
    const std::string standIn = KAVRO_SIM_USB_LIBRARY;
    setenv("LD_LIBRARY_PATH", standIn.substr(0, standIn.rfind('/')).c_str(), 1);
    setenv("KAVRO_SIM_USB_SCENARIO", KAVRO_SOURCE_DIR "/sim/scenarios/default.scn", 1);

    ChildProcess example(KAVRO_BINARY_DIR "/examples/example-stream_probes", {session.face(0).location()});
    const std::string output = example.output(std::chrono::seconds(60));
    EXPECT_EQ(0, example.exitStatus()) << output;
    const std::regex run(
        "(Ethernet [0-9.]+|USB): 4000 reading sets, status 0, [0-9]+ packets, 0 asked again, nothing lost\n");
    EXPECT_EQ(2, std::distance(std::sregex_iterator(output.begin(), output.end(), run), std::sregex_iterator()))
        << output;
    // The constant probe reads its value in every set shown.
    const std::regex set("  set [0-2]:  [0-9.]+ mm  2\\.5000 mm  [0-9.]+ mm  [0-9.]+ mm\n");
    EXPECT_EQ(6, std::distance(std::sregex_iterator(output.begin(), output.end(), set), std::sregex_iterator()))
        << output;
}

// The examples of the guide's tasks, each against the scenario's Ethernet
// controller: every line they must print.
TEST(ExampleProgram, EachTaskOfTheGuideRunsOnTheDefaultScenario) {
    SimScenario scenario = loadScenario(KAVRO_SOURCE_DIR "/sim/scenarios/default.scn");
    EXPECT_EQ("127.0.0.1", scenario.controllers.front().address);  // where the examples look by default
    scenario.controllers.front().address.clear();                  // tests take a free loopback address
    SimSession session(scenario);
    session.start();
    const std::string address = session.face(0).location();
    // find_networks reads the per-user configuration file under HOME.
    ConfigurationHome home;
    home.writeUserFile(ConfigurationHome::settings(
        "<network controllertype=\"ETHIM\"><networkname>Bench</networkname><address>" + address +
        "</address></network>\n<network controllertype=\"ETHIM\"><networkname>Nowhere</networkname><address>" +
        freeLoopbackAddress() + "</address></network>\n"));
    const std::string settings = (home.dir.path() / "bench.xml").string();

    const std::string reading = "[0-9]+\\.[0-9]{4}";
    const struct {
        const char* example;
        std::vector<std::string> args;
        std::vector<std::string> lines;  // regular expressions, each matching one whole line
    } cases[] = {
        // Each probe of the scenario within its range; the constant one exactly.
        {"read_probes",
         {address},
         {"GP02000001  [01]\\.[0-9]{4} mm", "GP05000002  2\\.5000 mm", "GP10000003  1?[0-9]\\.[0-9]{4} mm",
          "GP01000004  0\\.[0-9]{4} mm"}},
        {"wireless_hand_tools",
         {address},
         {"slot 1  WHT_M  WHTM000001  Bore gauge  Connected  battery 87",
          "slot 3  WMM_A  WMMA000003  Micrometer  NotConnected  battery 12",
          "WHTM000001 channel 1  Bore A  1[12]\\.[0-9]{4} mm", "WHTM000001 channel 2  Bore B  1[12]\\.[0-9]{4} mm",
          "WHTM000001 channel 3  Bore C  12\\.0000 mm", "WHTM000001 off time 10 -> 15 minutes"}},
        {"difference_mode",
         {address},
         {"GP02000001  min " + reading + "  max " + reading + "  spread " + reading + " mm  NoError",
          "GP05000002  min 2\\.5000  max 2\\.5000  spread 0\\.0000 mm  NoError",
          "GP10000003  min " + reading + "  max " + reading + "  spread " + reading + " mm  NoError"}},
        {"buffered_mode",
         {address},
         {"GP02000001  [1-9][0-9]* readings every 20480 us:(  " + reading + ")+ mm",
          "GP05000002  [1-9][0-9]* readings every 20480 us:(  2\\.5000)+ mm"}},
        {"settings_file",
         {settings, address},
         {"saved 2 modules to .*bench\\.xml", "1  GP02000001  \"Bore top\"  averaging average16",
          "2  GP05000002  \"Bore bottom\"  averaging average4"}},
        {"find_networks",
         {},
         {"library: .+", "network 0  ETHIM2  \"Bench\"  connected", "network 1  ETHIM  \"Nowhere\"  not connected",
          "  [0-9]+  GP02000001  DP", "  [0-9]+  GP01000004  DP", "  [0-9]+  LE00000005  LE",
          "  [0-9]+  WC00000007  WCM"}},
    };
    for (const auto& c : cases) {
        ChildProcess example(std::string(KAVRO_BINARY_DIR "/examples/example-") + c.example, c.args);
        const std::string output = example.output(std::chrono::seconds(60));
        EXPECT_EQ(0, example.exitStatus()) << c.example << "\n" << output;
        for (const std::string& line : c.lines) {
            EXPECT_TRUE(std::regex_search(output, std::regex("(^|\n)" + line + "\n")))
                << c.example << ": " << line << "\n"
                << output;
        }
    }
}
