#include "links/WirelessLink.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "KavroNumberText.h"
#include "core/Diagnostics.h"
#include "links/ByteFraming.h"
#include "links/DescriptorWait.h"

namespace KavroLibrary {

namespace {

constexpr auto kConnectLimit = std::chrono::seconds(5);
constexpr auto kReadLimit = std::chrono::seconds(1);
constexpr auto kWriteLimit = std::chrono::milliseconds(1500);
constexpr ControllerAnswerSizes kAnswers{32, 43, 2};

// RFCOMM without the Bluetooth development headers: the kernel's ABI.
constexpr int kAfBluetooth = 31;
constexpr int kBtProtoRfcomm = 3;
struct RfcommAddress {
    sa_family_t family;
    unsigned char bdaddr[6];  // least significant byte first
    std::uint8_t channel;
};

bool isHex(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

int readSome(int fd, unsigned char* buffer, int count, LinkClock::time_point deadline) {
    int total = 0;
    while (total < count) {
        const short events = waitForDescriptor(fd, POLLIN, deadline);
        if (events == 0) break;
        const ssize_t n = read(fd, buffer + total, static_cast<std::size_t>(count - total));
        if (n > 0) {
            total += static_cast<int>(n);
        } else if (n == 0 || (errno != EINTR && errno != EAGAIN)) {
            break;  // closed or failed: nothing more will come
        }
    }
    return total;
}

void discardWaiting(int fd) {
    unsigned char scratch[512];
    while (waitForDescriptor(fd, POLLIN, LinkClock::now()) & POLLIN) {
        if (read(fd, scratch, sizeof scratch) <= 0) break;
    }
}

bool writeAll(NetworkConfiguration* config, const std::vector<unsigned char>& bytes) {
    const int fd = config->SocketFd;
    if (fd < 0 || bytes.empty()) return false;
    discardWaiting(fd);  // a late answer must not be taken for the next one
    const auto deadline = LinkClock::now() + kWriteLimit;
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n > 0) {
            sent += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) return false;
        if (waitForDescriptor(fd, POLLOUT, deadline) == 0) return false;
    }
    return true;
}

ControllerExchange exchangeWith(NetworkConfiguration* config) {
    return [config](const std::vector<unsigned char>& request, unsigned char* answer, int count) {
        if (!writeAll(config, request)) return 0;
        return readSome(config->SocketFd, answer, count, LinkClock::now() + kReadLimit);
    };
}

bool connectWithin(int fd, const sockaddr* address, socklen_t length) {
    const int flags = fcntl(fd, F_GETFL, 0);
    fcntl(fd, F_SETFL, flags | O_NONBLOCK);
    if (connect(fd, address, length) != 0) {
        if (errno != EINPROGRESS) return false;
        if (waitForDescriptor(fd, POLLOUT, LinkClock::now() + kConnectLimit) == 0) return false;
        int error = 0;
        socklen_t size = sizeof error;
        if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
            errno = error;
            return false;
        }
    }
    return true;
}

}  // namespace

WirelessAddress ParseWirelessAddress(const std::string& text) {
    WirelessAddress result;
    if (text.size() == 17) {
        bool bluetooth = true;
        for (std::size_t i = 0; i < 17; ++i) {
            if (i % 3 == 2)
                bluetooth = bluetooth && text[i] == ':';
            else
                bluetooth = bluetooth && isHex(text[i]);
        }
        if (bluetooth) {
            result.kind = WirelessAddress::Bluetooth;
            for (int i = 0; i < 6; ++i) {
                result.bluetooth[i] = static_cast<unsigned char>(std::stoi(text.substr(i * 3, 2), nullptr, 16));
            }
            return result;
        }
    }
    std::string host = text;
    const auto colon = text.find(':');
    if (colon != std::string::npos) {
        host = text.substr(0, colon);
        const std::string port = text.substr(colon + 1);
        if (port.empty() || port.size() > 5 ||
            !std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; }))
            return result;
        result.port = std::stoi(port);
        if (result.port < 1 || result.port > 65535) return result;
    }
    in_addr parsed{};
    if (inet_pton(AF_INET, host.c_str(), &parsed) != 1) return result;
    result.kind = WirelessAddress::Tcp;
    result.host = host;
    return result;
}

