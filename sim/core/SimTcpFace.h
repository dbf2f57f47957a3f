// A controller face served over TCP: a listener on an IPv4 address and port,
// one client at a time (others wait in the backlog until the current one
// goes), carrying one of the stream dialects.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>

#include "core/SimFace.h"
#include "core/SimStopSignal.h"
#include "core/SimStreamPump.h"

namespace kavrosim {

class SimTcpFace : public SimFace {
public:
    ~SimTcpFace() override;

    void start() override;
    void stop() override;
    bool running() const override { return thread_.joinable(); }

    const std::string& address() const { return address_; }  // once started
    int port() const { return port_; }
    // Connections accepted since start, and whether one is open now.
    std::size_t connectionsAccepted() const { return accepted_.load(); }
    bool clientConnected() const { return clientConnected_.load(); }

protected:
    // An empty address picks a free loopback address at start().
    SimTcpFace(SimController& controller, std::string address, int port, SimStreamDialect dialect);

private:
    void run();

    std::string wanted_;
    std::string address_;
    int port_;
    SimStreamDialect dialect_;
    int listenFd_ = -1;
    std::unique_ptr<SimStopSignal> stop_;
    std::thread thread_;
    std::atomic<std::size_t> accepted_{0};
    std::atomic<bool> clientConnected_{false};
};

}  // namespace kavrosim
