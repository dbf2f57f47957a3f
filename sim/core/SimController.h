// A simulated controller (interface module): it answers the controller
// requests, carries module commands to its bus, and applies the faults a
// test scripted. It does not know which face (Ethernet, serial, USB)
// carries its requests: a face decodes a SimRequest, calls handle() and
// frames the SimAnswer.
//
// Thread-safe: a face calls handle() from its own thread while a test
// changes modules and faults or reads the request log from another.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/SimBus.h"
#include "core/SimControllerConfig.h"
#include "core/SimDynamicStream.h"
#include "core/SimFault.h"
#include "core/SimModule.h"
#include "core/SimRequest.h"
#include "core/SimSignal.h"
#include "core/SimSpeed.h"

namespace kavrosim {

class SimController {
public:
    using Clock = std::chrono::steady_clock;

    // Throws std::invalid_argument when the configuration does not fit.
    explicit SimController(SimControllerConfig config);
    SimController(const SimController&) = delete;
    SimController& operator=(const SimController&) = delete;

    const SimControllerConfig& config() const { return config_; }

    // --- The bus. Functions taking an identity throw std::invalid_argument
    // when no module has it.
    void addModule(SimModule module);
    // Plugs a module in that addresses itself: it takes the address after
    // the highest one in use, at speed Low.
    void hotPlug(SimModule module);
    bool removeModule(const std::string& identity);
    // The replacement takes the old module's place on the bus.
    void replaceModule(const std::string& identity, SimModule replacement);
    void clearModules();
    std::vector<SimModule> modules() const;
    std::optional<SimModule> module(const std::string& identity) const;
    // Changes one module under the controller's lock.
    void updateModule(const std::string& identity, const std::function<void(SimModule&)>& change);
    void setSignal(const std::string& identity, SimSignal signal);
    // The module answers the next notify.
    void announce(const std::string& identity);
    SimSpeed busSpeed() const;
    // Whether a dynamic stream runs, and how many reading sets it has sent.
    bool streaming() const;
    std::int64_t setsStreamed() const;

    // --- Faults, applied to requests in the order they were injected.
    void injectFault(const SimFault& fault);
    void clearFaults();
    std::size_t pendingFaults() const;

    // --- Every request received, oldest first (the oldest are dropped
    // beyond the log limit, 10000 by default).
    std::vector<SimRequest> requestLog() const;
    void clearRequestLog();
    void setRequestLogLimit(std::size_t entries);
    // Requests received since construction; clearing the log keeps counting.
    std::uint64_t requestCount() const;
    // Waits until `count` requests have been received in all, for at most
    // `bound`; false when the bound passed first.
    bool waitForRequestCount(std::uint64_t count, std::chrono::milliseconds bound) const;

    // --- Called with every request and its answer, under the controller's
    // lock (keep it short); kavro-sim's --trace prints them.
    using Observer = std::function<void(const SimRequest&, const SimAnswer&)>;
    void setObserver(Observer observer);

    // --- The faces' entry: logs the request and answers it.
    SimAnswer handle(SimRequest request);

private:
    SimModule& existing(const std::string& identity);
    SimAnswer answerModuleCommand(const SimRequest& request, const std::optional<SimFault>& fault);
    SimAnswer answerControllerRequest(const SimRequest& request, const std::optional<SimFault>& fault);
    SimAnswer respond(const SimRequest& request);
    SimAnswer answerDynamic(const SimRequest& request, const std::optional<SimFault>& fault);

    const SimControllerConfig config_;
    mutable std::mutex mutex_;
    mutable std::condition_variable logged_;
    SimBus bus_;
    SimSpeed speed_ = SimSpeed::Low;
    SimFaultList faults_;
    SimDynamicStream stream_;
    std::deque<SimRequest> log_;
    std::size_t logLimit_ = 10000;
    std::uint64_t requestCount_ = 0;
    Observer observer_;
};

}  // namespace kavrosim
