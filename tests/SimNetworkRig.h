// A network connected over Ethernet to a simulated controller on a free
// loopback address, with its modules added by identity, for the end-to-end
// tests of the acquisition modes.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "KavroNetworkETHIM.h"
#include "core/KavroSim.h"
#include "links/NetworkConfiguration.h"

namespace simrig {

inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

// Polls `condition` until it holds or `bound` passes.
inline bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

struct SimNetworkRig {
    kavrosim::SimController controller;
    kavrosim::SimEthernetFace face{controller};
    std::unique_ptr<KavroLibrary::KavroNetworkETHIM> network;

    // The controller offers Low only, so that connecting resets the bus once.
    explicit SimNetworkRig(const std::vector<kavrosim::SimModule>& modules) : controller(lowOnly()) {
        for (const kavrosim::SimModule& module : modules) controller.addModule(module);
        face.start();
        network = std::make_unique<KavroLibrary::KavroNetworkETHIM>(0, "Modes", face.address());
        network->Connect();
        EXPECT_TRUE(network->IsConnected());
        for (const kavrosim::SimModule& module : modules) network->AddModule(module.identity(), "");
        clearLog();
    }

    ~SimNetworkRig() {
        // A failed test may leave a mode running; the network must be idle to go.
        network->Configuration()->ActiveOperation = KavroLibrary::OperationIdle;
    }

    KavroLibrary::KavroModule* module(int index) const { return network->GetModule(static_cast<unsigned>(index)); }
    int activeOperation() const { return network->Configuration()->ActiveOperation; }

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
    std::uint64_t logStart_ = 0;

    static kavrosim::SimControllerConfig lowOnly() {
        kavrosim::SimControllerConfig config = kavrosim::SimControllerConfig::ethernet("ETHSIMMODE");
        config.speeds = {kavrosim::SimSpeed::Low};
        return config;
    }
};

inline kavrosim::SimModule probe(const std::string& identity, double rangeMm, int generation,
                                 const kavrosim::SimSignal& signal) {
    kavrosim::SimModule module = kavrosim::SimModule::digitalProbe(identity, rangeMm);
    module.setGeneration(generation);
    module.setSignal(signal);
    return module;
}

}  // namespace simrig
