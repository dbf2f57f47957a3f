// The demo program end to end: it runs on the built-in simulated bus, names
// the three networks, exits 0 and leaves no temporary folder behind.
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "TempDir.h"

// Catches a demo that fails a network, reports an error, or leaks its HOME.
TEST(Demo, RunsOnTheSimulatedBusAndCleansUp) {
    TempDir tmp;
    std::optional<std::string> saved;
    if (const char* old = std::getenv("TMPDIR")) saved = old;
    setenv("TMPDIR", tmp.path().c_str(), 1);  // inherited by the child only
    ChildProcess demo(KAVRO_BINARY_DIR "/tools/kavro-demo", {});
    if (saved)
        setenv("TMPDIR", saved->c_str(), 1);
    else
        unsetenv("TMPDIR");

    const std::string output = demo.output(std::chrono::seconds(120));
    EXPECT_EQ(0, demo.exitStatus()) << output;
    for (const char* expected :
         {"Network 0: Bench Ethernet  --  ETHIM 2 (ETHSIM0001)", "Network 1: Bench RS232  --  RS232IM (SERSIM0001)",
          "Network 2: (found on USB)  --  USBIM (USBSIM0001)", "GP01000021", "GP05000006 announced itself",
          "Its off time, through configuration mode: 10 -> 15 minutes",
          "Network 0 streams 3 probes at 4 kHz (dynamic mode)\n  2000 reading sets in"}) {
        EXPECT_NE(std::string::npos, output.find(expected)) << expected << "\n" << output;
    }
    EXPECT_EQ(std::string::npos, output.find("could not")) << output;
    EXPECT_TRUE(std::filesystem::is_empty(tmp.path()));
}
