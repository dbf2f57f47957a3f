#include "NetworkDifference.h"

#include <stdexcept>

#include "KavroModuleDP.h"
#include "KavroNetwork.h"
#include "ModuleDifference.h"
#include "commands/KavroCommands.h"
#include "core/ProtocolSleep.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

NetworkDifference::NetworkDifference(KavroNetwork* network) : network_(network) {}

int NetworkDifference::Count() const {
    int count = 0;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        if (network_->GetModule(static_cast<unsigned int>(index))->Difference()->Enabled()) ++count;
    }
    return count;
}

void NetworkDifference::Start() {
    NetworkConfiguration* config = network_->Configuration();
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot start a difference operation whilst performing an kavro operation");
    }

    // Every check before the first command, so that a refusal leaves the bus untouched.
    std::vector<KavroModule*> enabled;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        KavroModule* module = network_->GetModule(static_cast<unsigned int>(index));
        if (!module->Difference()->Enabled()) continue;
        if (!module->DifferenceModeCapable()) {
            throw std::runtime_error("Difference enabled module is not difference mode capable!");
        }
        const auto* probe = dynamic_cast<const KavroModuleDP*>(module);
        if (probe != nullptr && probe->Resolution() != eResolution::res14Bit) {
            throw std::runtime_error(module->ModuleID() + " is not set to 14bit resolution.");
        }
        enabled.push_back(module);
    }
    if (enabled.empty()) throw std::runtime_error("No modules difference enabled");

    for (KavroModule* module : enabled) {
        KavroCommands::KavroDifference(config, module->Address());
        ModuleDifference* difference = module->Difference();
        difference->error_ = eKavroErrors::NoError;
        difference->status_ = eDifferenceModeStatus::Started;
    }
    KavroCommands::KavroStartDiff(config);
    protocolSleepMs(1);
    config->ActiveOperation = OperationDifference;
    status_ = eDifferenceModeStatus::Started;
}

void NetworkDifference::Stop() {
    NetworkConfiguration* config = network_->Configuration();
    if (config->ActiveOperation != OperationDifference) return;

    KavroCommands::KavroStopDiff(config);
    protocolSleepMs(1);
    std::vector<KavroModule*> enabled;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        KavroModule* module = network_->GetModule(static_cast<unsigned int>(index));
        if (module->Difference()->Enabled()) enabled.push_back(module);
    }
    for (KavroModule* module : enabled) {
        module->Difference()->ReadDifference();
        module->Difference()->status_ = eDifferenceModeStatus::Reset;
    }
    config->ActiveOperation = OperationIdle;
    status_ = eDifferenceModeStatus::Stopped;

    // One ordinary reading returns each module to normal reading; its value
    // is of no use and a refusal does not matter.
    for (KavroModule* module : enabled) {
        const eDifferenceMode mode = module->Difference()->Mode();
        if (mode == eDifferenceMode::Mode1) {
            KavroCommands::KavroRead1(config, module->Address());
        } else if (mode == eDifferenceMode::Mode2) {
            KavroCommands::KavroRead2(config, module->Address());
        }
    }
    protocolSleepMs(1);
}

}  // namespace KavroLibrary
