#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "links/SerialLink.h"

using namespace KavroLibrary;

namespace {

// A pseudo-terminal stands in for the serial line: the library opens the
// terminal side by its path, the test plays the controller on the other.
struct SerialLine {
    explicit SerialLine(int baud) : config(0, "bench") {
        char name[128] = {};
        if (openpty(&controller, &terminal, name, nullptr, nullptr) != 0) throw std::runtime_error("openpty failed");
        config.Address = name;
        config.BaudRate = baud;
    }
    ~SerialLine() {
        RS232CloseLine(&config);
        if (controller >= 0) close(controller);
        close(terminal);
    }
    NetworkConfiguration config;
    int controller = -1;  // the controller's end
    int terminal = -1;    // held open so the line outlives the library's descriptor
};

}  // namespace

TEST(SerialLinkTest, CommandFramesGoOutByteForByte) {
    SerialLine line(115200);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    Bytes reset{'R', 0x00};
    Bytes buffered{'Q', 0x02};
    Bytes burst{'T', 0x4A};
    ModuleCommand noReply = command(1, 0, reset);
    ModuleCommand unknownReply = command(2, 9, buffered);
    ModuleCommand unknownType = command(3, 9, buffered);
    ModuleCommand shortForm = command(0, 250, burst);
    ModuleCommand longForm = command(0, 300, burst);
    for (ModuleCommand* each : {&noReply, &unknownType, &unknownReply, &shortForm, &longForm}) {
        RS232SendModuleCommand(&line.config, each);
    }
    const Bytes expected = concat({{0x00, 0x02, 'R', 0x00},
                                   {0x0E, 0x02, 'Q', 0x02},
                                   {0x02, 0xFA, 0x02, 'T', 0x4A},
                                   {0x20, 0x01, 0x2C, 0x02, 'T', 0x4A}});
    EXPECT_EQ(readBytes(line.controller, expected.size()), expected);
}

TEST(SerialLinkTest, RepliesCarryNoTrailingBytes) {
    SerialLine line(115200);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    Bytes longData(258, 0x5A);
    longData[0] = 'T';
    longData[257] = 0x01;
    writeBytes(line.controller, concat({{0x00, 0x01, 0x02}, longData}));
    ModuleReply burst = RS232ReadModuleResponse(&line.config, 'T', true);
    EXPECT_EQ(burst.Status, 0u);
    EXPECT_EQ(dataOf(burst), longData);
    delete[] burst.Data;

    writeBytes(line.controller, {0x00, 0x02, 'X', 0x01});
    ModuleReply refused = RS232ReadModuleResponse(&line.config, 'L', false);
    EXPECT_EQ(refused.Status, 255u);
    EXPECT_EQ(refused.Length, 0u);
    delete[] refused.Data;

    // Taken at once: the link waits for nothing after the data.
    writeBytes(line.controller, {0x04, 0x02, '!', 0x12});
    const auto start = std::chrono::steady_clock::now();
    ModuleReply anyEcho = RS232ReadModuleResponse(&line.config, 0, false);
    EXPECT_LT(secondsSince(start), 0.9);
    EXPECT_EQ(anyEcho.Status, 4u);
    EXPECT_EQ(dataOf(anyEcho), (Bytes{'!', 0x12}));
    delete[] anyEcho.Data;
}

TEST(SerialLinkTest, ControllerRequestsAndAnswers) {
    // 28800 is no line rate the link sets, but the controller still hears its index.
    SerialLine line(28800);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    Bytes identify = concat({{0x00, 0x00, 0x00},
                             Bytes{'R', 'S', '0', '0', '0', '0', '0', '0', '4', '2'},
                             Bytes{'P', '6', '3', '0', '2', '0', '0', 'B'},
                             Bytes{'2', '3', '2', 'I'},
                             Bytes{'1', '.', '5', '2', 'a'},
                             {0x00, 0x00}});
    ASSERT_EQ(identify.size(), 32u);
    writeBytes(line.controller, identify);
    const ControllerIdentifyReply id = RS232KavroIdentifyController(&line.config);
    EXPECT_EQ(id.Error, 0);
    EXPECT_EQ(id.IdentityText(), "RS00000042");
    EXPECT_EQ(std::string(id.Model, 4), "232I");
    EXPECT_EQ(id.VersionText(), "1.52a");

    Bytes info = concat({{0x03, 0x00, 0x00}, Bytes{'2', '3', '2', 'I'}, {0x98, 0x00, 0x00, 0x00}});
    for (char c : std::string("L016            Bench line      ")) info.push_back(static_cast<unsigned char>(c));
    ASSERT_EQ(info.size(), 43u);
    writeBytes(line.controller, info);
    const ControllerInfoReply full = RS232KavroGetInfoController(&line.config);
    EXPECT_EQ(full.Error, 3);
    EXPECT_EQ(full.TypeCodeText(), "232I");
    EXPECT_EQ(full.Value, 152);
    EXPECT_EQ(full.Limit(), "L016            ");
    EXPECT_EQ(full.Description(), "Bench line      ");

    writeBytes(line.controller, {0x00, 0x00});
    EXPECT_EQ(SetControllerSpeedRS232(&line.config, eNetSpeed::High), 0u);
    line.config.BaudRate = 9600;  // a line rate without an index of its own
    writeBytes(line.controller, {0x07, 0x00});
    EXPECT_EQ(SetControllerSpeedRS232(&line.config, eNetSpeed::Low), 7u);
    writeBytes(line.controller, {0x00, 0x00});
    EXPECT_EQ(SetControllerIdleRS232(&line.config), 0u);

    const Bytes requests{'I', 0x00, 0x00, 'B', 0x00, 0x00, 0x0A, 0x03, 0x05, 0x0A, 0x00, 0x00, 0x10};
    EXPECT_EQ(readBytes(line.controller, requests.size()), requests);
}

