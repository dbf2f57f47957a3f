// One device slot of a wireless concentrator: the cached fields of the hand
// tool in it, its channels, its settings object and the multi-channel read.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KavroChannelReadings.h"
#include "KavroEnums.h"

namespace KavroLibrary {

struct NetworkConfiguration;
class KavroModuleWCM;
class WCM_DeviceSettingsBase;

// One channel as the concentrator describes it: its text and its value.
struct sWCM_ChannelData {
    // The channel's text, as the tool names it.
    std::string Text;
    // The channel's last value.
    double Value = 0.0;
};

// One slot of a wireless concentrator and the hand tool in it.
class WCM_Device {
public:
    // Most channels a tool has.
    static constexpr int kMaxChannels = 12;

    // Made by the concentrator for slot `index` (0 to 5).
    WCM_Device(int index, KavroModuleWCM* module);
    ~WCM_Device();
    WCM_Device(const WCM_Device&) = delete;
    WCM_Device& operator=(const WCM_Device&) = delete;

    // Library use: the network's link record.
    NetworkConfiguration* NetData() const;
    // The concentrator's bus address.
    int WCMKavroAddress() const;
    // The slot, 0 to 5.
    int Index() const { return index_; }

    // Field reads into the cache. Failures mark the device "Error" and throw
    // std::runtime_error, except the channel reads, which return what they got.
    eWCM_DeviceType getDeviceType();
    // Reads the tool's name into the cache.
    std::string getName();
    // Reads the tool's identity into the cache.
    std::string getKavroIdentity();
    // Reads the tool's channel count into the cache.
    int getNumChannels();
    // Reads one channel's record (0 to 11) into the cache.
    sWCM_ChannelData getChannelData(int channel);
    // Reads all twelve channel records into the cache.
    void getAllChannelData();
    // Type, name, identity, channel count and all twelve channels, in this order.
    void UpdateDeviceFieldData();

    // Cached values.
    eWCM_DeviceType DeviceType() const { return type_; }
    // The tool's name, as cached.
    std::string DeviceName() const { return name_; }
    // The tool's identity, as cached.
    std::string KavroIdentity() const { return identity_; }
    // The tool's channel count, as cached.
    int NumChannels() const { return numChannels_; }
    // The settings object matching the device's type. It is replaced when
    // getDeviceType() finds another type: a pointer obtained here is then
    // invalid.
    WCM_DeviceSettingsBase* Settings() const { return settings_.get(); }

    // Writes the name, blank-padded to 20 characters (longer names are cut).
    void setDeviceName(std::string name);
    // An identity is 10 characters, or empty to clear it; anything else is
    // refused before it is sent.
    void setKavroIdentity(std::string identity);

    // Read afresh; a failed read gives Error rather than throwing.
    eWCM_DeviceStatus ConnectionStatus();
    // The tool's battery level, read afresh.
    int BatteryStatus();

    // A copy of the cached record of a channel (0 to 11; an empty record for
    // a channel not cached).
    // The first call that finds the device connected refreshes the slot once.
    sWCM_ChannelData GetChannelData(int channel);

    // Multi-channel read. Bit 0 of the mask is channel 1; bits of channels
    // the device does not have are dropped, and a mask without any of the
    // low twelve bits is refused.
    KavroChannelReadings Read(unsigned int mask, eRead3_ControlCode code, eRead3_UOM uom);
    // As Read(unsigned int, ...), with the channels as an eChannelMask.
    KavroChannelReadings Read(eChannelMask mask, eRead3_ControlCode code, eRead3_UOM uom);
    // Reads the channels of `mask` in the tool's own unit.
    KavroChannelReadings Read(unsigned int mask, eRead3_ControlCode code);
    // Reads the channels of `mask` as fixed-point values in the tool's own unit.
    KavroChannelReadings Read(unsigned int mask);
    // Reads every channel the tool has, in this form and unit.
    KavroChannelReadings ReadAllChannels(eRead3_ControlCode code, eRead3_UOM uom);
    // Reads every channel the tool has, in the tool's own unit.
    KavroChannelReadings ReadAllChannels(eRead3_ControlCode code);
    // Reads every channel the tool has.
    KavroChannelReadings ReadAllChannels();

private:
    int fieldId(int n) const { return (index_ + 1) * 1000 + n; }
    [[noreturn]] void fail(const char* message);

    KavroModuleWCM* module_;  // not owned
    int index_;
    bool updated_ = false;
    eWCM_DeviceStatus status_ = eWCM_DeviceStatus::Unknown;
    int battery_ = 0;
    eWCM_DeviceType type_ = eWCM_DeviceType::None;
    std::string name_;
    std::string identity_;
    int numChannels_ = 0;
    std::vector<sWCM_ChannelData> channels_;
    std::unique_ptr<WCM_DeviceSettingsBase> settings_;
};

}  // namespace KavroLibrary
