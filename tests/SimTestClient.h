// Raw clients of the simulated controllers: a TCP socket or the serial
// line's pseudo-terminal, framing requests by hand from the wire protocol
// so that the simulator's own decoder is what gets tested.
#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "MessageOf.h"
#include "core/KavroSim.h"

namespace simtest {

using kavrosim::Bytes;
using namespace std::chrono_literals;

inline Bytes text(const std::string& s) { return Bytes(s.begin(), s.end()); }

inline Bytes concat(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Reply {
    int status = -1;  // -1: no header arrived
    Bytes data;
};

class WireClient {
public:
    WireClient(int fd, bool ethernet) : fd_(fd), ethernet_(ethernet) {}
    ~WireClient() {
        if (fd_ >= 0) close(fd_);
    }
    WireClient(const WireClient&) = delete;
    WireClient& operator=(const WireClient&) = delete;

    // The Ethernet face by default; a wireless face frames like the serial line.
    static std::unique_ptr<WireClient> tcp(const std::string& address, int port = 10001, bool ethernet = true) {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in where{};
        where.sin_family = AF_INET;
        where.sin_port = htons(static_cast<std::uint16_t>(port));
        inet_pton(AF_INET, address.c_str(), &where.sin_addr);
        if (connect(fd, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0) {
            close(fd);
            throw std::runtime_error("cannot connect to " + address);
        }
        return std::make_unique<WireClient>(fd, ethernet);
    }

    static std::unique_ptr<WireClient> serial(const std::string& path) {
        const int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (fd < 0) throw std::runtime_error("cannot open " + path);
        return std::make_unique<WireClient>(fd, false);
    }

    void send(const Bytes& bytes) {
        ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(fd_, bytes.data(), bytes.size()));
    }

    // Up to `count` bytes, whatever arrives within the bound.
    Bytes receive(std::size_t count, std::chrono::milliseconds bound = 2000ms) { return readBytes(fd_, count, bound); }

    // True when nothing arrives for the whole time.
    bool silentFor(std::chrono::milliseconds time) {
        pollfd watch{fd_, POLLIN, 0};
        return poll(&watch, 1, static_cast<int>(time.count())) == 0;
    }

    // True when the peer closes within the bound.
    bool closedWithin(std::chrono::milliseconds bound) {
        pollfd watch{fd_, POLLIN, 0};
        if (poll(&watch, 1, static_cast<int>(bound.count())) <= 0) return false;
        std::uint8_t byte;
        return read(fd_, &byte, 1) <= 0;
    }

    // A module command expecting a reply of `replyLength` bytes: the short
    // frame below 251, the long one from 251.
    Reply command(const Bytes& command, int replyLength) {
        const bool longReply = replyLength >= 251;
        Bytes frame = longReply ? Bytes{0x20, 1, static_cast<std::uint8_t>(replyLength & 0xFF)}
                                : Bytes{0x02, static_cast<std::uint8_t>(replyLength)};
        frame.push_back(static_cast<std::uint8_t>(command.size()));
        send(concat(frame, command));
        return readReply(longReply);
    }

    Reply readReply(bool longReply = false) {
        Reply reply;
        const Bytes header = receive(longReply ? 3 : 2);
        if (header.size() < (longReply ? 3u : 2u)) return reply;
        reply.status = header[0];
        const std::size_t length = longReply ? (header[1] << 8 | header[2]) : header[1];
        reply.data = receive(length);
        if (ethernet_) {
            EXPECT_EQ((Bytes{0, 0}), receive(2)) << "the two bytes after every Ethernet reply";
        }
        return reply;
    }

    // A command without a reply.
    void broadcast(const Bytes& command) {
        send(concat(Bytes{0x00, static_cast<std::uint8_t>(command.size())}, command));
    }

private:
    int fd_;
    bool ethernet_;
};

// Set-address and the other commands built from their table.
inline Bytes setAddress(const std::string& identity, int address) {
    return concat(concat(Bytes{'S', static_cast<std::uint8_t>(address)}, text(identity)), Bytes{0});
}
inline Bytes addressed(char code, int address) {
    return Bytes{static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(address)};
}
inline Bytes setMode(int address, unsigned mode, unsigned argument) {
    return Bytes{'V',
                 static_cast<std::uint8_t>(address),
                 static_cast<std::uint8_t>(mode & 0xFF),
                 static_cast<std::uint8_t>(mode >> 8),
                 static_cast<std::uint8_t>(argument & 0xFF),
                 static_cast<std::uint8_t>(argument >> 8)};
}

inline long long le(const Bytes& bytes, std::size_t from, std::size_t count) {
    long long value = 0;
    for (std::size_t i = 0; i < count; ++i) value |= static_cast<long long>(bytes.at(from + i)) << (8 * i);
    return value;
}

// An Ethernet controller on a free loopback address with a connected client.
struct EthernetRig {
    kavrosim::SimController controller{kavrosim::SimControllerConfig::ethernet("ETHSIM0001")};
    kavrosim::SimEthernetFace face{controller};
    std::unique_ptr<WireClient> client;

    EthernetRig() {
        face.start();
        client = WireClient::tcp(face.address());
    }

    // Adds a module and gives it an address the way a host does.
    void addressModule(const kavrosim::SimModule& module, int address) {
        controller.addModule(module);
        const Reply reply = client->command(setAddress(module.identity(), address), 2);
        ASSERT_EQ(0, reply.status);
        ASSERT_EQ((Bytes{'S', static_cast<std::uint8_t>(address)}), reply.data);
    }

    void setControllerSpeed(int value, int expectedStatus = 0) {
        client->send(Bytes{0x0A, 0x08, static_cast<std::uint8_t>(value)});
        const Bytes answer = client->receive(4);
        ASSERT_EQ(4u, answer.size());
        EXPECT_EQ(expectedStatus, answer[0]);
    }
};

}  // namespace simtest
