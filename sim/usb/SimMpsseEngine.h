// The MPSSE engine of an FTDI high-speed channel, as far as the USB
// interface module uses it: clock bytes out and in, wait for the
// controller, pin and clock set-up, and the "bad command" answer to any
// instruction it does not know. Instructions may be split across writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/SimBytes.h"
#include "usb/SimSpiTarget.h"

namespace kavrosim {

class SimMpsseEngine {
public:
    // The answer to an unknown instruction: this byte, then the instruction.
    static constexpr std::uint8_t kBadCommand = 0xFA;

    // Back to the state after the bit mode is set: pins inputs, base clock
    // divided by 5, no loop-back, nothing half-received.
    void reset();

    // Runs the instructions in `bytes`; what they send to the host is
    // appended to `toHost`. A target of null is a channel wired to nothing.
    void run(const std::uint8_t* bytes, std::size_t count, SimSpiTarget* target, std::vector<SimTimedBytes>& toHost);

    // Drops a half-received instruction (a purge of the transmit side).
    void dropPending() { pending_.clear(); }

    // The serial clock reaches the controller only when clock, data out
    // and chip select are outputs and the loop-back is off.
    bool wired() const;
    unsigned clockDivisor() const { return divisor_; }
    bool divideBy5() const { return divideBy5_; }
    std::uint8_t lowValue() const { return lowValue_; }
    std::uint8_t lowDirection() const { return lowDirection_; }
    std::uint8_t highValue() const { return highValue_; }
    std::uint8_t highDirection() const { return highDirection_; }

private:
    // Bytes the instruction at `at` takes, or 0 while it is incomplete.
    std::size_t instructionSize(std::size_t at) const;
    void execute(std::size_t at, std::size_t size, SimSpiTarget* target, std::vector<SimTimedBytes>& toHost);

    Bytes pending_;
    bool loopback_ = false;
    bool divideBy5_ = true;
    unsigned divisor_ = 0;
    std::uint8_t lowValue_ = 0;
    std::uint8_t lowDirection_ = 0;
    std::uint8_t highValue_ = 0;
    std::uint8_t highDirection_ = 0;
};

}  // namespace kavrosim
