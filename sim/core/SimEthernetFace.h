// The Ethernet interface module: a TCP listener on an IPv4 address, port
// 10001, with the Ethernet framing.
#pragma once

#include <string>

#include "core/SimTcpFace.h"

namespace kavrosim {

class SimEthernetFace : public SimTcpFace {
public:
    // An empty address picks a free loopback address at start().
    explicit SimEthernetFace(SimController& controller, std::string address = "");
    ~SimEthernetFace() override;

    std::string location() const override { return address(); }  // once started
    std::string describe() const override;
};

}  // namespace kavrosim
