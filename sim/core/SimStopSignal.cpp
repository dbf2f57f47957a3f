#include "core/SimStopSignal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace kavrosim {

SimStopSignal::SimStopSignal() : fd_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

SimStopSignal::~SimStopSignal() { close(fd_); }

void SimStopSignal::raise() {
    raised_.store(true);
    const std::uint64_t one = 1;
    // The counter only needs to become readable; a full counter already is.
    [[maybe_unused]] ssize_t written = write(fd_, &one, sizeof one);
}

bool SimStopSignal::waitFor(std::chrono::milliseconds wait) const {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + wait;
    while (!raised()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) return false;
        pollfd watch{fd_, POLLIN, 0};
        if (poll(&watch, 1, static_cast<int>(left.count()) + 1) < 0 && errno != EINTR) return raised();
    }
    return true;
}

}  // namespace kavrosim