TEST(SerialLinkTest, SilentOrShortAnswersEndAfterOneSecond) {
    SerialLine line(57600);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    auto start = std::chrono::steady_clock::now();
    const ModuleReply reply = RS232ReadModuleResponse(&line.config, 'L', false);
    double waited = secondsSince(start);
    EXPECT_EQ(reply.Status, 255u);
    EXPECT_EQ(reply.Data, nullptr);
    EXPECT_GE(waited, 0.95);
    EXPECT_LT(waited, 2.5);

    EXPECT_EQ(SetControllerSpeedRS232(&line.config, eNetSpeed::High), 255u);

    // A get-info answer cut short keeps what came and leaves the texts blank.
    writeBytes(line.controller, {0x00, 0x00, 0x00, '2', '3', '2', 'I', 0x96, 0x00, 'L', '0'});
    const ControllerInfoReply partial = RS232KavroGetInfoController(&line.config);
    EXPECT_EQ(partial.Error, 0);
    EXPECT_EQ(partial.TypeCodeText(), "232I");
    EXPECT_EQ(partial.Value, 150);
    EXPECT_EQ(partial.Limit(), std::string(16, ' '));
    EXPECT_EQ(partial.Description(), std::string(16, ' '));

    // An identify answer without all its identity bytes identifies nothing.
    writeBytes(line.controller, {0x00, 0x00, 0x00, 'R', 'S'});
    EXPECT_EQ(RS232KavroIdentifyController(&line.config).Error, 255);
}

TEST(SerialLinkTest, HungUpLineEndsTheWaitAtOnce) {
    SerialLine line(115200);
    ASSERT_GE(RS232OpenLine(&line.config), 0);
    close(line.controller);
    line.controller = -1;

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RS232ReadModuleResponse(&line.config, 'L', false).Status, 255u);
    unsigned char bytes[8];
    EXPECT_EQ(RS232ReadDataFixedLength(&line.config, bytes, sizeof bytes), 0);
    EXPECT_LT(secondsSince(start), 0.9);
}

TEST(SerialLinkTest, LineSetUp) {
    SerialLine line(28800);
    ASSERT_GE(RS232OpenLine(&line.config), 0);
    termios applied{};
    ASSERT_EQ(tcgetattr(line.config.SocketFd, &applied), 0);
    EXPECT_EQ(cfgetospeed(&applied), static_cast<speed_t>(B115200));  // unknown rates fall back to 115200
    EXPECT_EQ(applied.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_NE(applied.c_cflag & CREAD, 0u);
    EXPECT_NE(applied.c_cflag & CLOCAL, 0u);
    EXPECT_EQ(applied.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
    EXPECT_EQ(applied.c_lflag & (ECHO | ICANON | ISIG), 0u);
    EXPECT_EQ(applied.c_oflag & OPOST, 0u);
    EXPECT_EQ(applied.c_iflag & (ICRNL | IXON), 0u);
    EXPECT_EQ(applied.c_cc[VTIME], 10);
    EXPECT_EQ(applied.c_cc[VMIN], 0);

    // 460800 sets the output speed only; the input speed stays as it was.
    termios settings{};
    cfsetispeed(&settings, B9600);
    cfsetospeed(&settings, B9600);
    RS232ConfigureLine(settings, 460800);
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B460800));
#ifdef _HAVE_STRUCT_TERMIOS_C_ISPEED
    EXPECT_EQ(settings.c_ispeed, static_cast<speed_t>(B9600));
    RS232ConfigureLine(settings, 230400);
    EXPECT_EQ(settings.c_ispeed, static_cast<speed_t>(B230400));
#endif
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B230400));

    NetworkConfiguration absent(1, "bench");
    absent.Address = "/nonexistent/ttyKavro";
    testing::internal::CaptureStderr();
    EXPECT_EQ(RS232OpenLine(&absent), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unable to open /nonexistent/ttyKavro\n");
    absent.Address = "/dev/null";  // opens, but is no serial line
    testing::internal::CaptureStderr();
    EXPECT_EQ(RS232OpenLine(&absent), -1);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Unable to open /dev/null"), std::string::npos);
    EXPECT_EQ(absent.SocketFd, -1);
}

TEST(SerialLinkTest, CapabilitiesAndNoStreaming) {
    NetworkConfiguration config(0, "bench");
    config.ReadburstFlag = true;  // flags 1 and 2 are not the serial link's to change
    config.DynamicFlag = true;
    config.ControllerValue = 150;
    UpdateCapabilitiesRS232(&config);
    EXPECT_TRUE(config.ControllerFlag0);
    EXPECT_TRUE(config.ReadburstFlag);
    EXPECT_FALSE(config.BufferedExternalSourceFlag);
    EXPECT_FALSE(config.DynamicFlag);
    EXPECT_EQ(config.ControllerSpeeds, std::vector<eNetSpeed>{eNetSpeed::Low});

    config.ControllerValue = 151;
    UpdateCapabilitiesRS232(&config);
    UpdateCapabilitiesRS232(&config);
    EXPECT_EQ(config.ControllerSpeeds, (std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}));

    try {
        StartDynamicRS232(&config, sDynamicMode{});
        ADD_FAILURE() << "serial streaming was not refused";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "Controller is not dynamic capable");
    }
}
