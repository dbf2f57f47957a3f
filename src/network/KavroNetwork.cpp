#include "KavroNetwork.h"

#include <utility>

#include "KavroDynamic.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"
#include "links/NetworkConfiguration.h"
#include "network/InitNetwork.h"

namespace KavroLibrary {

KavroNetwork::KavroNetwork(int networkNumber, std::string networkName)
    : config_(std::make_unique<NetworkConfiguration>(networkNumber, std::move(networkName))) {
    config_->InitNetworkHook = InitNetwork;
    config_->ResetAllSpeedsHook = ResetAllSpeeds;
    buffered_ = std::make_unique<NetworkBuffered>(this);
    difference_ = std::make_unique<NetworkDifference>(this);
    dynamic_ = std::make_unique<KavroDynamic>(this);
    config_->Dynamic = dynamic_.get();
}

KavroNetwork::~KavroNetwork() {
    ClearModules();
    retiredModules_.clear();
    buffered_.reset();
    difference_.reset();
    config_->Dynamic = nullptr;
    dynamic_.reset();
}

void KavroNetwork::Connect() {}

void KavroNetwork::Disconnect() {
    if (config_->Connected) ClearModules();
    config_->Connected = false;
}

std::string KavroNetwork::Description() const { return config_->Description; }
std::string KavroNetwork::NetworkName() const { return config_->NetworkName; }
void KavroNetwork::setNetworkName(std::string name) { config_->NetworkName = std::move(name); }
std::string KavroNetwork::ControllerID() const { return config_->ControllerID; }
eNetworkType KavroNetwork::NetworkType() const { return config_->NetworkType; }
bool KavroNetwork::IsConnected() const { return config_->Connected; }
eNetSpeed KavroNetwork::NetSpeed() const { return config_->NetSpeed; }
int KavroNetwork::MaximumAllowableNumberOfModules() const { return config_->MaxModules; }

int KavroNetwork::ModuleCount() const { return static_cast<int>(config_->Modules.size()); }

KavroModule* KavroNetwork::GetModule(unsigned int index) const {
    if (index >= config_->Modules.size()) return nullptr;
    return config_->Modules[index];
}

KavroModule* KavroNetwork::GetModuleByID(std::string id) const {
    for (KavroModule* module : config_->Modules) {
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
    for (const KavroModule* module : config_->Modules) {
        if (!module->DynamicCapable()) return false;
    }
    return true;
}

bool KavroNetwork::Dynamic2Capable() {
    if (!config_->Dynamic2Flag) return false;
    for (const KavroModule* module : config_->Modules) {
        if (!module->Dynamic2Capable()) return false;
    }
    return true;
}

bool KavroNetwork::DynamicExternalSourceCapable() { return config_->DynamicExternalSourceFlag; }

bool KavroNetwork::BufferedExternalSourceCapable() const { return config_->BufferedExternalSourceFlag; }

bool KavroNetwork::BufferedCapable() const {
    if (config_->Modules.empty()) return true;
    for (const KavroModule* module : config_->Modules) {
        if (module->BufferedCapable()) return true;
    }
    return false;
}

int KavroNetwork::ReadBurstCapableCount() const {
    if (!config_->ReadburstFlag) return 0;
    int count = 0;
    for (const KavroModule* module : config_->Modules) {
        if (!module->ReadburstCapable()) break;
        ++count;
    }
    return count;
}

bool KavroNetwork::ReadBurstCapable() const {
    if (!config_->ReadburstFlag) return false;
    if (config_->Modules.empty()) return true;
    return ReadBurstCapableCount() > 0;
}

void KavroNetwork::retireModule(KavroModule* module) { retiredModules_.emplace_back(module); }

}  // namespace KavroLibrary
