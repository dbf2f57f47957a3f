// Helpers for the link tests: the bounded reads and plain writes of the test
// peers that stand in for a controller, and module commands and replies as
// byte vectors.
#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <initializer_list>
#include <vector>

#include "links/ModuleCommand.h"

using Bytes = std::vector<unsigned char>;

// Everything the peer waits for is bounded by this, so a broken link fails a
// test instead of hanging it.
constexpr auto kPeerBound = std::chrono::seconds(5);

// Reads up to `count` bytes; stops early at end of file or after the bound.
inline Bytes readBytes(int fd, std::size_t count, std::chrono::milliseconds bound = kPeerBound) {
    Bytes out;
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (out.size() < count) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) break;
        pollfd entry{fd, POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(left.count())) <= 0) continue;
        unsigned char chunk[512];
        const std::size_t want = std::min(count - out.size(), sizeof chunk);
        const ssize_t n = read(fd, chunk, want);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        out.insert(out.end(), chunk, chunk + n);
    }
    return out;
}

// Works on sockets (without SIGPIPE when the library has gone) and ttys.
inline void writeBytes(int fd, const Bytes& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno == ENOTSOCK) n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        done += static_cast<std::size_t>(n);
    }
}

inline Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
    return out;
}

// Seconds since `start`, on the monotonic clock.
inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline KavroLibrary::ModuleCommand command(int type, int replyLength, Bytes& data) {
    KavroLibrary::ModuleCommand out;
    out.Type = type;
    out.Length = static_cast<int>(data.size());
    out.ReplyLength = replyLength;
    out.Data = data.data();
    return out;
}

inline Bytes dataOf(const KavroLibrary::ModuleReply& reply) { return Bytes(reply.Data, reply.Data + reply.Length); }
