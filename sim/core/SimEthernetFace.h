// The Ethernet interface module: a TCP listener on an IPv4 address, port
// 10001, serving one client at a time (others wait in the backlog until
// the current one goes).
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>

#include "core/SimFace.h"
#include "core/SimStopSignal.h"

namespace kavrosim {

class SimEthernetFace : public SimFace {
public:
    // An empty address picks a free loopback address at start().
    explicit SimEthernetFace(SimController& controller, std::string address = "");
    ~SimEthernetFace() override;

    void start() override;
    void stop() override;
    bool running() const override { return thread_.joinable(); }
    std::string location() const override { return address_; }  // once started
    std::string describe() const override;

    const std::string& address() const { return address_; }
    int port() const;
    // Connections accepted since start, and whether one is open now.
    std::size_t connectionsAccepted() const { return accepted_.load(); }
    bool clientConnected() const { return clientConnected_.load(); }

private:
    void run();

    std::string wanted_;
    std::string address_;
    int listenFd_ = -1;
    std::unique_ptr<SimStopSignal> stop_;
    std::thread thread_;
    std::atomic<std::size_t> accepted_{0};
    std::atomic<bool> clientConnected_{false};
};

}  // namespace kavrosim
