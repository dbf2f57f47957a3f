#include "links/EthernetLink.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <vector>

#include "core/Diagnostics.h"
#include "links/ByteFraming.h"
#include "links/DescriptorWait.h"

namespace KavroLibrary {

namespace {

constexpr auto kTransferLimit = std::chrono::milliseconds(1500);
constexpr auto kConnectLimit = std::chrono::seconds(5);
constexpr int kFlushChunk = 5000;
constexpr int kTrailingBytes = 2;
constexpr ControllerAnswerSizes kAnswers{34, 45, 4};

bool isLostConnection(int error) { return error == ECONNABORTED || error == ECONNRESET || error == EPIPE; }

// Sends what it can of `count` bytes before the deadline. `error` receives
// errno of the failure that stopped it, or 0.
int sendUntil(int fd, const unsigned char* buffer, int count, LinkClock::time_point deadline, int& error) {
    error = 0;
    int sent = 0;
    while (sent < count) {
        const ssize_t n = send(fd, buffer + sent, static_cast<std::size_t>(count - sent), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n > 0) {
            sent += static_cast<int>(n);
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            error = errno;
            return sent;
        }
        if (waitForDescriptor(fd, POLLOUT, deadline) == 0) {
            error = ETIMEDOUT;
            return sent;
        }
    }
    return sent;
}

// True when the controller has closed the connection (end of stream) or
// reset it; what was waiting has been flushed already.
bool controllerHungUp(int fd) {
    if (fd < 0) return false;
    unsigned char next = 0;
    const ssize_t n = recv(fd, &next, 1, MSG_PEEK | MSG_DONTWAIT);
    return n == 0 || (n < 0 && isLostConnection(errno));
}

// Stale bytes (an answer that came after its time limit, the rest of one cut
// short) would otherwise be taken for the start of the next answer.
void sendRequest(NetworkConfiguration* config, std::vector<unsigned char> bytes) {
    if (bytes.empty()) return;
    SocketFlushData(config);
    // A controller that closed the connection in good order (it restarted)
    // still lets the first write through, and the frame would be lost
    // unnoticed: connect again before writing.
    if (controllerHungUp(config->SocketFd)) {
        closeSocket(config);
        if (!openSocket(config)) return;
    }
    SocketWriteDataFixedLength(config, bytes.data(), static_cast<int>(bytes.size()));
}

int readAnswer(NetworkConfiguration* config, unsigned char* buffer, int count) {
    int error = 0;
    return SocketReadDataFixedLength(config, buffer, count, &error);
}

ControllerExchange exchangeWith(NetworkConfiguration* config) {
    return [config](const std::vector<unsigned char>& request, unsigned char* answer, int count) {
        sendRequest(config, request);
        return readAnswer(config, answer, count);
    };
}

}  // namespace

bool openSocket(NetworkConfiguration* config) {
    closeSocket(config);
    config->Connected = false;

    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        diagnostic("Unable to create socket.");
        return false;
    }
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(kEthernetPort);
    if (inet_pton(AF_INET, config->Address.c_str(), &peer.sin_addr) != 1) {
        diagnostic("Unable to connect to ETHIM, address lookup failed.");
        close(fd);
        return false;
    }

    // Non-blocking, so that an absent controller costs at most the connect
    // limit; the socket stays non-blocking and every transfer waits with poll.
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL, 0) | O_NONBLOCK);
    int error = 0;
    if (connect(fd, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) != 0) {
        error = errno;
        if (error == EINPROGRESS || error == EINTR) {
            // poll rather than select: a descriptor above FD_SETSIZE must not
            // overrun an fd_set.
            const short events = waitForDescriptor(fd, POLLOUT, LinkClock::now() + kConnectLimit);
            if (events == 0) {
                error = ETIMEDOUT;
            } else {
                // Writable also means "the attempt failed"; the socket's own
                // error says which.
                socklen_t size = sizeof error;
                if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) != 0) error = errno;
            }
        }
    }
    if (error != 0) {
        diagnostic("Unable to connect to ethim", error);
        close(fd);
        errno = error;
        return false;
    }
    config->SocketFd = fd;
    config->Connected = true;
    return true;
}

