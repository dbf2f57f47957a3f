// The kavro program against the simulated bus inside it: each output format
// read back, exit codes, bad arguments, an absent controller, and Ctrl+C.
#include <gtest/gtest.h>

#include <signal.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "TempDir.h"
#include "SimNetworkRig.h"

namespace {

const std::string kTool = KAVRO_BINARY_DIR "/tools/kavro";

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::vector<std::string> csvFields(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, ',');) fields.push_back(field);
    return fields;
}

// One reading record as JSON: {"time":"...","network":"...","address":N,...}.
const std::regex kJsonRecord(
    R"re(\{"time":"[0-9T:.Z-]+","network":"[^"]+","address":[0-9]+,"identity":"[A-Z0-9]{10}","value":(-?[0-9.]+),"units":"[^"]*","status":"([A-Za-z_]+)"\})re");

}  // namespace

TEST(KavroTool, ReadsAndStreamsInEveryFormat) {
    TempDir dir;
    const std::string csv = (dir.path() / "read.csv").string();
    ChildProcess read(kTool, {"--sim", "read", "--count", "2", "--format", "csv", "--output", csv});
    const std::string readSaid = read.output(std::chrono::seconds(60));
    ASSERT_EQ(0, read.exitStatus()) << readSaid;
    const std::vector<std::string> rows = lines(TempDir::read(csv));
    ASSERT_GE(rows.size(), 1u + 2 * 4);
    EXPECT_EQ("time,network,address,identity,value,units,status", rows[0]);
    bool constant = false;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const std::vector<std::string> fields = csvFields(rows[i]);
        ASSERT_EQ(7u, fields.size()) << rows[i];
        std::stod(fields[4]);
        if (fields[3] == "GP05000002") constant = fields[4] == "2.500000" && fields[6] == "ok";
    }
    EXPECT_TRUE(constant) << TempDir::read(csv);

    const std::string json = (dir.path() / "stream.json").string();
    ChildProcess stream(kTool, {"--sim", "stream", "--count", "400", "--format", "json", "--output", json});
    const std::string said = stream.output(std::chrono::seconds(60));
    ASSERT_EQ(0, stream.exitStatus()) << said;
    EXPECT_NE(std::string::npos, said.find(": 400 reading sets in")) << said;
    std::size_t records = 0;
    for (const std::string& line : lines(TempDir::read(json))) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, kJsonRecord)) << line;
        std::stod(match[1]);
        ++records;
    }
    // The Ethernet and USB controllers stream; the serial one is left out.
    EXPECT_GT(records, 2u * 400);
    EXPECT_EQ(0u, records % 400);

    ChildProcess scan(kTool, {"--sim", "scan", "--format", "json"});
    const std::string networks = scan.output(std::chrono::seconds(60));
    EXPECT_EQ(0, scan.exitStatus()) << networks;
    EXPECT_NE(std::string::npos, networks.find(R"re({"network":"ETHSIM0001","description":"ETHIM 2 (ETHSIM0001)")re"))
        << networks;
}

