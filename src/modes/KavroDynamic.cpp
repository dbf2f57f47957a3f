#include "KavroDynamic.h"

#include <stdexcept>

#include "KavroDynamicData.h"
#include "KavroNetwork.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

namespace {

constexpr int kShortestInterval = 256;      // µs
constexpr int kLongestInterval = 30000000;  // µs

}  // namespace

KavroDynamic::KavroDynamic(KavroNetwork* network) : network_(network) {
    NetworkConfiguration* config = network_->Configuration();
    config->DynamicState = eDynamicState::Inactive;
    delete config->DynamicData;
    config->DynamicData = new KavroDynamicData(config, 0);
}

KavroDynamic::~KavroDynamic() {
    endRun();
    NetworkConfiguration* config = network_->Configuration();
    delete config->DynamicData;
    config->DynamicData = nullptr;
}

KavroDynamicData* KavroDynamic::DynamicData() const { return network_->Configuration()->DynamicData; }

int KavroDynamic::MinimumInterval() const {
    double perModule = 190.0;
    double fixed = 64.0;
    switch (network_->Configuration()->NetSpeed.load()) {
        case eNetSpeed::High:
            perModule = 26.0;
            fixed = 14.0;
            break;
        case eNetSpeed::UltraHigh:
            perModule = 17.2;
            fixed = 10.0;
            break;
        default:
            break;
    }
    const int interval = static_cast<int>(numberOfModules_ * perModule + fixed);
    return interval < kShortestInterval ? kShortestInterval : interval;
}

bool KavroDynamic::Enabled() {
    if (enabled_ && !network_->DynamicCapable() && !network_->Dynamic2Capable()) enabled_ = false;
    return enabled_;
}

eDynamicState KavroDynamic::DynamicState() const {
    const NetworkConfiguration* config = network_->Configuration();
    const eDynamicState state = config->DynamicState;
    if (state == eDynamicState::Reading && !config->DynamicRunning) return eDynamicState::Processing;
    return state;
}

bool KavroDynamic::ValidateInterval(int microseconds) const {
    return microseconds == 0 || microseconds >= MinimumInterval();
}

void KavroDynamic::dynamicAllowChange() {
    NetworkConfiguration* config = network_->Configuration();
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change dynamic properties whilst the network is performing an operation.");
    }
    if (config->DynamicState == eDynamicState::Prepared) {
        config->DynamicState = eDynamicState::Inactive;
        leaveDynamicMode();
    }
}

void KavroDynamic::leaveDynamicMode() noexcept {
    if (!network_->IsConnected()) return;
    try {
        StopCommands();
    } catch (...) {
        // The modules stay in dynamic mode until the next run ends or the
        // bus is reset; nothing else depends on it.
    }
}

sDynamicHealth KavroDynamic::Health() const {
    const NetworkConfiguration* config = network_->Configuration();
    sDynamicHealth health;
    health.Packets = config->DynamicPackets;
    health.PacketsAskedAgain = config->DynamicPacketsAskedAgain;
    health.ReadingSets = config->DynamicSetsReceived;
    health.ReadingSetsLost = config->DynamicSetsLost;
    health.DataLost = config->DynamicDataLost;
    return health;
}

void KavroDynamic::setCollectionSize(int size) {
    dynamicAllowChange();
    if (size < 0) throw std::runtime_error("Dynamic collection size must be >= 0.");
    collectionSize_ = size;
}

void KavroDynamic::setDynamicRate(eDynamicRate rate) {
    dynamicAllowChange();
    dynamicRate_ = rate;
}

void KavroDynamic::setDynamicInterval(int microseconds) {
    dynamicAllowChange();
    if (microseconds != 0) {
        if (microseconds < MinimumInterval()) throw std::runtime_error("Dynamic read interval too short.");
        if (microseconds > kLongestInterval) {
            throw std::runtime_error("Dynamic read interval cannot be greater than 30 seconds");
        }
    }
    dynamicInterval_ = microseconds;
}

int MinAtRate(KavroNetwork* network) {
    switch (network->NetSpeed()) {
        case eNetSpeed::High:
            return 9;
        case eNetSpeed::UltraHigh:
            return 14;
        default:
            return 4;
    }
}

}  // namespace KavroLibrary
