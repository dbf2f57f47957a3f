// The controller's end of a USB interface module's serial clock: it gathers
// the bytes clocked out into request blocks, has the controller answer each
// one, and hands the answer out to the clock-ins that follow. A new request
// replaces an answer the host did not read to the end.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

#include "core/SimController.h"
#include "usb/SimSpiTarget.h"

namespace kavrosim {

class SimUsbBlockPort : public SimSpiTarget {
public:
    explicit SimUsbBlockPort(SimController& controller) : controller_(controller) {}

    void clockedOut(const std::uint8_t* bytes, std::size_t count) override;
    SimTimedBytes clockIn(std::size_t count) override;

    // Forgets a half-received request and an unread answer.
    void reset();

private:
    SimController& controller_;
    Bytes inbound_;
    Bytes answer_;
    std::size_t answerRead_ = 0;
    std::chrono::steady_clock::time_point answerReady_{};
};

}  // namespace kavrosim
