#include "core/SimTcpFace.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "core/SimLoopback.h"

namespace kavrosim {

SimTcpFace::SimTcpFace(SimController& controller, std::string address, int port, SimStreamDialect dialect)
    : SimFace(controller), wanted_(std::move(address)), port_(port), dialect_(dialect) {}

SimTcpFace::~SimTcpFace() { stop(); }

void SimTcpFace::start() {
    if (running()) return;
    auto stop = std::make_unique<SimStopSignal>();
    std::string address = wanted_;
    int fd = -1;
    if (address.empty()) {
        fd = listenOnFreeLoopback(port_, address);
    } else {
        fd = listenOn(address, port_);
        if (fd < 0 && errno == EINVAL) throw std::invalid_argument("'" + address + "' is not an IPv4 address");
        if (fd < 0) {
            throw std::runtime_error("cannot listen on " + address + ":" + std::to_string(port_) + ": " +
                                     std::strerror(errno));
        }
    }
    listenFd_ = fd;
    address_ = address;
    stop_ = std::move(stop);
    accepted_.store(0);
    thread_ = std::thread(&SimTcpFace::run, this);
}

void SimTcpFace::stop() {
    if (!running()) return;
    stop_->raise();
    thread_.join();
    close(listenFd_);
    listenFd_ = -1;
    stop_.reset();
}

void SimTcpFace::run() {
    while (!stop_->raised()) {
        pollfd watch[2] = {{listenFd_, POLLIN, 0}, {stop_->fd(), POLLIN, 0}};
        if (poll(watch, 2, -1) < 0 && errno != EINTR) return;
        if (stop_->raised()) return;
        if ((watch[0].revents & POLLIN) == 0) continue;
        const int client = accept4(listenFd_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (client < 0) continue;
        // Answers are small and the host waits for each one.
        const int on = 1;
        setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        accepted_.fetch_add(1);
        clientConnected_.store(true);
        const SimPumpEnd end = pumpStream({client, true}, controller(), dialect_, *stop_);
        close(client);
        clientConnected_.store(false);
        if (end == SimPumpEnd::Stopped) return;
    }
}

}  // namespace kavrosim
