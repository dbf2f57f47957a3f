// Renumbering the modules of a network (remap) and clearing the addressing
// of the whole bus.
#include <algorithm>
#include <stdexcept>

#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "links/LinkDispatch.h"
#include "links/NetworkConfiguration.h"
#include "network/BusSpeedGuard.h"

namespace KavroLibrary {

bool ModuleAddressOrder(KavroModule* first, KavroModule* second) { return first->Address() < second->Address(); }

bool ModuleReMapOrder(KavroModule* first, KavroModule* second) { return first->RemapIndex() < second->RemapIndex(); }

void KavroNetwork::ApplyRemap() {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Network must be idle before starting a remap operation.");
    }
    const std::vector<KavroModule*> byAddress = moduleSnapshot();
    const int count = static_cast<int>(byAddress.size());
    std::vector<KavroModule*> byIndex = byAddress;
    std::stable_sort(byIndex.begin(), byIndex.end(), ModuleReMapOrder);
    for (std::size_t i = 0; i < byIndex.size(); ++i) {
        const int index = byIndex[i]->RemapIndex();
        if (index < -1 || index >= count) throw std::runtime_error("Remap index invalid.");
        if (i > 0 && index != -1 && index == byIndex[i - 1]->RemapIndex()) {
            throw std::runtime_error("Duplicate remap index");
        }
    }

    // Wanted positions first; the modules without one fill the gaps, lowest
    // gap first, keeping their present order.
    std::vector<KavroModule*> order(byAddress.size(), nullptr);
    for (KavroModule* module : byAddress) {
        if (module->RemapIndex() >= 0) order[static_cast<std::size_t>(module->RemapIndex())] = module;
    }
    std::size_t gap = 0;
    for (KavroModule* module : byAddress) {
        if (module->RemapIndex() >= 0) continue;
        while (order[gap] != nullptr) ++gap;
        order[gap] = module;
    }

    BusSpeedGuard speed(*this);
    for (std::size_t position = 0; position < order.size(); ++position) {
        KavroModule* module = order[position];
        const int address = static_cast<int>(position) + 1;
        if (module->Address() != address) KavroCommands::KavroSetAddr(config_.get(), module->ModuleID(), address);
        module->setAddress(address);
        module->setRemapIndex(-1);
    }
    {
        std::lock_guard<std::mutex> guard(modulesLock_);
        std::stable_sort(config_->Modules.begin(), config_->Modules.end(), ModuleAddressOrder);
    }
    speed.restore();
}

void KavroNetwork::ClearTCons() {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro.");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot clear tcons whilst performing an Kavro operation.");
    }
    // A module left at any speed hears the clear at that speed.
    for (const eNetSpeed speed : config_->ControllerSpeeds) {
        ControllerSetSpeed(config_.get(), speed);
        KavroCommands::KavroClearTCon(config_.get());
        KavroCommands::KavroRst(config_.get());
    }
    ControllerSetSpeed(config_.get(), config_->NetSpeed);

    std::vector<KavroModule*> cleared;
    {
        std::lock_guard<std::mutex> guard(modulesLock_);
        cleared.swap(config_->Modules);
    }
    // Left alive, as a deleted module is: the application may still hold them.
    for (KavroModule* module : cleared) retireModule(module);
}

}  // namespace KavroLibrary
