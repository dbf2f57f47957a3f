#include "WCM_DeviceSettingsBase.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "KavroNumberText.h"
#include "WCM_Device.h"
#include "commands/KavroCommands.h"
#include "core/ProtocolSleep.h"
#include "wireless/WcmFields.h"

namespace KavroLibrary {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kPollMs = 10;
constexpr auto kEnterConfigModeLimit = std::chrono::nanoseconds(30'000'999'999LL);
constexpr auto kReplyLimit = std::chrono::nanoseconds(500'999'999LL);

// Streaming and radio set-up belong to the concentrator, not to the tool's
// own settings, so a multi-channel tool may not be told them through it.
const char* const kMultiChannelRefused[] = {
    "SetStreamState",
    "SetStreamMode",
    "SetStreamRate",
    "SetStreamChannels",
    "SetIncludeChTimestamp",
    "SetIncludeStreamTimestamp",
    "SetIncludeTag",
    "SetIncludePreamble",
    "SetDateFormat",
    "SetBluetoothClass",
    "SetIncludeBattStatus",
    "SetIncludeDigitalInputs",
    "SetWSC",
};

bool permitted(eWCM_DeviceType type, const std::vector<std::string>& words) {
    const std::string first = words.empty() ? std::string() : words[0];
    switch (type) {
        case eWCM_DeviceType::WHT_M:
        case eWCM_DeviceType::WMM_A:
            return std::find(std::begin(kMultiChannelRefused), std::end(kMultiChannelRefused), first) ==
                   std::end(kMultiChannelRefused);
        case eWCM_DeviceType::WHT:
            return !(first == "SET" && words.size() > 1 && words[1] == "DELAY");
        default:
            return false;
    }
}

// The line as it goes out: ending in exactly one carriage return + line feed.
std::string withLineEnd(std::string text) {
    const std::size_t n = text.size();
    if (n >= 2 && text[n - 2] == '\r' && text[n - 1] == '\n') return text;
    if (n >= 1 && text[n - 1] == '\n') {
        text.pop_back();
        return text + "\r\n";
    }
    return text + "\r\n";
}

}  // namespace

WCM_DeviceSettingsBase::WCM_DeviceSettingsBase(WCM_Device* device) : device_(device) {}

WCM_DeviceSettingsBase::~WCM_DeviceSettingsBase() = default;

bool WCM_DeviceSettingsBase::ConfigMode() {
    unsigned char value = 0;
    if (!wcmfields::readByte(device_->NetData(), device_->WCMKavroAddress(),
                             (device_->Index() + 1) * 1000 + wcmfields::kConfigMode, value)) {
        throw std::runtime_error("Unable to read WCM device ConfigMode.");
    }
    return value != 0;
}

void WCM_DeviceSettingsBase::setConfigMode(bool on) {
    if (!wcmfields::writeByte(device_->NetData(), device_->WCMKavroAddress(),
                              (device_->Index() + 1) * 1000 + wcmfields::kConfigMode, on ? 1 : 0)) {
        throw std::runtime_error("Unable to set WCM device ConfigMode.");
    }
}

bool WCM_DeviceSettingsBase::EnteredConfigMode() {
    unsigned char value = 0;
    if (!wcmfields::readByte(device_->NetData(), device_->WCMKavroAddress(),
                             (device_->Index() + 1) * 1000 + wcmfields::kEnteredConfigMode, value)) {
        throw std::runtime_error("Unable to read WCM device EnteredConfigMode.");
    }
    return value != 0;
}

eWCM_DeviceStatus WCM_DeviceSettingsBase::getConnectionStatus() {
    unsigned char value = 0;
    if (!wcmfields::readByte(device_->NetData(), device_->WCMKavroAddress(),
                             (device_->Index() + 1) * 1000 + wcmfields::kConnection, value)) {
        return eWCM_DeviceStatus::Error;
    }
    return static_cast<eWCM_DeviceStatus>(value);
}

std::string WCM_DeviceSettingsBase::SendCommand(std::string command, bool waitForReply) {
    const std::string trimmed = StringTrim(command);
    if (trimmed.empty()) throw std::runtime_error("No CommandSetting value given.");
    const std::string line = withLineEnd(trimmed);
    if (!permitted(device_->DeviceType(), StringSplit(trimmed, ' '))) {
        throw std::runtime_error("Command not permitted via WCM.");
    }

    const bool modeFound = ConfigMode();
    std::string error;
    std::string reply;
    const eWCM_DeviceStatus status = getConnectionStatus();
    const bool entered = EnteredConfigMode();
    if (!(entered && status == eWCM_DeviceStatus::Connected)) {
        setConfigMode(true);
        const auto start = Clock::now();
        while (!(getConnectionStatus() == eWCM_DeviceStatus::Connected && EnteredConfigMode())) {
            if (Clock::now() - start > kEnterConfigModeLimit) {
                error = getConnectionStatus() == eWCM_DeviceStatus::Connected
                            ? "Unable to enter config mode - timed out. "
                            : "Unable to enter config mode - timed out due to device connection error. ";
                break;
            }
            protocolSleepMs(kPollMs);
        }
    }

    if (error.empty()) {
        try {
            const KavroCheckedValueResult sent = KavroCommands::KavroPassThroughTx(
                device_->NetData(), device_->WCMKavroAddress(), device_->Index(), line);
            if (sent.LinkStatus != 0 || sent.ModuleError != 0 || sent.Value != 0) {
                error = "Unable to send pass through command. ";
            }
        } catch (const std::runtime_error& refused) {
            error = std::string(refused.what()) + " ";
        }
    }

    if (error.empty() && waitForReply) {
        const auto sentAt = Clock::now();
        while (true) {
            protocolSleepMs(kPollMs);
            KavroPassThroughRxResult received;
            try {
                received =
                    KavroCommands::KavroPassThroughRx(device_->NetData(), device_->WCMKavroAddress(), device_->Index());
            } catch (const std::runtime_error& failed) {
                error = std::string(failed.what()) + " ";
                break;
            }
            reply = received.Text;
            if (received.LinkStatus == 0 && received.ModuleError == 0 && received.Complete) break;
            if (Clock::now() - sentAt > kReplyLimit) {
                error = "Pass through Rx timed out. ";
                break;
            }
        }
    }

    // The concentrator's mode is left as it was found, whatever happened; a
    // failure to restore it does not hide the error that came first.
    try {
        if (ConfigMode() != modeFound) setConfigMode(modeFound);
    } catch (const std::runtime_error&) {
        if (error.empty()) throw;
    }
    if (!error.empty()) throw std::runtime_error(error);
    return reply;
}

}  // namespace KavroLibrary