bool WIMOpen(NetworkConfiguration* config) {
    WIMClose(config);
    const WirelessAddress address = ParseWirelessAddress(config->Address);
    if (address.kind == WirelessAddress::Invalid) {
        diagnostic("Unable to connect to WIM, address not understood: ", config->Address);
        return false;
    }
    int fd = -1;
    bool connected = false;
    if (address.kind == WirelessAddress::Tcp) {
        fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in target{};
        target.sin_family = AF_INET;
        target.sin_port = htons(static_cast<std::uint16_t>(address.port));
        inet_pton(AF_INET, address.host.c_str(), &target.sin_addr);
        if (fd >= 0) connected = connectWithin(fd, reinterpret_cast<sockaddr*>(&target), sizeof target);
    } else {
        fd = socket(kAfBluetooth, SOCK_STREAM | SOCK_CLOEXEC, kBtProtoRfcomm);
        RfcommAddress target{};
        target.family = kAfBluetooth;
        for (int i = 0; i < 6; ++i) target.bdaddr[i] = address.bluetooth[5 - i];
        target.channel = static_cast<std::uint8_t>(config->WirelessChannel);
        if (fd >= 0) connected = connectWithin(fd, reinterpret_cast<sockaddr*>(&target), sizeof target);
    }
    if (!connected) {
        diagnostic("Unable to connect to WIM ", config->Address, ": ", std::strerror(errno));
        if (fd >= 0) close(fd);
        return false;
    }
    config->SocketFd = fd;
    config->Connected = true;
    return true;
}

void WIMClose(NetworkConfiguration* config) {
    if (config->SocketFd >= 0) close(config->SocketFd);
    config->SocketFd = -1;
}

void WIMSendModuleCommand(NetworkConfiguration* config, ModuleCommand* command) {
    writeAll(config, BuildCommandFrame(*command));
}

ModuleReply WIMReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    const auto deadline = LinkClock::now() + kReadLimit;
    const int fd = config->SocketFd;
    FrameReader reader = [fd, deadline](unsigned char* buffer, int count) {
        return fd < 0 ? 0 : readSome(fd, buffer, count, deadline);
    };
    return ReadReplyFrame(reader, echo, longReply).Reply;
}

ControllerIdentifyReply WIMKavroIdentifyController(NetworkConfiguration* config) {
    return RequestControllerIdentify(exchangeWith(config), kAnswers);
}

ControllerInfoReply WIMKavroGetInfoController(NetworkConfiguration* config) {
    return RequestControllerInfo(exchangeWith(config), kAnswers);
}

std::uint32_t SetControllerSpeedWIM(NetworkConfiguration* config, eNetSpeed speed) {
    // No line rate on a radio link: the baud index is 0.
    return RequestControllerSpeed(exchangeWith(config), kAnswers, 0x00, speed);
}

std::uint32_t SetControllerIdleWIM(NetworkConfiguration* config) {
    RequestControllerIdle(exchangeWith(config), kAnswers);
    return 0;
}

void StartDynamicWIM(NetworkConfiguration*, sDynamicMode) {
    throw std::runtime_error("Controller is not dynamic capable");
}

void UpdateCapabilitiesWIM(NetworkConfiguration* config) {
    config->ControllerFlag0 = true;
    config->BufferedExternalSourceFlag = false;
    config->ReadburstFlag = false;
    config->DynamicFlag = false;
    config->Dynamic2Flag = false;
    config->DynamicExternalSourceFlag = false;
    config->ControllerFlag6 = false;
    if (config->ControllerValue > 150) config->offerSpeed(eNetSpeed::High);
}

void fillWirelessLinkTable(NetworkConfiguration* config) {
    config->Identify = &WIMKavroIdentifyController;
    config->GetInfo = &WIMKavroGetInfoController;
    config->SendCommand = &WIMSendModuleCommand;
    config->GetReply = &WIMReadModuleResponse;
    config->SetSpeed = &SetControllerSpeedWIM;
    config->SetIdle = &SetControllerIdleWIM;
    config->StartDynamic = &StartDynamicWIM;
}

}  // namespace KavroLibrary
