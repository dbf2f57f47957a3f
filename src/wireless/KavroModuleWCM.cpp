#include "KavroModuleWCM.h"

#include <chrono>
#include <stdexcept>

#include "WCM_Device.h"
#include "WCM_Devices.h"
#include "core/Diagnostics.h"
#include "core/ProtocolSleep.h"
#include "wireless/WcmFields.h"

namespace KavroLibrary {

namespace {

// The concentrator takes a moment before its flag shows the restart.
constexpr long kRestartSettleMs = 250;
constexpr long kRestartPollMs = 100;

}  // namespace

KavroModuleWCM::KavroModuleWCM(NetworkConfiguration* config, int address)
    : KavroModule(config, address), devices_(std::make_unique<WCM_Devices>(this)) {
    try {
        UpdateFieldData();
    } catch (const std::runtime_error& error) {
        diagnostic("Wireless concentrator at address ", address, ": ", error.what());
    }
}

KavroModuleWCM::~KavroModuleWCM() = default;

std::uint32_t KavroModuleWCM::getScanDuration() {
    unsigned int value = 0;
    if (!wcmfields::readUInt(config_, address_, wcmfields::kScanDuration, value)) {
        throw std::runtime_error("Unable to get WCM ScanDuration value.");
    }
    scanDuration_ = value;
    return scanDuration_;
}

void KavroModuleWCM::UpdateFieldData() {
    getScanDuration();
    for (int i = 0; i < devices_->DeviceCount(); ++i) devices_->GetDevice(i)->UpdateDeviceFieldData();
}

bool KavroModuleWCM::getRestartFlag() {
    unsigned char value = 0;
    if (!wcmfields::readByte(config_, address_, wcmfields::kRestart, value)) {
        throw std::runtime_error("Unable to get WCM Restart flag value.");
    }
    return value == 1;
}

void KavroModuleWCM::Restart() {
    if (!wcmfields::writeByte(config_, address_, wcmfields::kRestart, 1)) {
        throw std::runtime_error("Unable to restart WCM");
    }
    protocolSleepMs(kRestartSettleMs);
    const auto start = std::chrono::steady_clock::now();
    while (true) {
        const bool restarting = getRestartFlag();
        protocolSleepMs(kRestartPollMs);
        const auto elapsed =
            std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count();
        if (!restarting || elapsed > static_cast<long long>(scanDuration_)) return;
    }
}

}  // namespace KavroLibrary
