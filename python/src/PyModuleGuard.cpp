#include "PyModuleGuard.h"

#include <mutex>
#include <stdexcept>
#include <string>
#include <typeindex>
#include <unordered_map>

#include "KavroModule.h"
#include "KavroNetwork.h"

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

void ensureModule(const KavroModule* module) {
    HandedOut handedOut{nullptr, {}, std::type_index(typeid(void))};
    {
        std::lock_guard<std::mutex> guard(lock);
        const auto found = modules().find(module);
        if (found == modules().end()) return;
        handedOut = found->second;
    }
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
