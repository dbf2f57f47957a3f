// Waiting on a descriptor until a monotonic deadline, so that a link takes
// its bytes as soon as they arrive instead of sleeping between attempts.
#pragma once

#include <chrono>

namespace KavroLibrary {

using LinkClock = std::chrono::steady_clock;

// Waits until `fd` reports one of `events` (POLLIN, POLLOUT) or the deadline
// passes. Returns the reported events, including POLLHUP, POLLERR and
// POLLNVAL; 0 when the deadline passed first.
short waitForDescriptor(int fd, short events, LinkClock::time_point deadline);

}  // namespace KavroLibrary
