// The bus speeds of a network.
#include <algorithm>
#include <stdexcept>

#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "core/ProtocolSleep.h"
#include "links/LinkDispatch.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

namespace {

eSetModeMode speedMode(eNetSpeed speed) {
    switch (speed) {
        case eNetSpeed::High:
            return eSetModeMode::SpeedHigh;
        case eNetSpeed::UltraHigh:
            return eSetModeMode::SpeedUltraHigh;
        default:
            return eSetModeMode::SpeedLow;
    }
}

}  // namespace

std::vector<eNetSpeed> KavroNetwork::AvailableSpeeds() const {
    std::vector<eNetSpeed> speeds;
    const std::vector<KavroModule*> modules = moduleSnapshot();
    for (eNetSpeed speed : config_->ControllerSpeeds) {
        const bool everyModule = std::all_of(modules.begin(), modules.end(), [speed](const KavroModule* module) {
            return module->SpeedAvailable(speed);
        });
        if (everyModule) speeds.push_back(speed);
    }
    return speeds;
}

bool KavroNetwork::SpeedAvailable(eNetSpeed speed) const {
    const std::vector<eNetSpeed> speeds = AvailableSpeeds();
    return std::find(speeds.begin(), speeds.end(), speed) != speeds.end();
}

void KavroNetwork::setNetSpeed(eNetSpeed speed) {
    // A notification still ending restores its speed first.
    if (config_->ActiveOperation == OperationNotifyEnding) waitForNotificationEnd();
    applyNetSpeed(speed, false);
}

void KavroNetwork::applyNetSpeed(eNetSpeed speed, bool fromEndingNotification) {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro.");
    const int operation = config_->ActiveOperation;
    if (operation != OperationIdle && !(fromEndingNotification && operation == OperationNotifyEnding)) {
        throw std::runtime_error("Cannot change network speed whilst performing an Kavro operation.");
    }
    if (!SpeedAvailable(speed)) {
        throw std::runtime_error("Kavro speed not supported by the network and module combination.");
    }
    if (speed == config_->NetSpeed) return;

    // Every module learns the new speed first; the control action then makes
    // them all switch at once, and the controller follows.
    const eSetModeMode mode = speedMode(speed);
    const int count = ModuleCount();
    for (int address = 1; address <= count; ++address) {
        if (address > 1) protocolSleepMs(1);
        KavroCommands::KavroSetMode(config_.get(), address, mode, 0);
    }
    KavroCommands::KavroControl(config_.get(), eKavroControlAction::ApplySpeed);
    protocolSleepMs(50);
    ControllerSetSpeed(config_.get(), speed);
    config_->NetSpeed = speed;
}

}  // namespace KavroLibrary
