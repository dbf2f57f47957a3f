#include "WCM_Device.h"

#include <stdexcept>

#include "KavroModuleWCM.h"
#include "KavroNumberText.h"
#include "WCM_DeviceSettingsBase.h"
#include "WCM_DeviceSettings_WHT.h"
#include "WCM_DeviceSettings_WHTM.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "wireless/WcmFields.h"

namespace KavroLibrary {

namespace {

constexpr std::size_t kNameWidth = 20;
constexpr std::size_t kIdentityWidth = 10;
constexpr unsigned int kAllChannels = 0xFFF;

}  // namespace

WCM_Device::WCM_Device(int index, KavroModuleWCM* module)
    : module_(module), index_(index), settings_(std::make_unique<WCM_DeviceSettingsBase>(this)) {}

WCM_Device::~WCM_Device() = default;

NetworkConfiguration* WCM_Device::NetData() const { return module_->Configuration(); }

int WCM_Device::WCMKavroAddress() const { return module_->Address(); }

void WCM_Device::fail(const char* message) {
    status_ = eWCM_DeviceStatus::Error;
    throw std::runtime_error(message);
}

eWCM_DeviceType WCM_Device::getDeviceType() {
    unsigned char value = 0;
    if (!wcmfields::readByte(NetData(), WCMKavroAddress(), fieldId(wcmfields::kType), value)) {
        fail("Unable to get WCM device Type value.");
    }
    const auto type = static_cast<eWCM_DeviceType>(value);
    if (type != type_) {
        type_ = type;
        settings_.reset();
        switch (type) {
            case eWCM_DeviceType::WHT:
                settings_ = std::make_unique<WCM_DeviceSettings_WHT>(this);
                break;
            case eWCM_DeviceType::WHT_M:
            case eWCM_DeviceType::WMM_A:
                settings_ = std::make_unique<WCM_DeviceSettings_WHTM>(this);
                break;
            default:
                settings_ = std::make_unique<WCM_DeviceSettingsBase>(this);
                break;
        }
    }
    return type_;
}

std::string WCM_Device::getName() {
    std::string text;
    if (!wcmfields::readString(NetData(), WCMKavroAddress(), fieldId(wcmfields::kName), text)) {
        fail("Unable to get WCM device Name value.");
    }
    name_ = StringTrim(text);
    return name_;
}

std::string WCM_Device::getKavroIdentity() {
    std::string text;
    if (!wcmfields::readString(NetData(), WCMKavroAddress(), fieldId(wcmfields::kIdentity), text)) {
        // The getter shares the setter's message.
        fail("Unable to set WCM device KavroIdentity value.");
    }
    identity_ = StringTrim(text);
    return identity_;
}

int WCM_Device::getNumChannels() {
    unsigned char value = 0;
    if (!wcmfields::readByte(NetData(), WCMKavroAddress(), fieldId(wcmfields::kNumChannels), value)) {
        fail("Unable to get WCM device NumChannels value.");
    }
    numChannels_ = value;
    return numChannels_;
}

sWCM_ChannelData WCM_Device::getChannelData(int channel) {
    sWCM_ChannelData record;
    unsigned int thousandths = 0;
    if (!wcmfields::readUInt(NetData(), WCMKavroAddress(), fieldId(wcmfields::kChannelValue + channel), thousandths)) {
        status_ = eWCM_DeviceStatus::Error;
        return record;
    }
    record.Value = thousandths / 1000.0;
    std::string text;
    if (wcmfields::readString(NetData(), WCMKavroAddress(), fieldId(wcmfields::kChannelText + channel), text)) {
        record.Text = text;
    } else {
        status_ = eWCM_DeviceStatus::Error;
    }
    return record;
}

void WCM_Device::getAllChannelData() {
    for (int c = 0; c < kMaxChannels; ++c) {
        const sWCM_ChannelData record = getChannelData(c);
        if (channels_.size() < static_cast<std::size_t>(c) + 1) {
            channels_.push_back(record);
        } else {
            channels_[static_cast<std::size_t>(c)] = record;
        }
    }
}

void WCM_Device::UpdateDeviceFieldData() {
    getDeviceType();
    getName();
    getKavroIdentity();
    getNumChannels();
    getAllChannelData();
}

void WCM_Device::setDeviceName(std::string name) {
    if (name.size() < kNameWidth + 1) name.resize(kNameWidth, ' ');
    const std::string written = name.substr(0, kNameWidth);
    if (!wcmfields::writeString(NetData(), WCMKavroAddress(), fieldId(wcmfields::kName), written)) {
        fail("Unable to set WCM device Name value.");
    }
    name_ = StringTrim(written);
}

void WCM_Device::setKavroIdentity(std::string identity) {
    if (!identity.empty() && identity.size() != kIdentityWidth) {
        throw std::runtime_error("Kavro identity must be 10 characters or 0 characters.");
    }
    if (!wcmfields::writeString(NetData(), WCMKavroAddress(), fieldId(wcmfields::kIdentity), identity)) {
        fail("Unable to set WCM device KavroIdentity value.");
    }
    identity_ = StringTrim(identity);
}

eWCM_DeviceStatus WCM_Device::ConnectionStatus() {
    unsigned char value = 0;
    status_ = wcmfields::readByte(NetData(), WCMKavroAddress(), fieldId(wcmfields::kConnection), value)
                  ? static_cast<eWCM_DeviceStatus>(value)
                  : eWCM_DeviceStatus::Error;
    return status_;
}

int WCM_Device::BatteryStatus() {
    unsigned char value = 0;
    if (!wcmfields::readByte(NetData(), WCMKavroAddress(), fieldId(wcmfields::kBattery), value)) {
        status_ = eWCM_DeviceStatus::Error;
    }
    battery_ = value;
    return battery_;
}

sWCM_ChannelData WCM_Device::GetChannelData(int channel) {
    if (!updated_ && ConnectionStatus() == eWCM_DeviceStatus::Connected) {
        updated_ = true;
        UpdateDeviceFieldData();
    }
    if (channel < 0 || static_cast<std::size_t>(channel) >= channels_.size()) return {};
    return channels_[static_cast<std::size_t>(channel)];
}

KavroChannelReadings WCM_Device::Read(unsigned int mask, eRead3_ControlCode code, eRead3_UOM uom) {
    if ((mask & kAllChannels) == 0) {
        throw std::runtime_error("Invalid Channel Mask value. No channels selected.");
    }
    // Channels the device does not have are dropped (a count above 31 keeps them all).
    if (numChannels_ < 32) mask &= (1u << numChannels_) - 1u;
    const KavroRead3Result result =
        KavroCommands::KavroRead3(NetData(), WCMKavroAddress(), index_, code, static_cast<int>(mask), uom);
    if (result.ErrorCode != 0) {
        throw std::runtime_error("Unable to get reading " +
                                 GetErrorDescriptionInternal(static_cast<int>(result.ErrorCode)));
    }
    return KavroChannelReadings(result.Readings);
}

KavroChannelReadings WCM_Device::Read(eChannelMask mask, eRead3_ControlCode code, eRead3_UOM uom) {
    return Read(static_cast<unsigned int>(mask), code, uom);
}

KavroChannelReadings WCM_Device::Read(unsigned int mask, eRead3_ControlCode code) {
    return Read(mask, code, eRead3_UOM::Default);
}

KavroChannelReadings WCM_Device::Read(unsigned int mask) {
    return Read(mask, eRead3_ControlCode::NormalInt7DPs, eRead3_UOM::Default);
}

KavroChannelReadings WCM_Device::ReadAllChannels(eRead3_ControlCode code, eRead3_UOM uom) {
    const unsigned int mask = numChannels_ < 32 ? (1u << numChannels_) - 1u : ~0u;
    return Read(mask, code, uom);
}

KavroChannelReadings WCM_Device::ReadAllChannels(eRead3_ControlCode code) {
    return ReadAllChannels(code, eRead3_UOM::Default);
}

KavroChannelReadings WCM_Device::ReadAllChannels() {
    return ReadAllChannels(eRead3_ControlCode::NormalInt7DPs, eRead3_UOM::Default);
}

}  // namespace KavroLibrary
