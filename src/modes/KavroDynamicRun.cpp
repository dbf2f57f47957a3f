// Dynamic mode: validation of the settings against the network and its
// modules, preparing the modules, and starting and stopping a run.
#include <memory>
#include <stdexcept>
#include <vector>

#include "KavroDynamic.h"
#include "KavroDynamicData.h"
#include "KavroModuleDP.h"
#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "core/ProtocolSleep.h"
#include "links/DynamicStream.h"
#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

constexpr int kCustomRateIntervalFloor = 256;  // µs, for small custom collections

}  // namespace

void KavroDynamic::setMasterIndex(int index) {
    dynamicAllowChange();
    const int previous = masterIndex_;
    masterIndex_ = index;
    const std::string complaint = ValidateDynamic_AddressOfModuleMaster();
    if (!complaint.empty()) {
        masterIndex_ = previous;
        throw std::runtime_error(complaint);
    }
}

void KavroDynamic::setNumberOfModules(int count) {
    dynamicAllowChange();
    const std::string complaint = ValidateDynamic_NumModules(count);
    if (!complaint.empty()) throw std::runtime_error(complaint);
    numberOfModules_ = count;
}

void KavroDynamic::setDynamicMode(eDynamicMode mode) {
    dynamicAllowChange();
    if (!network_->DynamicCapable() && !network_->Dynamic2Capable()) {
        throw std::runtime_error("Current network configuration not dynamic capable.");
    }
    const std::string complaint = ValidateDynamic_Mode(mode);
    if (!complaint.empty()) throw std::runtime_error(complaint);
    dynamicMode_ = mode;
}

void KavroDynamic::setEnabled(bool enabled) {
    dynamicAllowChange();
    if (!enabled) {
        enabled_ = false;
        return;
    }
    enabled_ = true;
    const std::string complaint = ValidateDynamic();
    if (!complaint.empty()) {
        enabled_ = false;
        throw std::runtime_error(complaint);
    }
}

std::string KavroDynamic::ValidateDynamic_NumModules(int count) const {
    const unsigned int n = static_cast<unsigned int>(count);
    if (n == 0) return "A dynamic collection requires at least one module\n";
    if (n > static_cast<unsigned int>(network_->ModuleCount())) {
        return "The number of modules in the dynamic collection exceeds the number of modules on the network.\n";
    }
    return std::string();
}

std::string KavroDynamic::ValidateDynamic_Mode(eDynamicMode mode) const {
    switch (mode) {
        case eDynamicMode::Normal:
            return std::string();
        case eDynamicMode::LinkedMaster:
            return "Linked master is not supported by this library.\n";
        case eDynamicMode::LinkedSlave:
            return "Linked slave is not supported by this library.\n";
        case eDynamicMode::External:
            if (network_->DynamicExternalSourceCapable()) return std::string();
            return "Controller does not support external master mode.\n";
    }
    return "Dynamic Mode is invalid.\n";
}

std::string KavroDynamic::ValidateDynamic_AddressOfModuleMaster() const {
    const int m = masterIndex_;
    if (m == -1) return std::string();
    if (m < -1 || m >= network_->ModuleCount()) return "No module at the dynamic master index.\n";
    if (m < numberOfModules_) {
        return "Dynamic external master index must be greater than the index of the last module in the "
               "collection.\n";
    }
    KavroModule* master = network_->GetModule(static_cast<unsigned int>(m));
    if (master == nullptr || !master->DynamicMasterCapable()) {
        return "Module at the dynamic master index is not dynamic master capable.\n";
    }
    return std::string();
}

std::string KavroDynamic::ValidateDynamic_Rate(eDynamicRate rate) const {
    int limit = 0;
    bool capable = false;
    std::string incapable = "This Configuration of networks and modules is not dynamic capable.\n";
    switch (rate) {
        case eDynamicRate::Rate4K:
            limit = 8;
            capable = network_->DynamicCapable();
            break;
        case eDynamicRate::Rate2K:
            limit = 16;
            capable = network_->DynamicCapable();
            break;
        case eDynamicRate::Rate1K:
            limit = 31;
            capable = network_->DynamicCapable();
            break;
        case eDynamicRate::Dynamic2Custom:
            limit = 200;
            capable = network_->Dynamic2Capable();
            incapable = "This Configuration of networks and modules is not dynamic2 capable.\n";
            break;
        default:
            return "Invalid dynamic rate.\n";
    }
    std::string complaints;
    if (numberOfModules_ > limit) complaints += "Too Many modules for this dynamic mode.\n";
    if (!capable) complaints += incapable;
    if (rate == eDynamicRate::Dynamic2Custom) complaints += ValidateDynamic_Time();
    return complaints;
}

