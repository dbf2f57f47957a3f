#include "core/SimLoopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace kavrosim {

namespace {

const std::uint32_t kValuesPerByte = 254;
const std::uint32_t kCandidates = kValuesPerByte * kValuesPerByte * kValuesPerByte;
const int kAttempts = 4096;

// Successive searches of one process start at different points.
std::atomic<std::uint32_t> searches{0};

std::string candidate(std::uint32_t index) {
    index %= kCandidates;
    const std::uint32_t x = 1 + index / (kValuesPerByte * kValuesPerByte);
    const std::uint32_t y = 1 + (index / kValuesPerByte) % kValuesPerByte;
    const std::uint32_t z = 1 + index % kValuesPerByte;
    return "127." + std::to_string(x) + "." + std::to_string(y) + "." + std::to_string(z);
}

std::uint32_t startingPoint() {
    // Spread neighbouring process ids far apart (Knuth's multiplicative hash).
    const auto pid = static_cast<std::uint32_t>(getpid());
    return pid * 2654435761u + searches.fetch_add(1) * 7919u;
}

}  // namespace

int listenOn(const std::string& address, int port) {
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(static_cast<std::uint16_t>(port));
    if (inet_pton(AF_INET, address.c_str(), &where.sin_addr) != 1) {
        errno = EINVAL;
        return -1;
    }
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return -1;
    const int on = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&where), sizeof where) != 0 || listen(fd, 4) != 0) {
        const int saved = errno;
        close(fd);
        errno = saved;
        return -1;
    }
    return fd;
}

int listenOnFreeLoopback(int port, std::string& address) {
    const std::uint32_t start = startingPoint();
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const std::string tried = candidate(start + static_cast<std::uint32_t>(attempt));
        const int fd = listenOn(tried, port);
        if (fd >= 0) {
            address = tried;
            return fd;
        }
        if (errno != EADDRINUSE && errno != EADDRNOTAVAIL) {
            throw std::runtime_error("cannot listen on " + tried + ":" + std::to_string(port) + ": " +
                                     std::strerror(errno));
        }
    }
    throw std::runtime_error("no free loopback address for port " + std::to_string(port));
}

std::string freeLoopbackAddress(int port) {
    std::string address;
    close(listenOnFreeLoopback(port, address));
    return address;
}

}  // namespace kavrosim
