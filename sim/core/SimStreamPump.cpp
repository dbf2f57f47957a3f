#include "core/SimStreamPump.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <iostream>

namespace kavrosim {

namespace {

using Clock = std::chrono::steady_clock;

// A request that stops half-way is dropped after this much silence, so
// that one lost byte does not shift every later frame.
const std::chrono::milliseconds kPartialFrameLimit{1000};

enum class WriteResult { Done, Failed, Stopped };

WriteResult writeAll(SimStreamEndpoint endpoint, const Bytes& bytes, const SimStopSignal& stop) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = endpoint.socket ? send(endpoint.fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL)
                                          : write(endpoint.fd, bytes.data() + sent, bytes.size() - sent);
        if (n > 0) {
            sent += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK) return WriteResult::Failed;
        pollfd watch[2] = {{endpoint.fd, POLLOUT, 0}, {stop.fd(), POLLIN, 0}};
        if (poll(watch, 2, -1) < 0 && errno != EINTR) return WriteResult::Failed;
        if (stop.raised()) return WriteResult::Stopped;
        if ((watch[0].revents & (POLLERR | POLLHUP)) != 0) return WriteResult::Failed;
    }
    return WriteResult::Done;
}

}  // namespace

SimPumpEnd pumpStream(SimStreamEndpoint endpoint, SimController& controller, SimStreamDialect dialect,
                      const SimStopSignal& stop) {
    Bytes pending;
    Clock::time_point lastByte = Clock::now();
    std::uint8_t buffer[4096];
    while (true) {
        while (!pending.empty()) {
            SimParsed parsed = parseStreamRequest(dialect, pending.data(), pending.size());
            if (parsed.result == SimParsed::Result::Incomplete) break;
            pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(parsed.consumed));
            SimAnswer answer;
            Bytes frame;
            try {
                answer = controller.handle(parsed.request);
                frame = frameStreamAnswer(dialect, parsed.request, answer);
            } catch (const std::exception& error) {
                // A simulator fault must not take the whole program down:
                // report it and drop this connection.
                std::cerr << "kavro-sim: " << parsed.request.describe() << ": " << error.what() << "\n";
                return SimPumpEnd::PeerClosed;
            }
            if (answer.delay.count() > 0 && stop.waitFor(answer.delay)) return SimPumpEnd::Stopped;
            if (answer.action == SimAnswer::Action::Close) return SimPumpEnd::CloseRequested;
            if (frame.empty()) continue;
            const WriteResult written = writeAll(endpoint, frame, stop);
            if (written == WriteResult::Stopped) return SimPumpEnd::Stopped;
            if (written == WriteResult::Failed) return SimPumpEnd::PeerClosed;
        }

        int timeout = -1;
        if (!pending.empty()) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(lastByte + kPartialFrameLimit - Clock::now());
            if (left.count() <= 0) {
                SimRequest dropped;
                dropped.raw = pending;
                controller.handle(dropped);
                pending.clear();
                continue;
            }
            timeout = static_cast<int>(left.count()) + 1;
        }
        pollfd watch[2] = {{endpoint.fd, POLLIN, 0}, {stop.fd(), POLLIN, 0}};
        const int ready = poll(watch, 2, timeout);
        if (ready < 0 && errno != EINTR) return SimPumpEnd::PeerClosed;
        if (stop.raised()) return SimPumpEnd::Stopped;
        if (ready <= 0 || watch[0].revents == 0) continue;
        const ssize_t n = read(endpoint.fd, buffer, sizeof buffer);
        if (n > 0) {
            pending.insert(pending.end(), buffer, buffer + n);
            lastByte = Clock::now();
        } else if (n == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
            return SimPumpEnd::PeerClosed;
        }
    }
}

}  // namespace kavrosim
