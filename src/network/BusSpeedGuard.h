// A bus-wide operation runs at Low and leaves the bus at the speed it found,
// when the modules then on the bus still have it; also when the operation
// ends with an exception.
#pragma once

#include "KavroNetwork.h"

namespace KavroLibrary {

class BusSpeedGuard {
public:
    explicit BusSpeedGuard(KavroNetwork& network) : network_(network), previous_(network.NetSpeed()) {
        network_.setNetSpeed(eNetSpeed::Low);
    }
    ~BusSpeedGuard() {
        if (restored_) return;
        try {
            restore();
        } catch (...) {
            // Already leaving with the operation's own error; that one tells more.
        }
    }
    BusSpeedGuard(const BusSpeedGuard&) = delete;
    BusSpeedGuard& operator=(const BusSpeedGuard&) = delete;

    void restore() {
        restored_ = true;
        if (network_.SpeedAvailable(previous_)) network_.setNetSpeed(previous_);
    }

private:
    KavroNetwork& network_;
    const eNetSpeed previous_;
    bool restored_ = false;
};

}  // namespace KavroLibrary
