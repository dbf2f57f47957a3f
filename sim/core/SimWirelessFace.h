// The wireless interface module reached over TCP: a listener on an IPv4
// address and port carrying the serial interface module's framing (the radio
// link carries the serial line's frames: no trailing bytes).
#pragma once

#include <string>

#include "core/SimLoopback.h"
#include "core/SimTcpFace.h"

namespace kavrosim {

class SimWirelessFace : public SimTcpFace {
public:
    // An empty address picks a free loopback address at start().
    explicit SimWirelessFace(SimController& controller, std::string address = "", int port = kEthernetPort);
    ~SimWirelessFace() override;

    // "a.b.c.d:port", the address a wireless network is given; once started.
    std::string location() const override;
    std::string describe() const override;
};

}  // namespace kavrosim
