#include "KavroNetwork.h"

#include <utility>

#include "KavroDynamic.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"
#include "core/Diagnostics.h"
#include "links/NetworkConfiguration.h"
#include "network/InitNetwork.h"
#include "network/NotificationGate.h"

namespace KavroLibrary {

KavroNetwork::KavroNetwork(int networkNumber, std::string networkName)
    : config_(std::make_unique<NetworkConfiguration>(networkNumber, std::move(networkName))),
      notificationGate_(std::make_shared<NotificationGate>()) {
    config_->InitNetworkHook = InitNetwork;
    config_->ResetAllSpeedsHook = ResetAllSpeeds;
    buffered_ = std::make_unique<NetworkBuffered>(this);
    difference_ = std::make_unique<NetworkDifference>(this);
    dynamic_ = std::make_unique<KavroDynamic>(this);
    config_->Dynamic = dynamic_.get();
}

KavroNetwork::~KavroNetwork() {
    // The notification thread works on this network until it has ended.
    CancelNotifying();
    stopRunningMode();
    try {
        ClearModules();
    } catch (...) {
        // Another operation still runs (a dynamic run): let the modules go
        // without resetting the bus under it.
        config_->Connected = false;
        config_->ActiveOperation = OperationIdle;
        try {
            ClearModules();
        } catch (...) {
        }
    }
    retiredModules_.clear();
    buffered_.reset();
    difference_.reset();
    config_->Dynamic = nullptr;
    dynamic_.reset();
}

void KavroNetwork::Connect() {
    // A link lost on its own (a reconnect that failed) left the modules of a
    // bus that has since been reset: a new connection starts clean.
    if (!config_->Connected) ClearModules();
}

void KavroNetwork::Disconnect() {
    // A running notification ends first: its thread still uses the link.
    CancelNotifying();
    stopRunningMode();
    if (config_->Connected) ClearModules();
    config_->Connected = false;
}

void KavroNetwork::stopRunningMode() noexcept {
    // A dynamic run's threads use the link: they end before it closes.
    if (dynamic_) dynamic_->endRun();
    const int operation = config_->ActiveOperation;
    if (operation != OperationDifference && operation != OperationBuffered) return;
    try {
        if (operation == OperationDifference) {
            difference_->Stop();
        } else {
            buffered_->Stop();
        }
    } catch (const std::exception& error) {
        // The readings of the run are lost with the network; say why.
        diagnostic("Stopping the running mode: ", error.what());
    } catch (...) {
    }
    config_->ActiveOperation = OperationIdle;
}

std::string KavroNetwork::Description() const { return config_->Description; }
std::string KavroNetwork::NetworkName() const { return config_->NetworkName; }
void KavroNetwork::setNetworkName(std::string name) { config_->NetworkName = std::move(name); }
std::string KavroNetwork::ControllerID() const { return config_->ControllerID; }
int KavroNetwork::ControllerFirmware() const { return config_->ControllerValue; }
eNetworkType KavroNetwork::NetworkType() const { return config_->NetworkType; }
bool KavroNetwork::IsConnected() const { return config_->Connected; }
eNetSpeed KavroNetwork::NetSpeed() const { return config_->NetSpeed; }
int KavroNetwork::MaximumAllowableNumberOfModules() const { return config_->MaxModules; }

std::vector<KavroModule*> KavroNetwork::moduleSnapshot() const {
    std::lock_guard<std::mutex> guard(modulesLock_);
    return config_->Modules;
}

void KavroNetwork::publishModule(KavroModule* module) {
    std::lock_guard<std::mutex> guard(modulesLock_);
    config_->Modules.push_back(module);
}

int KavroNetwork::ModuleCount() const {
    std::lock_guard<std::mutex> guard(modulesLock_);
    return static_cast<int>(config_->Modules.size());
}

KavroModule* KavroNetwork::GetModule(unsigned int index) const {
    std::lock_guard<std::mutex> guard(modulesLock_);
    if (index >= config_->Modules.size()) return nullptr;
    return config_->Modules[index];
}

KavroModule* KavroNetwork::GetModuleByID(std::string id) const {
    for (KavroModule* module : moduleSnapshot()) {
        if (module->ModuleID() == id) return module;
    }
    return nullptr;
}

int KavroNetwork::GetModuleIndexByID(std::string id) const {
    const KavroModule* module = GetModuleByID(std::move(id));
    return module == nullptr ? -1 : module->Address() - 1;
}

bool KavroNetwork::DynamicCapable() {
    if (!config_->DynamicFlag) return false;
    for (const KavroModule* module : moduleSnapshot()) {
        if (!module->DynamicCapable()) return false;
    }
    return true;
}

bool KavroNetwork::Dynamic2Capable() {
    if (!config_->Dynamic2Flag) return false;
    for (const KavroModule* module : moduleSnapshot()) {
        if (!module->Dynamic2Capable()) return false;
    }
    return true;
}

bool KavroNetwork::DynamicExternalSourceCapable() { return config_->DynamicExternalSourceFlag; }

bool KavroNetwork::BufferedExternalSourceCapable() const { return config_->BufferedExternalSourceFlag; }

bool KavroNetwork::BufferedCapable() const {
    const std::vector<KavroModule*> modules = moduleSnapshot();
    if (modules.empty()) return true;
    for (const KavroModule* module : modules) {
        if (module->BufferedCapable()) return true;
    }
    return false;
}

int KavroNetwork::ReadBurstCapableCount() const {
    if (!config_->ReadburstFlag) return 0;
    int count = 0;
    for (const KavroModule* module : moduleSnapshot()) {
        if (!module->ReadburstCapable()) break;
        ++count;
    }
    return count;
}

bool KavroNetwork::ReadBurstCapable() const {
    if (!config_->ReadburstFlag) return false;
    if (ModuleCount() == 0) return true;
    return ReadBurstCapableCount() > 0;
}

void KavroNetwork::retireModule(KavroModule* module) {
    // Its old address belongs to another module now, or soon: a read through
    // a pointer the application kept must not return that module's reading.
    module->setAddress(0);
    retiredModules_.emplace_back(module);
}

}  // namespace KavroLibrary
