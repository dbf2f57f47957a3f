// A face carries a controller's requests over one kind of link. Each face
// runs its own thread between start() and stop(); stop() closes what it
// opened and joins the thread, and the destructor stops.
#pragma once

#include <string>

#include "core/SimController.h"

namespace kavrosim {

class SimFace {
public:
    explicit SimFace(SimController& controller) : controller_(controller) {}
    virtual ~SimFace() = default;
    SimFace(const SimFace&) = delete;
    SimFace& operator=(const SimFace&) = delete;

    // Throws std::runtime_error (or std::invalid_argument for a bad
    // setting) when the link cannot be opened; a running face is left as is.
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual bool running() const = 0;
    // Where a host reaches the controller: an IPv4 address or a device path.
    virtual std::string location() const = 0;
    // One line for people: "ethernet 127.0.0.1:10001".
    virtual std::string describe() const = 0;

    SimController& controller() const { return controller_; }

private:
    SimController& controller_;
};

}  // namespace kavrosim
