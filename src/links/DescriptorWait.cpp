#include "links/DescriptorWait.h"

#include <poll.h>

#include <cerrno>

namespace KavroLibrary {

short waitForDescriptor(int fd, short events, LinkClock::time_point deadline) {
    for (;;) {
        const auto left = deadline - LinkClock::now();
        if (left <= LinkClock::duration::zero()) return 0;
        // Rounded up, so a wait never ends just short of the deadline and spins.
        const auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        pollfd entry{fd, events, 0};
        const int ready = poll(&entry, 1, static_cast<int>(ms));
        if (ready > 0) return entry.revents;
        if (ready < 0 && errno != EINTR) return POLLERR;
    }
}

}  // namespace KavroLibrary
