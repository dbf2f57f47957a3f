#include "Tool.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace kavro_tool {

using namespace KavroLibrary;

std::atomic<bool> stopRequested{false};

std::string statusText(eKavroErrors error) {
    return error == eKavroErrors::NoError ? "ok" : eKavroErrors_ToString(error);
}

void pause(double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    while (Clock::now() < end && !stopRequested) {
        std::this_thread::sleep_for(std::min<Clock::duration>(end - Clock::now(), std::chrono::milliseconds(20)));
    }
}

bool Tool::connect(const std::vector<NetworkChoice>& choices) {
    std::vector<KavroNetwork*> candidates;
    std::vector<std::string> usbIdentities;  // USB controllers chosen by identity: found, then picked
    for (const NetworkChoice& choice : choices) {
        if (choice.kind == NetworkChoice::Kind::Usb && !isUsbIndex(choice)) {
            usbIdentities.push_back(choice.where);
            continue;
        }
        owned.push_back(makeNetwork(choice, static_cast<int>(owned.size())));
        candidates.push_back(owned.back().get());
    }
    if (choices.empty() || !usbIdentities.empty()) {
        server.Networks()->FindNetworks();
        for (unsigned i = 0; i < server.Networks()->Count(); ++i) {
            KavroNetwork* found = server.Networks()->Network(i);
            if (choices.empty() || dynamic_cast<KavroNetworkUSBIM*>(found) != nullptr) {
                candidates.push_back(found);
            }
        }
    }
    connectAll(candidates);
    for (KavroNetwork* network : candidates) {
        if (!network->IsConnected()) continue;
        const bool named =
            std::any_of(owned.begin(), owned.end(), [network](const auto& mine) { return mine.get() == network; });
        const bool identified =
            std::find(usbIdentities.begin(), usbIdentities.end(), network->ControllerID()) != usbIdentities.end();
        const bool picked = choices.empty() || named || identified;
        if (picked) networks.push_back(network);
    }
    if (networks.empty()) {
        std::fprintf(stderr, "kavro: no network answers (%zu tried)\n", candidates.size());
        return false;
    }
    return true;
}

std::string Tool::label(const KavroNetwork* network) const {
    const auto found = std::find(networks.begin(), networks.end(), network);
    return label(static_cast<std::size_t>(found - networks.begin()));
}

Record Tool::recordFor(const KavroNetwork* network, const KavroModule& module) const {
    Record record;
    record.network = label(network);
    record.address = module.Address();
    record.identity = module.ModuleID();
    record.units = module.UnitsOfMeasure();
    return record;
}

void Tool::findModules() {
    if (find == "none") return;
    inParallel(networks, [this](KavroNetwork& network) {
        if (find == "ping") {
            network.Ping();
        } else if (find == "hotswap") {
            network.FindHotswapped();
        } else if (find == "notify") {
            // Modules that announce themselves (their button pressed) join
            // while the network listens.
            network.BeginNotifying();
            pause(wait);
            network.CancelNotifying();
        } else {
            network.Load(find);
        }
    });
}

}  // namespace kavro_tool