void closeSocket(NetworkConfiguration* config) {
    if (config->SocketFd >= 0) close(config->SocketFd);
    config->SocketFd = -1;
}

int SocketReadDataFixedLength(NetworkConfiguration* config, unsigned char* buffer, int count, int* error) {
    if (error != nullptr) *error = 0;
    const int fd = config->SocketFd;
    if (fd < 0 || buffer == nullptr || count <= 0) return 0;

    const auto deadline = LinkClock::now() + kTransferLimit;
    int total = 0;
    while (total < count) {
        const ssize_t n = recv(fd, buffer + total, static_cast<std::size_t>(count - total), MSG_DONTWAIT);
        if (n > 0) {
            total += static_cast<int>(n);
            continue;
        }
        // A closed peer sends nothing more: waiting out the limit would only
        // delay the caller.
        if (n == 0) break;
        if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            if (error != nullptr) *error = errno;
            break;
        }
        if (waitForDescriptor(fd, POLLIN, deadline) == 0) break;
    }
    return total;
}

int SocketWriteDataFixedLength(NetworkConfiguration* config, unsigned char* buffer, int count) {
    if (buffer == nullptr || count <= 0 || config->SocketFd < 0) return 0;
    int error = 0;
    const int sent = sendUntil(config->SocketFd, buffer, count, LinkClock::now() + kTransferLimit, error);
    if (sent == count || !isLostConnection(error)) return sent;

    // The controller dropped the connection (restarted, cable pulled): the
    // whole frame goes again on a fresh one.
    closeSocket(config);
    if (!openSocket(config)) return 0;
    return sendUntil(config->SocketFd, buffer, count, LinkClock::now() + kTransferLimit, error);
}

void SocketFlushData(NetworkConfiguration* config) {
    if (config->SocketFd < 0) return;
    unsigned char chunk[kFlushChunk];
    while (recv(config->SocketFd, chunk, sizeof chunk, MSG_DONTWAIT) > 0) {
    }
}

void ETHIMSendModuleCommand(NetworkConfiguration* config, ModuleCommand* command) {
    if (command == nullptr) return;
    sendRequest(config, BuildCommandFrame(*command));
}

ModuleReply ETHIMReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    const ReplyFrame frame = ReadReplyFrame(
        [config](unsigned char* buffer, int count) { return readAnswer(config, buffer, count); }, echo, longReply);
    // Every frame with data ends in two bytes the library has no use for; a
    // refused frame too. When the data came short nothing more is coming.
    if (frame.DataComplete) {
        unsigned char trailing[kTrailingBytes];
        readAnswer(config, trailing, kTrailingBytes);
    }
    return frame.Reply;
}

ControllerIdentifyReply ETHIMKavroIdentifyController(NetworkConfiguration* config) {
    return RequestControllerIdentify(exchangeWith(config), kAnswers);
}

ControllerInfoReply ETHIMKavroGetInfoController(NetworkConfiguration* config) {
    return RequestControllerInfo(exchangeWith(config), kAnswers);
}

std::uint32_t SetControllerSpeedETHIM(NetworkConfiguration* config, eNetSpeed speed) {
    return RequestControllerSpeed(exchangeWith(config), kAnswers, 0x08, speed);
}

std::uint32_t SetControllerIdleETHIM(NetworkConfiguration* config) {
    RequestControllerIdle(exchangeWith(config), kAnswers);
    return 0;
}

void UpdateCapabilitiesETHIM(NetworkConfiguration* config) {
    const bool current = config->ControllerValue > 149;
    const bool secondGeneration = config->ControllerTypeCode == "ETH2";

    config->ControllerFlag0 = true;
    config->BufferedExternalSourceFlag = current;
    config->ReadburstFlag = current;
    config->DynamicFlag = secondGeneration;
    config->Dynamic2Flag = secondGeneration;
    config->DynamicExternalSourceFlag = secondGeneration;
    config->ControllerFlag6 = false;

    if (secondGeneration || current) config->offerSpeed(eNetSpeed::High);
    if (secondGeneration) config->offerSpeed(eNetSpeed::UltraHigh);
}

}  // namespace KavroLibrary
