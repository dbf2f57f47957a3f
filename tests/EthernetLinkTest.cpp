#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "KavroLibrary.h"
#include "LinkTestSupport.h"
#include "MessageOf.h"
#include "core/SimLoopback.h"
#include "links/EthernetLink.h"

using namespace KavroLibrary;

namespace {

// One connection of the controller: each step reads `expect` bytes, then
// writes `answer`; then it collects until the library closes, or hangs up,
// or resets the connection.
struct Step {
    std::size_t expect;
    Bytes answer;
};
enum class End { Collect, Hangup, Reset };
struct Script {
    std::vector<Step> steps;
    End end = End::Collect;
};

// A controller on its own loopback address, playing one script per accepted
// connection; received() holds each connection's incoming bytes.
class LoopbackController {
public:
    explicit LoopbackController(std::vector<Script> scripts) : received_(scripts.size()) {
        listener_ = kavrosim::listenOnFreeLoopback(kEthernetPort, address_);
        thread_ = std::thread([this, scripts = std::move(scripts)] {
            for (std::size_t i = 0; i < scripts.size() && play(scripts[i], received_[i]); ++i) {
            }
        });
    }
    ~LoopbackController() {
        if (thread_.joinable()) thread_.join();
        close(listener_);
    }
    const std::string& address() const { return address_; }
    const std::vector<Bytes>& received() {
        if (thread_.joinable()) thread_.join();
        return received_;
    }

private:
    bool play(const Script& script, Bytes& received) {
        pollfd entry{listener_, POLLIN, 0};
        if (poll(&entry, 1, std::chrono::milliseconds(kPeerBound).count()) != 1) return false;
        const int fd = accept(listener_, nullptr, nullptr);
        if (fd < 0) return false;
        const auto take = [&](std::size_t count) {
            const Bytes got = readBytes(fd, count);
            received.insert(received.end(), got.begin(), got.end());
        };
        for (const Step& step : script.steps) {
            take(step.expect);
            writeBytes(fd, step.answer);
        }
        if (script.end == End::Collect) take(1 << 20);
        if (script.end == End::Reset) {
            const linger abortive{1, 0};
            setsockopt(fd, SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive);
        }
        close(fd);
        return true;
    }

    std::string address_;
    int listener_ = -1;
    std::vector<Bytes> received_;
    std::thread thread_;
};

struct EthernetRecord {
    explicit EthernetRecord(const std::string& address) : config(0, "line 1") { config.Address = address; }
    ~EthernetRecord() { closeSocket(&config); }
    NetworkConfiguration config;
};

}  // namespace

