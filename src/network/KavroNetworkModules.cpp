// Adding, deleting and clearing the modules of a network.
#include <stdexcept>

#include "KavroModuleAGM.h"
#include "KavroModuleDP.h"
#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "links/LinkDispatch.h"
#include "links/NetworkConfiguration.h"
#include "modules/ModuleIdentification.h"
#include "network/ModuleFactory.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

void KavroNetwork::AddModule(std::string id, std::string name) {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro!");
    if (config_->ActiveOperation >= OperationNotifyEnding) {
        throw std::runtime_error("Cannot add a module during an Kavro operation");
    }
    const eNetSpeed previous = config_->NetSpeed;
    setNetSpeed(eNetSpeed::Low);
    eKavroErrors error = eKavroErrors::NoError;
    try {
        error = AddModuleInternal(id, name);
    } catch (...) {
        // A refused addition still leaves the bus as it found it.
        if (SpeedAvailable(previous)) setNetSpeed(previous);
        throw;
    }
    if (SpeedAvailable(previous)) setNetSpeed(previous);
    if (error != eKavroErrors::NoError) {
        throw std::runtime_error("Module Identity " + id + ". Unable to add module.");
    }
}

eKavroErrors KavroNetwork::AddModuleInternal(std::string id, std::string name) {
    if (ModuleCount() >= config_->MaxModules) throw std::runtime_error("Network module limit exceeded.");
    if (GetModuleByID(id) != nullptr) {
        throw std::runtime_error("Attempting to add a duplicate module to the network");
    }
    const int address = ModuleCount() + 1;
    const KavroValueResult addressed = KavroCommands::KavroSetAddr(config_.get(), id, address);
    if (addressed.LinkStatus != 0) return static_cast<eKavroErrors>(addressed.LinkStatus);

    auto readType = std::make_unique<KavroReadType>();
    IdentifyModule(config_.get(), address, id, *readType);
    std::unique_ptr<KavroModule> module = CreateModule(readType->ModuleType, config_.get(), address);
    module->setModuleName(name);
    module->setReadType(std::move(readType));
    setModuleCapabilities(module.get());
    if (auto* probe = dynamic_cast<KavroModuleDP*>(module.get())) probe->readDefaultAveraging();
    if (auto* airGauge = dynamic_cast<KavroModuleAGM*>(module.get())) agm_init(airGauge);

    publishModule(module.release());
    return eKavroErrors::NoError;
}

void KavroNetwork::DeleteModule(int index) {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro.");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot delete a module whilst performing an Kavro operation.");
    }
    if (index < 0 || index >= ModuleCount()) throw std::runtime_error("Invalid module index.");

    KavroCommands::KavroClr(config_.get(), index + 1);
    // Addresses stay without gaps: every later module moves down one.
    std::vector<KavroModule*>& modules = config_->Modules;
    for (std::size_t later = static_cast<std::size_t>(index) + 1; later < modules.size(); ++later) {
        KavroModule* module = modules[later];
        const int newAddress = module->Address() - 1;
        KavroCommands::KavroSetAddr(config_.get(), module->ModuleID(), newAddress);
        module->setAddress(newAddress);
    }
    KavroModule* removed = modules[static_cast<std::size_t>(index)];
    {
        std::lock_guard<std::mutex> guard(modulesLock_);
        modules.erase(modules.begin() + index);
    }
    retireModule(removed);
}

void KavroNetwork::DeleteModule(std::string id) {
    const KavroModule* module = GetModuleByID(id);
    if (module != nullptr) DeleteModule(module->Address() - 1);
}

void KavroNetwork::ClearModules() {
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot clear modules whilst performing an Kavro operation.");
    }
    std::vector<KavroModule*> modules;
    {
        std::lock_guard<std::mutex> guard(modulesLock_);
        modules.swap(config_->Modules);
    }
    while (!modules.empty()) {
        delete modules.back();
        modules.pop_back();
    }
    // Without an open link there is no bus to reset.
    if (!config_->Connected) return;
    KavroCommands::KavroRst(config_.get());
    ControllerSetSpeed(config_.get(), config_->NetSpeed);
}

}  // namespace KavroLibrary
