#include "PyModuleGuard.h"

#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <string>
#include <typeindex>
#include <unordered_map>

#include "KavroModule.h"
#include "KavroNetwork.h"
#include "KavroNetworks.h"

namespace kavro_python {

using namespace KavroLibrary;

namespace {

struct HandedOut {
    const KavroNetwork* network;
    std::string identity;
    std::type_index type;
};

std::mutex lock;
// Never shrinks: one entry per module and part ever handed out, by address.
std::unordered_map<const KavroModule*, HandedOut>& modules() {
    static auto* handedOut = new std::unordered_map<const KavroModule*, HandedOut>();
    return *handedOut;
}
std::unordered_map<const void*, const KavroModule*>& parts() {
    static auto* handedOut = new std::unordered_map<const void*, const KavroModule*>();
    return *handedOut;
}

struct NetworkHandedOut {
    const KavroNetworks* collection;
    std::uint64_t generation;
};
// How often each collection has found its networks (through Python).
std::unordered_map<const KavroNetworks*, std::uint64_t>& generations() {
    static auto* found = new std::unordered_map<const KavroNetworks*, std::uint64_t>();
    return *found;
}
std::unordered_map<const KavroNetwork*, NetworkHandedOut>& networks() {
    static auto* handedOut = new std::unordered_map<const KavroNetwork*, NetworkHandedOut>();
    return *handedOut;
}
std::unordered_map<const void*, const KavroNetwork*>& networkParts() {
    static auto* handedOut = new std::unordered_map<const void*, const KavroNetwork*>();
    return *handedOut;
}

}  // namespace

void rememberModule(const KavroModule* module, const KavroNetwork* network) {
    if (module == nullptr) return;
    std::lock_guard<std::mutex> guard(lock);
    modules().insert_or_assign(module, HandedOut{network, module->ModuleID(), std::type_index(typeid(*module))});
}

void rememberPart(const void* part, const KavroModule* module) {
    if (part == nullptr) return;
    std::lock_guard<std::mutex> guard(lock);
    parts().insert_or_assign(part, module);
}

void rememberPartOf(const void* part, const void* parent) {
    if (part == nullptr) return;
    std::lock_guard<std::mutex> guard(lock);
    const auto found = parts().find(parent);
    if (found != parts().end()) parts().insert_or_assign(part, found->second);
}

void rememberNetwork(const KavroNetwork* network, const KavroNetworks* collection) {
    if (network == nullptr) return;
    std::lock_guard<std::mutex> guard(lock);
    networks().insert_or_assign(network, NetworkHandedOut{collection, generations()[collection]});
}

void renewingNetworks(const KavroNetworks* collection) {
    std::lock_guard<std::mutex> guard(lock);
    ++generations()[collection];
}

void rememberNetworkPart(const void* part, const KavroNetwork* network) {
    if (part == nullptr) return;
    std::lock_guard<std::mutex> guard(lock);
    networkParts().insert_or_assign(part, network);
}

void ensureNetwork(const KavroNetwork* network) {
    std::lock_guard<std::mutex> guard(lock);
    const auto found = networks().find(network);
    if (found == networks().end()) return;
    // Only finding networks replaces them, and a new one may take an old one's address.
    if (found->second.generation != generations()[found->second.collection]) {
        throw std::runtime_error("This network is no longer in the collection: its networks were found again.");
    }
}

void ensureNetworkPart(const void* part) {
    const KavroNetwork* network = nullptr;
    {
        std::lock_guard<std::mutex> guard(lock);
        const auto found = networkParts().find(part);
        if (found == networkParts().end()) return;
        network = found->second;
    }
    ensureNetwork(network);
}

void ensureModule(const KavroModule* module) {
    HandedOut handedOut{nullptr, {}, std::type_index(typeid(void))};
    {
        std::lock_guard<std::mutex> guard(lock);
        const auto found = modules().find(module);
        if (found == modules().end()) return;
        handedOut = found->second;
    }
    ensureNetwork(handedOut.network);
    // The same address may hold another module by now: same kind and identity too.
    for (int i = 0; i < handedOut.network->ModuleCount(); ++i) {
        if (handedOut.network->GetModule(static_cast<unsigned int>(i)) == module &&
            std::type_index(typeid(*module)) == handedOut.type && module->ModuleID() == handedOut.identity) {
            return;
        }
    }
    throw std::runtime_error("Module " + handedOut.identity + " is no longer on its network.");
}

void ensurePart(const void* part) {
    const KavroModule* module = nullptr;
    {
        std::lock_guard<std::mutex> guard(lock);
        const auto found = parts().find(part);
        if (found == parts().end()) return;
        module = found->second;
    }
    ensureModule(module);
}

}  // namespace kavro_python
