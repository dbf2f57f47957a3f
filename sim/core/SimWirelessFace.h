// The wireless interface module reached over TCP: a listener on an IPv4
// address and port carrying the serial interface module's framing, one
// client at a time.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>

#include "core/SimFace.h"
#include "core/SimLoopback.h"
#include "core/SimStopSignal.h"

namespace kavrosim {

class SimWirelessFace : public SimFace {
public:
    // An empty address picks a free loopback address at start().
    explicit SimWirelessFace(SimController& controller, std::string address = "", int port = kEthernetPort);
    ~SimWirelessFace() override;

    void start() override;
    void stop() override;
    bool running() const override { return thread_.joinable(); }
    // "a.b.c.d:port", the address a wireless network is given; once started.
    std::string location() const override;
    std::string describe() const override;

    const std::string& address() const { return address_; }
    int port() const { return port_; }
    std::size_t connectionsAccepted() const { return accepted_.load(); }

private:
    void run();

    std::string wanted_;
    std::string address_;
    int port_;
    int listenFd_ = -1;
    std::unique_ptr<SimStopSignal> stop_;
    std::thread thread_;
    std::atomic<std::size_t> accepted_{0};
};

}  // namespace kavrosim
