#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "links/EthernetLink.h"

using namespace KavroLibrary;

namespace {

// Binds a TCP socket to port 10001 of a loopback address that no other test
// holds (tests run side by side, each in its own process). Without
// SO_REUSEADDR, so that two processes can never share one.
int bindFreeLoopback(std::string& address) {
    const unsigned pid = static_cast<unsigned>(getpid());
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
        address = "127." + std::to_string(100 + pid % 100) + "." + std::to_string((pid / 100 + attempt / 250) % 256) +
                  "." + std::to_string(1 + attempt % 250);
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_port = htons(kEthernetPort);
        inet_pton(AF_INET, address.c_str(), &at.sin_addr);
        if (bind(fd, reinterpret_cast<sockaddr*>(&at), sizeof at) == 0) return fd;
        close(fd);
    }
    throw std::runtime_error("no free loopback address");
}

std::string thrownMessage(void (*start)(NetworkConfiguration*, sDynamicMode), NetworkConfiguration* config) {
    try {
        start(config, sDynamicMode{});
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "nothing thrown";
}

// What the controller does on a connection, step by step.
struct Step {
    enum Kind { Expect, Answer, Hangup, Reset } kind;
    std::size_t count = 0;
    Bytes bytes;
};
Step expect(std::size_t count) { return {Step::Expect, count, {}}; }
Step answer(Bytes bytes) { return {Step::Answer, 0, std::move(bytes)}; }
Step hangup() { return {Step::Hangup, 0, {}}; }
Step reset() { return {Step::Reset, 0, {}}; }
using Script = std::vector<Step>;

// A controller on its own loopback address. Each accepted connection plays
// the next script; once a script ends the connection keeps collecting until
// the library closes it. received() holds each connection's incoming bytes.
class LoopbackController {
public:
    explicit LoopbackController(std::vector<Script> scripts) : received_(scripts.size()) {
        listener_ = bindFreeLoopback(address_);
        listen(listener_, 4);
        thread_ = std::thread([this, scripts = std::move(scripts)] {
            for (std::size_t i = 0; i < scripts.size(); ++i) {
                if (!play(scripts[i], received_[i])) return;
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
        for (const Step& step : script) {
            if (step.kind == Step::Expect) {
                const Bytes got = readBytes(fd, step.count);
                received.insert(received.end(), got.begin(), got.end());
            } else if (step.kind == Step::Answer) {
                writeBytes(fd, step.bytes);
            } else {
                if (step.kind == Step::Reset) {
                    const linger abortive{1, 0};
                    setsockopt(fd, SOL_SOCKET, SO_LINGER, &abortive, sizeof abortive);
                }
                close(fd);
                return true;
            }
        }
        const Bytes rest = readBytes(fd, 1 << 20);
        received.insert(received.end(), rest.begin(), rest.end());
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

TEST(EthernetLinkTest, CommandFramesGoOutByteForByte) {
    LoopbackController controller({Script{}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    EXPECT_TRUE(record.config.Connected);

    Bytes reset{'R', 0x00};
    Bytes buffered{'Q', 0x01};
    Bytes burst{'T', 0x3E};
    ModuleCommand noReply = command(1, 0, reset);
    ModuleCommand unknownReply = command(2, 40, buffered);
    ModuleCommand shortest = command(0, 250, burst);
    ModuleCommand longest = command(0, 251, burst);
    ModuleCommand beyond512 = command(0, 600, burst);
    ModuleCommand unknownType = command(7, 3, burst);
    for (ModuleCommand* each : {&noReply, &unknownReply, &unknownType, &shortest, &longest, &beyond512}) {
        ETHIMSendModuleCommand(&record.config, each);
    }
    closeSocket(&record.config);

    const Bytes expected = concat({{0x00, 0x02, 'R', 0x00},
                                   {0x0E, 0x02, 'Q', 0x01},
                                   {0x02, 0xFA, 0x02, 'T', 0x3E},
                                   {0x20, 0x01, 0xFB, 0x02, 'T', 0x3E},
                                   {0x20, 0x01, 0x58, 0x02, 'T', 0x3E}});
    EXPECT_EQ(controller.received().at(0), expected);
}

TEST(EthernetLinkTest, ReplyFramesAreParsedAndStayAligned) {
    Bytes longData(258);
    for (std::size_t i = 0; i < longData.size(); ++i) longData[i] = static_cast<unsigned char>(i);
    longData[0] = 'T';
    const Bytes longFrame = concat({{0x00, 0x01, 0x02}, longData, {0xAA, 0xBB}});  // header announcing 258 bytes
    const Bytes frames = concat({
        {0x00, 0x03, 'L', 0x10, 0x20, 0xAA, 0xBB},  // good reply and its trailing bytes
        {0x00, 0x02, 'X', 0x01, 0xAA, 0xBB},        // wrong echo: refused, trailing bytes still taken
        {0xFF, 0x00},                               // silent module: header only
        longFrame,
        {0x07, 0x01, '!', 0xAA, 0xBB},  // any first byte when no echo is expected
    });
    LoopbackController controller({{answer(frames)}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));

    ModuleReply good = ETHIMReadModuleResponse(&record.config, 'L', false);
    EXPECT_EQ(good.Status, 0u);
    EXPECT_EQ(dataOf(good), (Bytes{'L', 0x10, 0x20}));
    delete[] good.Data;

    ModuleReply refused = ETHIMReadModuleResponse(&record.config, 'L', false);
    EXPECT_EQ(refused.Status, 255u);
    EXPECT_EQ(refused.Length, 0u);
    delete[] refused.Data;

    ModuleReply silent = ETHIMReadModuleResponse(&record.config, 'L', false);
    EXPECT_EQ(silent.Status, 255u);
    EXPECT_EQ(silent.Data, nullptr);

    ModuleReply burst = ETHIMReadModuleResponse(&record.config, 'T', true);
    EXPECT_EQ(burst.Status, 0u);
    EXPECT_EQ(dataOf(burst), longData);
    delete[] burst.Data;

    ModuleReply anyEcho = ETHIMReadModuleResponse(&record.config, 0, false);
    EXPECT_EQ(anyEcho.Status, 7u);
    EXPECT_EQ(dataOf(anyEcho), (Bytes{'!'}));
    delete[] anyEcho.Data;
}

TEST(EthernetLinkTest, ControllerRequestsAndAnswers) {
    Bytes identify = concat({{0x00, 0x00, 0x00},
                             Bytes{'E', 'T', 'H', '0', '0', '1', '2', '3', '4', '5'},
                             Bytes{'P', '6', '3', '0', '1', '0', '1', 'A'},
                             Bytes{'E', 'T', 'H', 'I'},
                             Bytes{'1', '.', '5', '1', ' '},
                             {0, 0, 0, 0}});
    Bytes info = concat({{0x00, 0x00, 0x00}, Bytes{'E', 'T', 'H', '2'}, {0x97, 0x00, 0x00, 0x00}});
    for (char c : std::string("L032            Line 3 gauges   ")) info.push_back(static_cast<unsigned char>(c));
    info.insert(info.end(), {0x00, 0x00});
    ASSERT_EQ(identify.size(), 34u);
    ASSERT_EQ(info.size(), 45u);
    LoopbackController controller({{expect(3), answer(identify), expect(3), answer(info), expect(3),
                                    answer({0x00, 0x01, 0x02, 0x03}), expect(1), answer({0x09, 0, 0, 0})}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));

    const ControllerIdentifyReply id = ETHIMKavroIdentifyController(&record.config);
    EXPECT_EQ(id.Error, 0);
    EXPECT_EQ(id.IdentityText(), "ETH0012345");
    EXPECT_EQ(std::string(id.PartNumber, 8), "P630101A");
    EXPECT_EQ(id.VersionText(), "1.51 ");

    const ControllerInfoReply full = ETHIMKavroGetInfoController(&record.config);
    EXPECT_EQ(full.Error, 0);
    EXPECT_EQ(full.TypeCodeText(), "ETH2");
    EXPECT_EQ(full.Value, 151);
    EXPECT_EQ(full.Limit(), "L032            ");
    EXPECT_EQ(full.Description(), "Line 3 gauges   ");

    EXPECT_EQ(SetControllerSpeedETHIM(&record.config, eNetSpeed::UltraHigh), 0u);
    EXPECT_EQ(SetControllerIdleETHIM(&record.config), 0u);  // whatever the controller says

    closeSocket(&record.config);

    const Bytes requests{'I', 0x00, 0x00, 'B', 0x00, 0x00, 0x0A, 0x08, 0x06, 0x10};
    EXPECT_EQ(controller.received().at(0), requests);
}

TEST(EthernetLinkTest, SilentControllerGivesUpAfterTheLimit) {
    LoopbackController controller({{expect(5)}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    Bytes read{'L', 0x01};
    ModuleCommand readCommand = command(0, 5, read);
    ETHIMSendModuleCommand(&record.config, &readCommand);

    const auto start = std::chrono::steady_clock::now();
    const ModuleReply reply = ETHIMReadModuleResponse(&record.config, 'L', false);
    const double waited = secondsSince(start);
    EXPECT_EQ(reply.Status, 255u);
    EXPECT_EQ(reply.Data, nullptr);
    EXPECT_GE(waited, 1.45);
    EXPECT_LT(waited, 3.0);

    EXPECT_EQ(SetControllerSpeedETHIM(&record.config, eNetSpeed::High), 255u);
    EXPECT_EQ(ETHIMKavroIdentifyController(&record.config).Error, 255);
}

TEST(EthernetLinkTest, ClosedControllerEndsTheWaitAtOnce) {
    // Half a reply, then the controller closes the connection.
    LoopbackController controller({{expect(5), answer({0x00, 0x05, 'L', 0x01}), hangup()}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    Bytes read{'L', 0x01};
    ModuleCommand readCommand = command(0, 5, read);
    ETHIMSendModuleCommand(&record.config, &readCommand);

    const auto start = std::chrono::steady_clock::now();
    ModuleReply reply = ETHIMReadModuleResponse(&record.config, 'L', false);
    EXPECT_EQ(reply.Status, 255u);
    EXPECT_EQ(reply.Length, 0u);
    delete[] reply.Data;
    unsigned char more[4];
    int error = -1;
    EXPECT_EQ(SocketReadDataFixedLength(&record.config, more, sizeof more, &error), 0);
    EXPECT_LT(secondsSince(start), 1.0);
}

TEST(EthernetLinkTest, ReconnectsWhenTheControllerResetsTheConnection) {
    // The controller takes one command, then drops the connection abortively.
    LoopbackController controller({{expect(2), reset()}, {expect(5)}});
    EthernetRecord record(controller.address());
    ASSERT_TRUE(openSocket(&record.config));
    ModuleCommand empty;
    empty.Type = 1;
    ETHIMSendModuleCommand(&record.config, &empty);

    // Wait (bounded) until the reset has reached this end.
    pollfd entry{record.config.SocketFd, POLLIN, 0};
    ASSERT_EQ(poll(&entry, 1, std::chrono::milliseconds(kPeerBound).count()), 1);

    Bytes clear{'C', 0x01};
    ModuleCommand clearCommand = command(0, 2, clear);
    ETHIMSendModuleCommand(&record.config, &clearCommand);
    EXPECT_TRUE(record.config.Connected);
    closeSocket(&record.config);

    const auto& received = controller.received();
    EXPECT_EQ(received.at(0), (Bytes{0x00, 0x00}));
    EXPECT_EQ(received.at(1), (Bytes{0x02, 0x02, 0x02, 'C', 0x01}));
}

TEST(EthernetLinkTest, FailedConnectionsAreReportedAndHarmless) {
    std::string address;
    const int bound = bindFreeLoopback(address);  // bound but not listening: refused
    EthernetRecord refused(address);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openSocket(&refused.config));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unable to connect to ethim" + std::to_string(ECONNREFUSED) + "\n");
    close(bound);
    EXPECT_FALSE(refused.config.Connected);
    EXPECT_EQ(refused.config.SocketFd, -1);

    EthernetRecord badText("127.0.0.256");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openSocket(&badText.config));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unable to connect to ETHIM, address lookup failed.\n");

    // Without a connection every request fails at once.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ETHIMReadModuleResponse(&badText.config, 'L', false).Status, 255u);
    EXPECT_EQ(SetControllerSpeedETHIM(&badText.config, eNetSpeed::Low), 255u);
    EXPECT_LT(secondsSince(start), 1.0);
}

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
    EXPECT_EQ(thrownMessage(StartDynamicETHIM, &config), "Controller is not dynamic capable");

    NetworkConfiguration second(1, "line 2");
    second.ControllerTypeCode = "ETH2";
    second.ControllerValue = 120;
    UpdateCapabilitiesETHIM(&second);
    EXPECT_TRUE(second.DynamicFlag && second.Dynamic2Flag && second.DynamicExternalSourceFlag);
    EXPECT_FALSE(second.ReadburstFlag);
    EXPECT_EQ(second.ControllerSpeeds, (std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh}));
    EXPECT_EQ(thrownMessage(StartDynamicETHIM, &second),
              "Dynamic streaming over Ethernet is not available in this version");
}
