#include "modules/DynamicMasterSetup.h"

#include "KavroModule.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "core/ProtocolSleep.h"

namespace KavroLibrary {

std::string sendDynamicMasterSetup(KavroModule& module, eDynamicMasterMode masterMode, int numberOfModules,
                                   eDynamicRate rate) {
    const struct {
        eSetModeMode mode;
        int argument;
    } steps[] = {
        {eSetModeMode::DynamicMasterMode, static_cast<int>(masterMode)},
        {eSetModeMode::DynamicMasterRate, static_cast<int>(rate)},
        {eSetModeMode::DynamicMasterModules, numberOfModules},
    };
    for (const auto& step : steps) {
        const KavroValueResult result =
            KavroCommands::KavroSetMode(module.Configuration(), module.Address(), step.mode, step.argument);
        protocolSleepMs(1);
        if (result.LinkStatus != 0) {
            return "Failed to set up the dynamic master at address " + std::to_string(module.Address()) + ": " +
                   GetErrorDescriptionInternal(static_cast<int>(result.LinkStatus)) + "\n";
        }
    }
    return "";
}

void sendDynamicMasterClear(KavroModule& module) {
    KavroCommands::KavroSetMode(module.Configuration(), module.Address(), eSetModeMode::Normal, 0);
    protocolSleepMs(1);
}

std::string armDynamicMaster(KavroModule& module, eDynamicMasterMode masterMode, int numberOfModules,
                             eDynamicRate rate, const std::string& complaint, std::atomic<bool>& armed) {
    if (!complaint.empty()) return complaint;
    const std::string failure = sendDynamicMasterSetup(module, masterMode, numberOfModules, rate);
    // Half a set-up is undone: the module must not pace a bus nobody reads.
    if (!failure.empty()) {
        sendDynamicMasterClear(module);
        return failure;
    }
    armed = true;
    return "";
}

void disarmDynamicMaster(KavroModule& module, std::atomic<bool>& armed) {
    if (armed.exchange(false)) sendDynamicMasterClear(module);
}

}  // namespace KavroLibrary
