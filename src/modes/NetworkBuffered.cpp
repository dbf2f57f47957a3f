#include "NetworkBuffered.h"

#include <stdexcept>

#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroNetwork.h"
#include "ModuleBuffered.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "core/ProtocolSleep.h"
#include "links/LinkDispatch.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

namespace {

// Lets the modules act on a broadcast before the next command goes out.
constexpr long kBroadcastPauseMs = 50;

constexpr std::uint32_t kTimeout = static_cast<std::uint32_t>(eKavroErrors::Timeout);
constexpr std::uint32_t kBufferFull = static_cast<std::uint32_t>(eKavroErrors::BUFFER_FULL);
constexpr std::uint32_t kEmptyAndStopped = static_cast<std::uint32_t>(eKavroErrors::BFR_EMPTY_STOP);

KavroModule* moduleAt(const KavroNetwork* network, int index) {
    return network->GetModule(static_cast<unsigned int>(index));
}

}  // namespace

NetworkBuffered::NetworkBuffered(KavroNetwork* network) : network_(network) {}

int NetworkBuffered::EnabledCount() const {
    int count = 0;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        if (moduleAt(network_, index)->Buffered()->Enabled()) ++count;
    }
    return count;
}

void NetworkBuffered::setMasterIndex(int index) {
    if (index < -1 || index >= network_->ModuleCount()) return;
    if (index == -1) {
        masterIndex_ = -1;
        return;
    }
    if (index == 0) throw std::runtime_error("Buffered master must be at the end of a buffered collection");
    if (!moduleAt(network_, index)->BufferedMasterCapable()) {
        throw std::runtime_error("Specified module is not capable of being a buffered master");
    }
    masterIndex_ = index;
}

void NetworkBuffered::ValidateAddressOfModuleMaster() {
    const int master = masterIndex_;
    const int count = network_->ModuleCount();
    if (master > 0 && master < count) {
        // The master paces the modules before it; none at or after it may buffer.
        for (int index = master; index < count; ++index) {
            if (moduleAt(network_, index)->Buffered()->Enabled()) {
                throw std::runtime_error("Buffered master must be at the end of the buffered collection");
            }
        }
        if (!moduleAt(network_, master)->BufferedMasterCapable()) {
            throw std::runtime_error("Module is not capable of being a buffered master");
        }
        return;
    }
    if (master != -1) throw std::runtime_error("No module at the buffered master index");
}

void ValidateBufferedModules(KavroNetwork* network, int masterIndex) {
    for (int index = 0; index < network->ModuleCount(); ++index) {
        KavroModule* module = moduleAt(network, index);
        if (!module->Buffered()->Enabled()) continue;
        if (!module->BufferedCapable()) {
            throw std::runtime_error("Unable to start buffered, module is not buffered capable.");
        }
        if (index == masterIndex) {
            throw std::runtime_error("Unable to start buffered, buffered master is part of the collection.");
        }
        const auto* probe = dynamic_cast<const KavroModuleDP*>(module);
        if (probe != nullptr && probe->Resolution() != eResolution::res14Bit) {
            throw std::runtime_error("Unable to start buffered, buffered mode is 14 bit resolution only.");
        }
    }
}

void NetworkBuffered::SetBufferedMode(KavroModule* module) {
    ModuleBuffered* buffered = module->Buffered();
    NetworkConfiguration* config = network_->Configuration();
    buffered->status_ = eBufferedModeStatus::Reading;
    buffered->data_.clear();
    if (buffered->mode_ == eBufferedMode::Sync) {
        // An interval of 0 goes out as it is: the module is the judge of it.
        const KavroValueResult reply =
            KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::BufferedSync, buffered->otus_);
        if (reply.LinkStatus != 0) throw std::runtime_error("Unable to set module buffered sync mode.");
    } else if (buffered->mode_ == eBufferedMode::Sample) {
        const KavroValueResult reply =
            KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::BufferedSample, 0);
        if (reply.LinkStatus != 0) throw std::runtime_error("Unable to set module buffered sample mode.");
    }
}

void NetworkBuffered::StartBufferedModules() {
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        KavroModule* module = moduleAt(network_, index);
        if (module->Buffered()->Enabled()) SetBufferedMode(module);
    }
}

void NetworkBuffered::SetupBufferedMaster(KavroModule* module) {
    // Only these two kinds know the master role; others are left alone quietly.
    const eModuleType type = module->ModuleType();
    if (type != eModuleType::EIM && type != eModuleType::DIO2) return;
    NetworkConfiguration* config = network_->Configuration();
    ModuleBuffered* buffered = module->Buffered();
    const KavroValueResult txSample =
        KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::TxSample, buffered->txSample_);
    if (txSample.LinkStatus != 0) return;
    KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::BufferedMaster, 5);
    buffered->masterArmed_ = true;
}

void NetworkBuffered::ClearBufferedMaster(KavroModule* module) {
    ModuleBuffered* buffered = module->Buffered();
    if (!buffered->masterArmed_) return;
    NetworkConfiguration* config = network_->Configuration();
    KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::Normal, 0);
    KavroCommands::KavroSetMode(config, module->Address(), eSetModeMode::Normal, 0);
    buffered->masterArmed_ = false;
}

