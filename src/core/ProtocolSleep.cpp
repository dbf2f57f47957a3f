#include "core/ProtocolSleep.h"

#include <cerrno>
#include <ctime>

namespace KavroLibrary {

void protocolSleep(std::chrono::microseconds duration) {
#ifdef KAVRO_FUZZING
    // The fuzz programs feed replies, not a bus: pauses would only slow them.
    duration = std::chrono::microseconds(0);
#endif
    if (duration.count() <= 0) return;
    timespec wanted{};
    wanted.tv_sec = static_cast<time_t>(duration.count() / 1000000);
    wanted.tv_nsec = static_cast<long>((duration.count() % 1000000) * 1000);
    timespec left{};
    while (nanosleep(&wanted, &left) != 0 && errno == EINTR) wanted = left;
}

}  // namespace KavroLibrary
