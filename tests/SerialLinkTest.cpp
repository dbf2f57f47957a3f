#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "MessageOf.h"
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

// Controller requests carry the baud index; the answers (shorter than over
// Ethernet) are read in full, their status passed on. Frame building and
// answer parsing are shared with the Ethernet link and checked there.
TEST(SerialLinkTest, RequestsGoOutWithTheBaudIndex) {
    // 28800 is no line rate the link sets, but the controller still hears its index.
    SerialLine line(28800);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    const std::string idText = "RS00000042P630200B232I1.52a", infoText = "L016            Bench line      ";
    const Bytes identify = concat({{0x00, 0x00, 0x00}, Bytes(idText.begin(), idText.end()), {0x00, 0x00}});
    ASSERT_EQ(identify.size(), 32u);
    writeBytes(line.controller, identify);
    const ControllerIdentifyReply id = RS232KavroIdentifyController(&line.config);
    EXPECT_EQ(id.Error, 0);
    EXPECT_EQ(id.VersionText(), "1.52a");

    const Bytes info = concat(
        {{0x03, 0x00, 0x00, '2', '3', '2', 'I', 0x98, 0x00, 0x00, 0x00}, Bytes(infoText.begin(), infoText.end())});
    ASSERT_EQ(info.size(), 43u);
    writeBytes(line.controller, info);
    const ControllerInfoReply full = RS232KavroGetInfoController(&line.config);
    EXPECT_EQ(full.Error, 3);
    EXPECT_EQ(full.Description(), "Bench line      ");

    writeBytes(line.controller, {0x00, 0x00});
    EXPECT_EQ(SetControllerSpeedRS232(&line.config, eNetSpeed::High), 0u);
    line.config.BaudRate = 9600;  // a line rate without an index of its own
    writeBytes(line.controller, {0x07, 0x00});
    EXPECT_EQ(SetControllerSpeedRS232(&line.config, eNetSpeed::Low), 7u);
    writeBytes(line.controller, {0x00, 0x00});
    EXPECT_EQ(SetControllerIdleRS232(&line.config), 0u);
    Bytes burst{'T', 0x4A};
    ModuleCommand longForm = command(0, 300, burst);
    RS232SendModuleCommand(&line.config, &longForm);

    const Bytes expected = concat({{'I', 0x00, 0x00, 'B', 0x00, 0x00, 0x0A, 0x03, 0x05, 0x0A, 0x00, 0x00, 0x10},
                                   {0x20, 0x01, 0x2C, 0x02, 'T', 0x4A}});
    EXPECT_EQ(readBytes(line.controller, expected.size()), expected);
}

// Cut answers keep what came and never pass for a whole identity (silence
// costing one second is an end-to-end test).
TEST(SerialLinkTest, ShortAnswers) {
    SerialLine line(57600);
    ASSERT_GE(RS232OpenLine(&line.config), 0);

    writeBytes(line.controller, {0x00, 0x00, 0x00, '2', '3', '2', 'I', 0x96, 0x00, 'L', '0'});
    const ControllerInfoReply partial = RS232KavroGetInfoController(&line.config);
    EXPECT_EQ(partial.Error, 0);
    EXPECT_EQ(partial.TypeCodeText(), "232I");
    EXPECT_EQ(partial.Value, 150);
    EXPECT_EQ(partial.Limit(), std::string(16, ' '));
    EXPECT_EQ(partial.Description(), std::string(16, ' '));

    writeBytes(line.controller, {0x00, 0x00, 0x00, 'R', 'S'});
    EXPECT_EQ(RS232KavroIdentifyController(&line.config).Error, 255);
}

// Serial frames have no trailing bytes: a reply is taken as soon as its data
// is in. A hung-up line ends the wait at once instead of after the time-out.
TEST(SerialLinkTest, RepliesAndHangUpsEndTheWaitAtOnce) {
    SerialLine line(115200);
    ASSERT_GE(RS232OpenLine(&line.config), 0);
    writeBytes(line.controller, {0x04, 0x02, '!', 0x12});
    const auto start = std::chrono::steady_clock::now();
    ModuleReply anyEcho = RS232ReadModuleResponse(&line.config, 0, false);
    EXPECT_EQ(anyEcho.Status, 4u);
    EXPECT_EQ(dataOf(anyEcho), (Bytes{'!', 0x12}));
    delete[] anyEcho.Data;

    close(line.controller);
    line.controller = -1;
    EXPECT_EQ(RS232ReadModuleResponse(&line.config, 'L', false).Status, 255u);
    unsigned char bytes[8];
    EXPECT_EQ(RS232ReadDataFixedLength(&line.config, bytes, sizeof bytes), 0);
    EXPECT_LT(secondsSince(start), 0.9);
}

// The line is raw 8N1 with a 1 s read limit; unknown rates fall back to
// 115200; lines that cannot be opened are reported.
TEST(SerialLinkTest, LineSetUp) {
    SerialLine line(28800);
    ASSERT_GE(RS232OpenLine(&line.config), 0);
    termios applied{};
    ASSERT_EQ(tcgetattr(line.config.SocketFd, &applied), 0);
    EXPECT_EQ(cfgetospeed(&applied), static_cast<speed_t>(B115200));
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

// Only firmware 151 adds High speed, once; the read-burst flag is not the
// serial link's to change; streaming is refused.
TEST(SerialLinkTest, CapabilitiesAndNoStreaming) {
    NetworkConfiguration config(0, "bench");
    config.ReadburstFlag = true;
    config.DynamicFlag = true;
    config.ControllerValue = 150;
    UpdateCapabilitiesRS232(&config);
    EXPECT_TRUE(config.ControllerFlag0 && config.ReadburstFlag);
    EXPECT_FALSE(config.BufferedExternalSourceFlag || config.DynamicFlag);
    EXPECT_EQ(config.ControllerSpeeds, std::vector<eNetSpeed>{eNetSpeed::Low});

    config.ControllerValue = 151;
    UpdateCapabilitiesRS232(&config);
    UpdateCapabilitiesRS232(&config);
    EXPECT_EQ(config.ControllerSpeeds, (std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}));
    EXPECT_EQ(messageOf([&] { StartDynamicRS232(&config, {}); }), "Controller is not dynamic capable");
}
