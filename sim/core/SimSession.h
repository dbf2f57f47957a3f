// The controllers of a scenario, each behind its face: what kavro-sim runs,
// and what a test can start in one call.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "core/SimController.h"
#include "core/SimFace.h"
#include "core/SimScenario.h"

namespace kavrosim {

class SimSession {
public:
    // Builds the controllers and their faces; nothing listens yet. USB
    // controllers are left out: the stand-in D2XX library serves them in the
    // process that loads it.
    explicit SimSession(const SimScenario& scenario);
    ~SimSession();
    SimSession(const SimSession&) = delete;
    SimSession& operator=(const SimSession&) = delete;

    // Starts every face; when one fails, stops those already started and
    // rethrows its error.
    void start();
    void stop();

    std::size_t size() const { return controllers_.size(); }
    std::size_t usbControllersLeftOut() const { return usbControllers_; }
    SimController& controller(std::size_t index) { return *controllers_.at(index); }
    SimFace& face(std::size_t index) { return *faces_.at(index); }

    // Where each controller listens and what its bus holds, for people.
    std::string describe() const;

private:
    std::vector<std::unique_ptr<SimController>> controllers_;
    std::vector<std::unique_ptr<SimFace>> faces_;
    std::size_t usbControllers_ = 0;
};

}  // namespace kavrosim
