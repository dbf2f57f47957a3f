// A flag a face's thread can wait on together with its descriptors: stop()
// raises it, and every poll of the thread includes fd().
#pragma once

#include <atomic>
#include <chrono>

namespace kavrosim {

class SimStopSignal {
public:
    SimStopSignal();  // throws std::system_error when no descriptor is left
    ~SimStopSignal();
    SimStopSignal(const SimStopSignal&) = delete;
    SimStopSignal& operator=(const SimStopSignal&) = delete;

    void raise();
    bool raised() const { return raised_.load(); }
    int fd() const { return fd_; }
    // Waits for `wait` or until the signal is raised; true when raised.
    bool waitFor(std::chrono::milliseconds wait) const;

private:
    int fd_;
    std::atomic<bool> raised_{false};
};

}  // namespace kavrosim
