// A network connected over Ethernet to a simulated controller of its own,
// and small helpers for tests that drive whole bus-wide operations.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "MessageOf.h"

#include "KavroLibrary.h"
#include "core/KavroSim.h"
#include "links/NetworkConfiguration.h"

struct SimNetworkRig {
    kavrosim::SimController controller;
    kavrosim::SimEthernetFace face;
    // Declared last: the network says goodbye to the bus before the face stops.
    std::unique_ptr<KavroLibrary::KavroNetworkETHIM> network;

    explicit SimNetworkRig(kavrosim::SimControllerConfig config) : controller(std::move(config)), face(controller) {
        face.start();
        network = std::make_unique<KavroLibrary::KavroNetworkETHIM>(0, "Test network", face.address());
    }

    // Connected, to a controller that holds `modules`.
    SimNetworkRig(kavrosim::SimControllerConfig config, const std::vector<kavrosim::SimModule>& modules)
        : SimNetworkRig(std::move(config)) {
        for (const kavrosim::SimModule& module : modules) controller.addModule(module);
        connect();
    }

    void connect() {
        network->Connect();
        ASSERT_TRUE(network->IsConnected());
    }

    int operation() const { return network->Configuration()->ActiveOperation; }

    // Module commands logged with this code, in order.
    std::vector<kavrosim::SimRequest> logged(char code) const {
        std::vector<kavrosim::SimRequest> found;
        for (const kavrosim::SimRequest& request : controller.requestLog()) {
            if (request.kind == kavrosim::SimRequestKind::ModuleCommand && request.code() == code) {
                found.push_back(request);
            }
        }
        return found;
    }
};

inline kavrosim::SimModule simProbe(const std::string& identity, double value, double rangeMm = 2.0) {
    kavrosim::SimModule probe = kavrosim::SimModule::digitalProbe(identity, rangeMm);
    probe.setSignal(kavrosim::SimSignal::constant(value));
    return probe;
}

class Stopwatch {
public:
    std::chrono::milliseconds elapsed() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Looks at the condition every millisecond until it holds, for at most `bound`.
inline bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