// Controller requests and module frames go out byte for byte, the answers are
// parsed field by field (a silent controller's time-out is an end-to-end test).
TEST(EthernetLinkTest, RequestsAndFramesGoOutByteForByte) {
    const std::string idText = "ETH0012345P630101AETHI1.51 ", infoText = "L032            Line 3 gauges   ";
    const Bytes identify = concat({{0x00, 0x00, 0x00}, Bytes(idText.begin(), idText.end()), {0, 0, 0, 0}});
    const Bytes info = concat({{0x00, 0x00, 0x00, 'E', 'T', 'H', '2', 0x97, 0x00, 0x00, 0x00},
                               Bytes(infoText.begin(), infoText.end()),
                               {0, 0}});
    ASSERT_EQ(identify.size(), 34u);
    ASSERT_EQ(info.size(), 45u);
    LoopbackController controller({{{{3, identify}, {3, info}, {3, {0x00, 0x01, 0x02, 0x03}}, {1, {0x09, 0, 0, 0}}}}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    EXPECT_TRUE(record.config.Connected);

    // Identity, type, firmware and limit also show end to end (description, capabilities, module limit).
    const ControllerIdentifyReply id = ETHIMKavroIdentifyController(&record.config);
    EXPECT_EQ(id.Error, 0);
    EXPECT_EQ(std::string(id.PartNumber, 8), "P630101A");
    EXPECT_EQ(id.VersionText(), "1.51 ");
    EXPECT_EQ(ETHIMKavroGetInfoController(&record.config).Description(), "Line 3 gauges   ");
    EXPECT_EQ(SetControllerSpeedETHIM(&record.config, eNetSpeed::UltraHigh), 0u);
    EXPECT_EQ(SetControllerIdleETHIM(&record.config), 0u);  // whatever the controller says

    // Type 2 (unknown reply length) and unknown types; the long form past 250.
    Bytes reset{'R', 0x00}, buffered{'Q', 0x01}, burst{'T', 0x3E};
    for (ModuleCommand each : {command(1, 0, reset), command(2, 40, buffered), command(7, 3, burst),
                               command(0, 250, burst), command(0, 251, burst), command(0, 600, burst)}) {
        ETHIMSendModuleCommand(&record.config, &each);
    }

    closeSocket(&record.config);

    const Bytes expected = concat({{'I', 0x00, 0x00, 'B', 0x00, 0x00, 0x0A, 0x08, 0x06, 0x10},
                                   {0x00, 0x02, 'R', 0x00},
                                   {0x0E, 0x02, 'Q', 0x01},
                                   {0x02, 0xFA, 0x02, 'T', 0x3E},
                                   {0x20, 0x01, 0xFB, 0x02, 'T', 0x3E},
                                   {0x20, 0x01, 0x58, 0x02, 'T', 0x3E}});
    EXPECT_EQ(controller.received().at(0), expected);
}

// Each reply frame is taken with its two trailing bytes, so the next one
// starts in the right place, whatever the frame held.
TEST(EthernetLinkTest, ReplyFramesAreParsedAndStayAligned) {
    Bytes longData(258);
    for (std::size_t i = 0; i < longData.size(); ++i) longData[i] = static_cast<unsigned char>(i);
    longData[0] = 'T';
    const Bytes longFrame = concat({{0x00, 0x01, 0x02}, longData, {0xAA, 0xBB}});  // header announcing 258 bytes
    const Bytes frames = concat({
        {0x00, 0x03, 'L', 0x10, 0x20, 0xAA, 0xBB},  // good reply
        {0x00, 0x02, 'X', 0x01, 0xAA, 0xBB},        // wrong echo: refused, trailing bytes still taken
        {0xFF, 0x00},                               // silent module: header only
        longFrame,
        {0x07, 0x01, '!', 0xAA, 0xBB},  // any first byte when no echo is expected
    });
    LoopbackController controller({{{{0, frames}}}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));

    int frame = 0;
    const auto next = [&](unsigned char echo, bool longReply, std::uint32_t status, const Bytes& data) {
        const ModuleReply reply = ETHIMReadModuleResponse(&record.config, echo, longReply);
        EXPECT_EQ(reply.Status, status) << "frame " << frame;
        EXPECT_EQ(dataOf(reply), data) << "frame " << frame++;
        const bool noBuffer = reply.Data == nullptr;
        delete[] reply.Data;
        return noBuffer;
    };
    next('L', false, 0, {'L', 0x10, 0x20});
    next('L', false, 255, {});
    EXPECT_TRUE(next('L', false, 255, {}));
    next('T', true, 0, longData);
    next(0, false, 7, {'!'});
}

// A controller that hangs up ends the wait at once; the next command goes out
// on a new connection, after a good-order close and after an abortive reset.
TEST(EthernetLinkTest, ClosedOrResetConnectionsAreReopened) {
    LoopbackController controller({{{{5, {0x00, 0x05, 'L', 0x01}}}, End::Hangup}, {{{5, {}}}, End::Reset}, {}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    Bytes read{'L', 0x01}, clear{'C', 0x01};
    ModuleCommand readCommand = command(0, 5, read), clearCommand = command(0, 2, clear);
    ETHIMSendModuleCommand(&record.config, &readCommand);

    const auto start = std::chrono::steady_clock::now();
    const ModuleReply cut = ETHIMReadModuleResponse(&record.config, 'L', false);
    EXPECT_EQ(cut.Status, 255u);
    EXPECT_EQ(cut.Length, 0u);
    delete[] cut.Data;
    unsigned char more[4];
    int error = -1;
    EXPECT_EQ(SocketReadDataFixedLength(&record.config, more, sizeof more, &error), 0);
    EXPECT_LT(secondsSince(start), 1.0);

    ETHIMSendModuleCommand(&record.config, &clearCommand);
    pollfd entry{record.config.SocketFd, POLLIN, 0};  // bounded wait for the reset
    ASSERT_EQ(poll(&entry, 1, std::chrono::milliseconds(kPeerBound).count()), 1);
    ETHIMSendModuleCommand(&record.config, &clearCommand);
    EXPECT_TRUE(record.config.Connected);
    closeSocket(&record.config);

    const Bytes clearFrame{0x02, 0x02, 0x02, 'C', 0x01};
    EXPECT_EQ(controller.received(), (std::vector<Bytes>{{0x02, 0x05, 0x02, 'L', 0x01}, clearFrame, clearFrame}));
}

// Refused and unparsable addresses give their messages; without a connection
// every request fails at once.
TEST(EthernetLinkTest, FailedConnectionsAreReportedAndHarmless) {
    EthernetRecord refused(kavrosim::freeLoopbackAddress());
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openSocket(&refused.config));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unable to connect to ethim" + std::to_string(ECONNREFUSED) + "\n");
    EXPECT_FALSE(refused.config.Connected);
    EXPECT_EQ(refused.config.SocketFd, -1);

    EthernetRecord badText("127.0.0.256");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openSocket(&badText.config));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unable to connect to ETHIM, address lookup failed.\n");

    // An application's handler takes the same line instead of standard error.
    std::vector<std::string> lines;
    setDiagnosticHandler([&lines](const std::string& line) { lines.push_back(line); });
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openSocket(&badText.config));
    setDiagnosticHandler(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(lines, std::vector<std::string>{"Unable to connect to ETHIM, address lookup failed."});

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ETHIMReadModuleResponse(&badText.config, 'L', false).Status, 255u);
    EXPECT_EQ(SetControllerSpeedETHIM(&badText.config, eNetSpeed::Low), 255u);
    EXPECT_LT(secondsSince(start), 1.0);
}

// Firmware 150 and the ETH2 type each unlock their features; a repeated update
// adds no speed twice and clears what no longer applies; streaming is refused.
TEST(EthernetLinkTest, CapabilitiesFollowTypeAndFirmware) {
    NetworkConfiguration config(0, "line 1");
    config.ControllerTypeCode = "ETHI";
    config.ControllerValue = 149;
    UpdateCapabilitiesETHIM(&config);
    EXPECT_TRUE(config.ControllerFlag0);
    EXPECT_FALSE(config.ReadburstFlag || config.BufferedExternalSourceFlag || config.DynamicFlag);
    EXPECT_EQ(config.ControllerSpeeds, std::vector<eNetSpeed>{eNetSpeed::Low});

    config.ControllerValue = 150;
    UpdateCapabilitiesETHIM(&config);
    UpdateCapabilitiesETHIM(&config);
    EXPECT_TRUE(config.ReadburstFlag && config.BufferedExternalSourceFlag);
    EXPECT_FALSE(config.DynamicFlag || config.Dynamic2Flag || config.DynamicExternalSourceFlag);
    EXPECT_EQ(config.ControllerSpeeds, (std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}));
    EXPECT_EQ(messageOf([&] { StartDynamicETHIM(&config, {}); }), "Controller is not dynamic capable");

    config.ControllerTypeCode = "ETH2";
    config.ControllerValue = 120;
    UpdateCapabilitiesETHIM(&config);
    EXPECT_TRUE(config.DynamicFlag && config.Dynamic2Flag && config.DynamicExternalSourceFlag);
    EXPECT_FALSE(config.ReadburstFlag);
    EXPECT_EQ(config.ControllerSpeeds, (std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh}));
}
