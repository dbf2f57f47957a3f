#include "links/SerialLink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <thread>
#include <vector>

#include "core/Diagnostics.h"
#include "links/ByteFraming.h"
#include "links/DescriptorWait.h"

namespace KavroLibrary {

namespace {

constexpr auto kReadLimit = std::chrono::seconds(1);
constexpr auto kWriteLimit = std::chrono::seconds(1);
constexpr ControllerAnswerSizes kAnswers{32, 43, 2};

// Rates the line is set to both ways; anything else runs at 115200.
speed_t lineSpeed(int baud) {
    switch (baud) {
        case 9600:
            return B9600;
        case 19200:
            return B19200;
        case 38400:
            return B38400;
        case 57600:
            return B57600;
        case 230400:
            return B230400;
    }
    return B115200;
}

void flushLine(NetworkConfiguration* config) {
    if (config->SocketFd >= 0) tcflush(config->SocketFd, TCIOFLUSH);
}

// tcdrain, bounded: a line that never empties (flow control held, a dead
// adapter) is given up at the deadline.
void drainLine(int fd, LinkClock::time_point deadline) {
    for (;;) {
        int pending = 0;
        if (ioctl(fd, TIOCOUTQ, &pending) != 0 || pending <= 0) return;
        if (LinkClock::now() >= deadline) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void writeRequest(NetworkConfiguration* config, std::vector<unsigned char> bytes) {
    if (bytes.empty()) return;
    RS232WriteDataFixedLength(config, bytes.data(), static_cast<int>(bytes.size()));
}

ControllerExchange exchangeWith(NetworkConfiguration* config) {
    return [config](const std::vector<unsigned char>& request, unsigned char* answer, int count) {
        writeRequest(config, request);
        return RS232ReadDataFixedLength(config, answer, count);
    };
}

}  // namespace

void RS232ConfigureLine(termios& settings, int baud) {
    settings.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON);
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    settings.c_cflag &= ~static_cast<tcflag_t>(PARENB | CSTOPB | CRTSCTS | CSIZE);
    settings.c_cflag |= CS8 | CREAD | CLOCAL;

    if (baud == 460800) {
        // Deliberately the output speed only: the input speed is left as it
        // was, and the kernel then runs input at the output speed.
        cfsetospeed(&settings, B460800);
        cfsetospeed(&settings, B460800);
    } else {
        const speed_t speed = lineSpeed(baud);
        cfsetispeed(&settings, speed);
        cfsetospeed(&settings, speed);
    }

    cfmakeraw(&settings);
    settings.c_cc[VTIME] = 10;
    settings.c_cc[VMIN] = 0;
}

int RS232OpenLine(NetworkConfiguration* config) {
    RS232CloseLine(config);
    // Without O_NONBLOCK the open of a line without carrier waits for one,
    // for ever; once open (CLOCAL set) the line behaves as usual.
    const int fd = open(config->Address.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        diagnostic("Unable to open ", config->Address);
        return -1;
    }
    termios settings{};
    if (tcgetattr(fd, &settings) != 0) {
        diagnostic("Unable to open ", config->Address, " (not a serial line)");
        close(fd);
        return -1;
    }
    RS232ConfigureLine(settings, config->BaudRate);
    if (tcsetattr(fd, TCSANOW, &settings) != 0) {
        diagnostic("Unable to open ", config->Address, " (line settings refused)");
        close(fd);
        return -1;
    }
    const int flags = fcntl(fd, F_GETFL);
    if (flags >= 0) fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);
    tcflush(fd, TCIOFLUSH);
    config->SocketFd = fd;
    return fd;
}

void RS232CloseLine(NetworkConfiguration* config) {
    if (config->SocketFd >= 0) close(config->SocketFd);
    config->SocketFd = -1;
}

int RS232WriteDataFixedLength(NetworkConfiguration* config, unsigned char* bytes, int count) {
    const int fd = config->SocketFd;
    if (fd < 0 || bytes == nullptr || count <= 0) return 0;
    const auto deadline = LinkClock::now() + kWriteLimit;
    int written = 0;
    while (written < count) {
        // Wait for room first, so that the write itself never blocks.
        const short events = waitForDescriptor(fd, POLLOUT, deadline);
        if ((events & POLLOUT) == 0) break;
        const ssize_t n = write(fd, bytes + written, static_cast<std::size_t>(count - written));
        if (n > 0) {
            written += static_cast<int>(n);
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) break;
    }
    drainLine(fd, deadline);
    return written;
}

int RS232ReadDataFixedLength(NetworkConfiguration* config, unsigned char* bytes, int count) {
    const int fd = config->SocketFd;
    if (fd < 0 || bytes == nullptr || count <= 0) return 0;
    const auto deadline = LinkClock::now() + kReadLimit;
    int total = 0;
    while (total < count) {
        // Wait first: a read without data would sit out the line's own 1 s
        // time-out.
        const short events = waitForDescriptor(fd, POLLIN, deadline);
        if ((events & POLLIN) != 0) {
            const ssize_t n = read(fd, bytes + total, static_cast<std::size_t>(count - total));
            if (n > 0) {
                total += static_cast<int>(n);
                continue;
            }
            if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) continue;
            break;  // hung up or failed: nothing more will come
        }
        // Time is up, or the line hung up without data.
        break;
    }
    return total;
}

int BaudRateToBaudIndex(int baud) {
    switch (baud) {
        case 19200:
            return 2;
        case 28800:
            return 3;
        case 38400:
            return 4;
        case 57600:
            return 5;
        case 115200:
            return 6;
        case 230400:
            return 7;
        case 460800:
            return 8;
    }
    return 0;
}

void RS232SendModuleCommand(NetworkConfiguration* config, ModuleCommand* command) {
    if (command == nullptr) return;
    writeRequest(config, BuildCommandFrame(*command));
}

ModuleReply RS232ReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    const ReplyFrame frame = ReadReplyFrame(
        [config](unsigned char* buffer, int count) { return RS232ReadDataFixedLength(config, buffer, count); }, echo,
        longReply);
    // Whatever is left on the line belongs to no request; the next answer
    // starts clean.
    flushLine(config);
    return frame.Reply;
}

ControllerIdentifyReply RS232KavroIdentifyController(NetworkConfiguration* config) {
    return RequestControllerIdentify(exchangeWith(config), kAnswers);
}

ControllerInfoReply RS232KavroGetInfoController(NetworkConfiguration* config) {
    return RequestControllerInfo(exchangeWith(config), kAnswers);
}

std::uint32_t SetControllerSpeedRS232(NetworkConfiguration* config, eNetSpeed speed) {
    // The controller is told the configured line rate, not the rate the line
    // was actually set to.
    return RequestControllerSpeed(exchangeWith(config), kAnswers,
                                  static_cast<unsigned char>(BaudRateToBaudIndex(config->BaudRate)), speed);
}

std::uint32_t SetControllerIdleRS232(NetworkConfiguration* config) {
    RequestControllerIdle(exchangeWith(config), kAnswers);
    return 0;
}

void StartDynamicRS232(NetworkConfiguration* /*config*/, sDynamicMode /*mode*/) {
    throw std::runtime_error("Controller is not dynamic capable");
}

void UpdateCapabilitiesRS232(NetworkConfiguration* config) {
    config->ControllerFlag0 = true;
    config->DynamicFlag = false;
    config->Dynamic2Flag = false;
    config->DynamicExternalSourceFlag = false;
    config->ControllerFlag6 = false;
    if (config->ControllerValue > 150) config->offerSpeed(eNetSpeed::High);
}

}  // namespace KavroLibrary
