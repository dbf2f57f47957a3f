#include "Tool.h"

#include <chrono>
#include <thread>

namespace kavro_tool {

using namespace KavroLibrary;

std::atomic<bool> stopRequested{false};

std::string statusText(eKavroErrors error) {
    return error == eKavroErrors::NoError ? "ok" : eKavroErrors_ToString(error);
}

bool Tool::connect(const std::vector<NetworkChoice>& choices) {
    std::vector<KavroNetwork*> candidates;
    if (choices.empty()) {
        server.Networks()->FindNetworks();
        for (unsigned i = 0; i < server.Networks()->Count(); ++i) candidates.push_back(server.Networks()->Network(i));
    } else {
        for (const NetworkChoice& choice : choices) {
            owned.push_back(makeNetwork(choice, static_cast<int>(owned.size())));
            candidates.push_back(owned.back().get());
        }
    }
    connectAll(candidates);
    for (KavroNetwork* network : candidates) {
        if (network->IsConnected()) networks.push_back(network);
    }
    if (networks.empty()) {
        std::fprintf(stderr, "kavro: no network answers (%zu tried)\n", candidates.size());
        return false;
    }
    return true;
}

void Tool::findModules() {
    for (KavroNetwork* network : networks) {
        if (find == "none") continue;
        if (find == "ping") {
            network->Ping();
        } else if (find == "hotswap") {
            network->FindHotswapped();
        } else if (find == "notify") {
            // Modules that announce themselves (their button pressed) join
            // while the network listens.
            network->BeginNotifying();
            const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(wait);
            while (std::chrono::steady_clock::now() < end && !stopRequested) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
            network->CancelNotifying();
        } else {
            network->Load(find);
        }
    }
}

}  // namespace kavro_tool
