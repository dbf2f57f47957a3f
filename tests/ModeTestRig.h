// The simulated network of the acquisition-mode tests: a controller offering
// Low only (connecting resets the bus once), its modules added by identity,
// and a look at the request log and at the modules' buffers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "SimNetworkRig.h"

struct ModeTestRig : SimNetworkRig {
    explicit ModeTestRig(const std::vector<kavrosim::SimModule>& modules) : SimNetworkRig(lowOnly(), modules) {
        for (const kavrosim::SimModule& module : modules) network->AddModule(module.identity(), "");
        clearLog();
    }

    ~ModeTestRig() {
        // A failed test may leave a mode running; the network must be idle to go.
        if (network) network->Configuration()->ActiveOperation = KavroLibrary::OperationIdle;
    }

    KavroLibrary::KavroModule* module(int index) const { return network->GetModule(static_cast<unsigned>(index)); }

    void clearLog() {
        logStart_ = controller.requestCount();
        controller.clearRequestLog();
    }

    // The codes of the module commands received since the log was cleared
    // ('*' for a controller request), once at least `atLeast` have arrived:
    // a broadcast has no answer, so the call that sent it may return first.
    std::string commandCodes(std::uint64_t atLeast = 0) const {
        EXPECT_TRUE(controller.waitForRequestCount(logStart_ + atLeast, std::chrono::seconds(5)));
        std::string codes;
        for (const kavrosim::SimRequest& request : controller.requestLog()) {
            codes += request.kind == kavrosim::SimRequestKind::ModuleCommand ? static_cast<char>(request.code()) : '*';
        }
        return codes;
    }

    // How many readings a simulated module holds now, worked out on a copy of
    // the bus so that the run itself is left alone.
    std::size_t heldNow(const std::string& identity) const {
        std::vector<kavrosim::SimModule> modules = controller.modules();
        kavrosim::SimBuffered::advance(modules, std::chrono::steady_clock::now());
        for (const kavrosim::SimModule& module : modules) {
            if (module.identity() == identity) return module.buffered().held();
        }
        return 0;
    }

private:
    static kavrosim::SimControllerConfig lowOnly() {
        kavrosim::SimControllerConfig config = kavrosim::SimControllerConfig::ethernet("ETHSIMMODE");
        config.speeds = {kavrosim::SimSpeed::Low};
        return config;
    }

    std::uint64_t logStart_ = 0;
};

inline kavrosim::SimModule modeProbe(const std::string& identity, double rangeMm, int generation,
                                     const kavrosim::SimSignal& signal) {
    kavrosim::SimModule module = kavrosim::SimModule::digitalProbe(identity, rangeMm);
    module.setGeneration(generation);
    module.setSignal(signal);
    return module;
}