std::string KavroDynamic::ValidateDynamic_Time() const {
    return ValidateInterval(dynamicInterval_) ? std::string() : "Dynamic Reading Interval Too Short";
}

std::string KavroDynamic::ValidateDynamic_NetSpeed(eNetSpeed speed) const {
    if (dynamicRate_ == eDynamicRate::Dynamic2Custom) {
        return speed == eNetSpeed::Low ? "Dynamic 2 Requires High Speed or faster.\n" : std::string();
    }
    if (speed != eNetSpeed::High) {
        return "Traditional Dynamic(rates other than Dynamic 2) is only available at network speed High.\n";
    }
    return std::string();
}

std::string KavroDynamic::ValidateDynamic() const {
    std::string complaints;
    if (!enabled_) complaints += "Dynamic is not enabled.";
    complaints += ValidateDynamic_NumModules(numberOfModules_);
    complaints += ValidateDynamic_Mode(dynamicMode_);
    if (dynamicMode_ == eDynamicMode::External) complaints += ValidateDynamic_AddressOfModuleMaster();
    complaints += ValidateDynamic_Rate(dynamicRate_);
    complaints += ValidateDynamic_NetSpeed(network_->NetSpeed());
    const eDynamicState state = DynamicState();
    if (state == eDynamicState::Reading || state == eDynamicState::Processing) {
        complaints += "Dynamic is already running.";
    }
    if (dynamicMode_ == eDynamicMode::External && masterIndex_ >= 0 && masterIndex_ < network_->ModuleCount()) {
        KavroModule* master = network_->GetModule(static_cast<unsigned int>(masterIndex_));
        if (master != nullptr) complaints += master->ValidateDynamicMaster();
    }
    return complaints;
}

std::string KavroDynamic::Dynamic_Setup(eDynamicRate rate, int modules, int index) {
    eSetModeMode mode = eSetModeMode::Dynamic4K;
    int value = 0;
    switch (rate) {
        case eDynamicRate::Rate1K:
            mode = eSetModeMode::Dynamic1K;
            break;
        case eDynamicRate::Rate2K:
            mode = eSetModeMode::Dynamic2K;
            break;
        case eDynamicRate::Rate4K:
            mode = eSetModeMode::Dynamic4K;
            break;
        default:
            mode = eSetModeMode::Dynamic2Custom;
            value = modules;
            break;
    }
    NetworkConfiguration* config = network_->Configuration();
    const KavroValueResult result = KavroCommands::KavroSetMode(config, index + 1, mode, value);
    protocolSleepMs(1);
    if (result.LinkStatus == 0) return std::string();
    return "Failed to set module into dynamic mode for module at index : " + std::to_string(index) + ".\n" +
           GetErrorDescriptionInternal(static_cast<int>(result.LinkStatus)) + "\n.";
}

void KavroDynamic::PostValidatePrepare() {
    std::string complaints;
    for (int i = 0; i < numberOfModules_; ++i) complaints += Dynamic_Setup(dynamicRate_, numberOfModules_, i);
    if (!complaints.empty()) throw std::runtime_error(complaints);
    if (masterIndex_ != -1 && dynamicMode_ == eDynamicMode::External) {
        KavroModule* master = network_->GetModule(static_cast<unsigned int>(masterIndex_));
        if (master != nullptr)
            complaints += master->SetupDynamicMaster(numberOfModules_, collectionSize_, dynamicRate_);
        if (!complaints.empty()) throw std::runtime_error(complaints);
    }
}

void KavroDynamic::Prepare() {
    NetworkConfiguration* config = network_->Configuration();
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot prepare dynamic whilst the network is busy.\n");
    }
    const eDynamicState state = config->DynamicState;
    if (state == eDynamicState::Prepared || state == eDynamicState::Reading) {
        throw std::runtime_error("Cannot start dynamic whilst a dynamic collection is in progress.\n");
    }
    const std::string complaints = ValidateDynamic();
    if (!complaints.empty()) {
        config->DynamicState = eDynamicState::Inactive;
        throw std::runtime_error(complaints);
    }
    PostValidatePrepare();
    config->DynamicState = eDynamicState::Prepared;
}

void KavroDynamic::ClearPrepared() {
    NetworkConfiguration* config = network_->Configuration();
    eDynamicState prepared = eDynamicState::Prepared;
    if (config->DynamicState.compare_exchange_strong(prepared, eDynamicState::Inactive)) leaveDynamicMode();
}