void NetworkBuffered::SendStartBufferedMode() {
    NetworkConfiguration* config = network_->Configuration();
    ValidateBufferedModules(network_, masterIndex_);
    StartBufferedModules();
    protocolSleepMs(kBroadcastPauseMs);
    if (syncCount_ > 0) {
        KavroCommands::KavroControl(config, eKavroControlAction::StartSync);
        protocolSleepMs(kBroadcastPauseMs);
    }
    if (masterIndex_ >= 0) {
        SetupBufferedMaster(moduleAt(network_, masterIndex_));
        ControllerSetIdle(config);
    }
}

void NetworkBuffered::Start() {
    NetworkConfiguration* config = network_->Configuration();
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot start buffered whilst the network is busy");
    }
    ValidateAddressOfModuleMaster();
    sampleCount_ = 0;
    syncCount_ = 0;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        const ModuleBuffered* buffered = moduleAt(network_, index)->Buffered();
        if (!buffered->Enabled()) continue;
        if (buffered->Mode() == eBufferedMode::Sample) ++sampleCount_;
        if (buffered->Mode() == eBufferedMode::Sync) ++syncCount_;
    }
    if (EnabledCount() == 0) throw std::runtime_error("No modules are enabled for buffered mode");
    SendStartBufferedMode();
    config->ActiveOperation = OperationBuffered;
    status_ = eBufferedModeStatus::Reading;
}

void NetworkBuffered::Sample() {
    if (status_ != eBufferedModeStatus::Reading)
        throw std::runtime_error("Cannot sample, buffered mode is not running.");
    if (sampleCount_ == 0) throw std::runtime_error("No modules configured to sample in buffered mode.");
    KavroCommands::KavroControl(network_->Configuration(), eKavroControlAction::SampleTrigger);
}

namespace {

// Bounds that keep a misbehaving module from hanging the read-out: no module
// buffers anywhere near this many readings, and a real one reports its
// overflow once before handing out what it kept.
constexpr std::size_t kMostBufferedWords = 16u * 1024u * 1024u;
constexpr int kMostOverflowReports = 16;

}  // namespace

std::string NetworkBuffered::StoppedReadModule(KavroModule* module) {
    ModuleBuffered* buffered = module->Buffered();
    buffered->status_ = eBufferedModeStatus::Finished;
    if (buffered->mode_ != eBufferedMode::Sync && buffered->mode_ != eBufferedMode::Sample) return "";

    NetworkConfiguration* config = network_->Configuration();
    bool timedOutBefore = false;
    int overflowReports = 0;
    while (true) {
        const KavroReadBufferedResult reply = KavroCommands::KavroReadBuffered1(config, module->Address());
        const std::uint32_t code = reply.ErrorCode();
        if (code == 0) {
            if (reply.Words.empty()) return "";
            if (buffered->data_.size() + reply.Words.size() > kMostBufferedWords) {
                return "Read Buffered Error: " + module->ModuleID() + " hands out more readings than a module holds\n";
            }
            buffered->data_.insert(buffered->data_.end(), reply.Words.begin(), reply.Words.end());
            overflowReports = 0;
        } else if (code == kEmptyAndStopped) {
            return "";
        } else if (code == kBufferFull) {
            // The module says it overflowed, then hands out what it kept. One
            // that says nothing else is broken: stopping must not hang on it.
            if (++overflowReports > kMostOverflowReports) {
                return "Read Buffered Error: " + GetErrorDescriptionInternal(static_cast<int>(code)) + "\n";
            }
        } else if (code == kTimeout) {
            if (timedOutBefore) return "Read Buffered Error: Timeout Reading Module " + module->ModuleID() + "\n";
            timedOutBefore = true;
        } else {
            return "Read Buffered Error: " + GetErrorDescriptionInternal(static_cast<int>(code)) + "\n";
        }
    }
}

void NetworkBuffered::Stop() {
    if (status_ != eBufferedModeStatus::Reading) throw std::runtime_error("Buffered mode not running.");
    NetworkConfiguration* config = network_->Configuration();
    KavroModule* master =
        masterIndex_ >= 0 && masterIndex_ < network_->ModuleCount() ? moduleAt(network_, masterIndex_) : nullptr;
    if (master != nullptr) ClearBufferedMaster(master);
    KavroCommands::KavroControl(config, eKavroControlAction::StopBuffered);
    protocolSleepMs(kBroadcastPauseMs);
    KavroCommands::KavroControl(config, eKavroControlAction::StopBuffered);
    protocolSleepMs(kBroadcastPauseMs);
    if (master != nullptr) ClearBufferedMaster(master);

    std::string errors;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        KavroModule* module = moduleAt(network_, index);
        if (module->Buffered()->Enabled()) errors += StoppedReadModule(module);
        if (index == masterIndex_) {
            if (auto* encoderInput = dynamic_cast<KavroModuleEIM*>(module))
                encoderInput->setRefAction(eRefAction::None);
        }
    }
    KavroCommands::KavroControl(config, eKavroControlAction::StopAcquisition);
    config->ActiveOperation = OperationIdle;
    status_ = eBufferedModeStatus::Finished;
    if (!errors.empty()) throw std::runtime_error(errors);
}

}  // namespace KavroLibrary
