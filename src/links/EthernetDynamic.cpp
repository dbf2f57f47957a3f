// Dynamic streaming over an "ETH2" Ethernet interface module: the USB blocks
// behind the kind byte 0x30 on the command connection, and whole packets back.
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>

#include "links/DescriptorWait.h"
#include "links/DynamicStream.h"
#include "links/EthernetLink.h"

namespace KavroLibrary {

namespace {

constexpr unsigned char kStreamKind = 0x30;
constexpr int kShortAnswer = 4;
// Longer than the controller's 20 ms answer limit by far: a packet that has
// not come in whole by then will not come.
constexpr auto kPacketLimit = std::chrono::seconds(2);

// Sends the kind byte and the block, then gathers `count` bytes; false when
// the connection failed, closed or fell silent.
bool exchange(NetworkConfiguration* config, const DynamicBlock& block, std::uint8_t* answer, std::size_t count) {
    std::lock_guard<std::mutex> link(config->LinkLock);
    const int fd = config->SocketFd;
    if (fd < 0) return false;
    const auto deadline = LinkClock::now() + kPacketLimit;
    std::array<unsigned char, 1 + sizeof(DynamicBlock)> request{};
    request[0] = kStreamKind;
    std::copy(block.begin(), block.end(), request.begin() + 1);
    std::size_t done = 0;
    while (done < request.size()) {
        const ssize_t n = send(fd, request.data() + done, request.size() - done, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            return false;
        } else if (waitForDescriptor(fd, POLLOUT, deadline) == 0) {
            return false;
        }
    }
    done = 0;
    while (done < count) {
        const ssize_t n = recv(fd, answer + done, count - done, MSG_DONTWAIT);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n == 0) {
            return false;  // the controller closed the connection
        } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
            return false;
        } else if (waitForDescriptor(fd, POLLIN, deadline) == 0) {
            return false;
        }
    }
    return true;
}

int startEthernet(NetworkConfiguration* config, const sDynamicMode& mode) {
    // Whatever a command left behind would be taken for the answer.
    SocketFlushData(config);
    std::uint8_t answer[kShortAnswer] = {};
    if (!exchange(config, dynamicStartBlock(mode), answer, sizeof answer)) return kDynamicStartLost;
    return answer[0];
}

DynamicTransfer exchangeEthernet(NetworkConfiguration* config, const DynamicBlock& request, std::uint8_t* packet) {
    return exchange(config, request, packet, kDynamicPacketSize) ? DynamicTransfer::Whole : DynamicTransfer::Lost;
}

std::uint32_t stopEthernet(NetworkConfiguration* config) {
    std::uint8_t answer[kShortAnswer] = {};
    if (!exchange(config, dynamicStopBlock(), answer, sizeof answer)) return 255;
    return answer[0];
}

const DynamicTransport kEthernetStreaming{"ETHIM Connection Lost", startEthernet, exchangeEthernet, stopEthernet,
                                          nullptr};

}  // namespace

void DynamicReadThreadProcessETH(NetworkConfiguration* config, sDynamicMode mode) noexcept {
    RunDynamicReadLoop(config, mode, kEthernetStreaming);
}

void StartDynamicETHIM(NetworkConfiguration* config, sDynamicMode mode) {
    if (config->ControllerTypeCode != "ETH2") throw std::runtime_error("Controller is not dynamic capable");
    // Packet checking is always on over Ethernet.
    config->PacketCrc = 1;
    config->DynamicRequestFlags = kDynamicChecking;
    config->ExtraReplyBytes = 2;
    config->PacketNumber = 0;
    StartDynamicThreads(config, mode, DynamicReadThreadProcessETH);
}

}  // namespace KavroLibrary