void KavroDynamic::StartDynamic(void (*callback)(int)) {
    NetworkConfiguration* config = network_->Configuration();
    config->DynamicCallback = callback;
    if (!network_->IsConnected() || !enabled_) return;
    if (!network_->DynamicCapable() && !network_->Dynamic2Capable()) {
        throw std::runtime_error("Network configuration is not dynamic capable.");
    }
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot start dynamic whilst performing another Kavro operation.");
    }
    if (config->DynamicState != eDynamicState::Prepared) {
        throw std::runtime_error("Dynamic must be prepared before starting a collection.");
    }
    const std::string complaints = ValidateDynamic();
    if (!complaints.empty()) throw std::runtime_error(complaints);
    // Busy before the threads start: a short run may end before the start
    // returns, and must find the network busy so that it frees it.
    int idle = OperationIdle;
    if (!config->ActiveOperation.compare_exchange_strong(idle, OperationDynamic)) {
        throw std::runtime_error("Cannot start dynamic whilst performing another Kavro operation.");
    }
    StartDynamicValidated();
}

void KavroDynamic::StartDynamic() { StartDynamic(nullptr); }

void KavroDynamic::StartDynamicValidated() {
    NetworkConfiguration* config = network_->Configuration();
    // A finished run's threads are done with the data before it is emptied.
    JoinDynamicThreads(config);
    {
        // Each module's decoder as it is now: a module changed or removed
        // during the run does not change how its readings read.
        std::vector<std::shared_ptr<const KavroReadType>> decoders;
        std::vector<bool> probes;
        for (int i = 0; i < numberOfModules_; ++i) {
            KavroModule* module = network_->GetModule(static_cast<unsigned int>(i));
            std::shared_ptr<KavroReadType> decoder;
            if (module != nullptr && module->ReadType() != nullptr) {
                decoder = std::make_shared<KavroReadType>(*module->ReadType());
            }
            const bool probe = dynamic_cast<KavroModuleDP*>(module) != nullptr;
            if (probe && decoder) decoder->UpdateFullScale();
            decoders.push_back(std::move(decoder));
            probes.push_back(probe);
        }
        std::lock_guard<std::mutex> guard(config->DataLock);
        config->DynamicData->Reset(numberOfModules_, std::move(decoders), std::move(probes));
    }
    sDynamicMode mode;
    mode.Collection = collectionSize_ == 0 ? -1 : collectionSize_;
    mode.Modules = numberOfModules_;
    mode.Rate = dynamicRate_;
    mode.ExternalMaster = dynamicMode_ == eDynamicMode::External;
    mode.Interval = dynamicInterval_;
    if (dynamicRate_ == eDynamicRate::Dynamic2Custom && dynamicInterval_ == 0) {
        mode.Interval = numberOfModules_ < MinAtRate(network_) ? kCustomRateIntervalFloor : 0;
    }
    stopped_ = false;
    config->DynamicState = eDynamicState::Reading;
    config->ActiveOperation = OperationDynamic;
    try {
        if (config->StartDynamic == nullptr) throw std::runtime_error("Controller is not dynamic capable");
        config->StartDynamic(config, mode);
    } catch (...) {
        // Nothing streams: the network is free and the modules leave dynamic mode.
        stopped_ = true;
        config->DynamicState = eDynamicState::Inactive;
        config->ActiveOperation = OperationIdle;
        leaveDynamicMode();
        throw;
    }
}

void KavroDynamic::StopDynamic() {
    NetworkConfiguration* config = network_->Configuration();
    if (!network_->IsConnected() || !enabled_ || stopped_) return;
    config->DynamicStopRequest = true;
    {
        // A run that never started reading has nothing to wait for.
        std::unique_lock<std::mutex> run(config->RunLock);
        config->RunSignal.wait(run, [&] { return config->DynamicState != eDynamicState::Reading; });
    }
    JoinDynamicThreads(config);
    stopped_ = true;
}

void KavroDynamic::endRun() noexcept {
    NetworkConfiguration* config = network_->Configuration();
    config->DynamicStopRequest = true;
    JoinDynamicThreads(config);
    stopped_ = true;
}

void KavroDynamic::StopCommands() {
    NetworkConfiguration* config = network_->Configuration();
    protocolSleep(std::chrono::microseconds(20));
    const int repeats = dynamicMode_ == eDynamicMode::External ? 2 : 1;
    for (int i = 0; i < repeats; ++i) {
        KavroCommands::KavroControl(config, eKavroControlAction::StopDynamic);
        protocolSleep(std::chrono::microseconds(20));
    }
    if (dynamicMode_ == eDynamicMode::External && masterIndex_ >= 0) {
        KavroModule* master = network_->GetModule(static_cast<unsigned int>(masterIndex_));
        if (master != nullptr) master->ClearDynamicMaster();
    }
}

}  // namespace KavroLibrary