TEST(KavroTool, BadUsageAndAnAbsentControllerSayOneLine) {
    ChildProcess bad(kTool, {"--bogus", "scan"});
    const std::string badOutput = bad.output();
    EXPECT_EQ(2, bad.exitStatus());
    EXPECT_EQ(1u, lines(badOutput).size()) << badOutput;

    ChildProcess code(kTool, {"error", "0x2112"});
    const std::string text = code.output();
    EXPECT_EQ(0, code.exitStatus());
    EXPECT_NE(std::string::npos, text.find("UnderRange")) << text;

    const auto start = std::chrono::steady_clock::now();
    ChildProcess absent(kTool, {"--ethernet", kavrosim::freeLoopbackAddress(), "scan"});
    const std::string absentOutput = absent.output(std::chrono::seconds(30));
    EXPECT_EQ(3, absent.exitStatus()) << absentOutput;
    EXPECT_NE(std::string::npos, absentOutput.find("kavro: no network answers")) << absentOutput;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

// Ctrl+C during a long read: a clean end, every record whole.
TEST(KavroTool, InterruptedReadLeavesEveryRecordWhole) {
    TempDir dir;
    const std::string csv = (dir.path() / "watch.csv").string();
    ChildProcess watch(kTool, {"--sim", "read", "--count", "100000", "--interval", "0.01", "--format", "csv",
                               "--output", csv});
    ASSERT_TRUE(waitFor([&] { return lines(TempDir::read(csv)).size() > 20; }, std::chrono::seconds(60)));
    watch.signal(SIGINT);
    const std::string said = watch.output(std::chrono::seconds(30));
    EXPECT_EQ(0, watch.exitStatus()) << said;
    const std::vector<std::string> rows = lines(TempDir::read(csv));
    const std::string text = TempDir::read(csv);
    EXPECT_EQ('\n', text.back());
    for (std::size_t i = 1; i < rows.size(); ++i) EXPECT_EQ(7u, csvFields(rows[i]).size()) << rows[i];
}

// Difference, buffered and hand tools on a bus with one controller.
TEST(KavroTool, ModesAndHandToolsReadBack) {
    TempDir dir;
    const std::string scenario = (dir.path() / "bench.scn").string();
    std::ofstream(scenario) << "controller ethernet 127.0.0.1 identity=ETHSIM0001 type=ETH2\n"
                               "module probe GP02000001 range=2 signal=sine:1,0.6,4\n"
                               "module probe GP05000002 range=5 signal=constant:2.5\n"
                               "module wcm WC00000007\n"
                               "tool 1 WHT_M identity=WHTM000001 ch1=constant:12 ch2=constant:11.5\n";
    ChildProcess diff(kTool, {"--sim", scenario, "diff", "--duration", "0.5", "--format", "csv"});
    const std::vector<std::string> diffRows = lines(diff.output(std::chrono::seconds(60)));
    ASSERT_EQ(0, diff.exitStatus());
    ASSERT_EQ(3u, diffRows.size());
    EXPECT_EQ("time,network,address,identity,value,units,status,min,max", diffRows[0]);
    for (std::size_t i = 1; i < diffRows.size(); ++i) {
        const std::vector<std::string> f = csvFields(diffRows[i]);
        ASSERT_EQ(9u, f.size()) << diffRows[i];
        EXPECT_NEAR(std::stod(f[8]) - std::stod(f[7]), std::stod(f[4]), 1e-5) << diffRows[i];
        // The constant probe's spread is 0, the swinging one's is not.
        EXPECT_EQ(f[3] == "GP02000001", std::stod(f[4]) > 0.0) << diffRows[i];
    }

    ChildProcess buffered(kTool, {"--sim", scenario, "buffered", "--interval", "0.01", "--duration", "0.3",
                                  "--format", "json"});
    const std::vector<std::string> records = lines(buffered.output(std::chrono::seconds(60)));
    ASSERT_EQ(0, buffered.exitStatus());
    std::map<std::string, std::vector<std::string>> times;  // identity -> record times, in order
    for (const std::string& line : records) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, kJsonRecord)) << line;
        times[line.substr(line.find("\"identity\":\"") + 12, 10)].push_back(line.substr(9, 24));
    }
    ASSERT_EQ(2u, times.size());
    for (const auto& [identity, stamps] : times) {
        EXPECT_GE(stamps.size(), 10u) << identity;
        EXPECT_TRUE(std::is_sorted(stamps.begin(), stamps.end())) << identity;
        EXPECT_LT(stamps.front(), stamps.back()) << identity;
    }

    ChildProcess tools(kTool, {"--sim", scenario, "wireless", "--read", "--format", "csv"});
    const std::vector<std::string> channels = lines(tools.output(std::chrono::seconds(60)));
    ASSERT_EQ(0, tools.exitStatus());
    ASSERT_EQ(4u, channels.size());  // a WHT_M has three channels
    EXPECT_EQ("WHTM000001/2", csvFields(channels[2])[3]);
    EXPECT_NEAR(11.5, std::stod(csvFields(channels[2])[4]), 1e-6);

    ChildProcess refused(kTool, {"--sim", scenario, "wireless", "--tool", "1", "--set", "led1=Nope"});
    const std::string said = refused.output(std::chrono::seconds(60));
    EXPECT_EQ(2, refused.exitStatus());
    EXPECT_EQ("kavro: Nope is no value of led1\n", said);
}
