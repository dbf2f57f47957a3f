// What sits on the far side of the MPSSE engine's serial clock: the
// controller of a USB interface module. Bytes clocked out reach it; a
// clock-in takes what it has ready for the host.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

#include "core/SimBytes.h"

namespace kavrosim {

// Bytes on their way to the host and the moment they get there.
struct SimTimedBytes {
    Bytes bytes;
    std::chrono::steady_clock::time_point ready{};
};

class SimSpiTarget {
public:
    virtual ~SimSpiTarget() = default;
    virtual void clockedOut(const std::uint8_t* bytes, std::size_t count) = 0;
    // At most `count` bytes: fewer, or none, when the target has nothing
    // more to say (a lost or cut answer).
    virtual SimTimedBytes clockIn(std::size_t count) = 0;
};

}  // namespace kavrosim
