// Pauses that belong to the bus protocol. A pause that a signal interrupts is
// resumed for the time left, so the next command never goes out early.
#pragma once

#include <chrono>

namespace KavroLibrary {

void protocolSleep(std::chrono::microseconds duration);

inline void protocolSleepMs(long milliseconds) { protocolSleep(std::chrono::milliseconds(milliseconds)); }

}  // namespace KavroLibrary
