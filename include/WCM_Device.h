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
    std::string Text;
    double Value = 0.0;
};

class WCM_Device {
public:
    static constexpr int kMaxChannels = 12;

    WCM_Device(int index, KavroModuleWCM* module);
    ~WCM_Device();
    WCM_Device(const WCM_Device&) = delete;
    WCM_Device& operator=(const WCM_Device&) = delete;

    NetworkConfiguration* NetData() const;
    int WCMKavroAddress() const;
    int Index() const { return index_; }

    // Field reads into the cache. Failures mark the device "Error" and throw
    // std::runtime_error, except the channel reads, which return what they got.
    eWCM_DeviceType getDeviceType();
    std::string getName();
    std::string getKavroIdentity();
    int getNumChannels();
    sWCM_ChannelData getChannelData(int channel);
    void getAllChannelData();
    // Type, name, identity, channel count and all twelve channels, in this order.
    void UpdateDeviceFieldData();

    // Cached values.
    eWCM_DeviceType DeviceType() const { return type_; }
    std::string DeviceName() const { return name_; }
    std::string KavroIdentity() const { return identity_; }
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
    int BatteryStatus();

    // A copy of the cached record of a channel (0 to 11; an empty record for
    // a channel not cached).
    // The first call that finds the device connected refreshes the slot once.
    sWCM_ChannelData GetChannelData(int channel);

    // Multi-channel read. Bit 0 of the mask is channel 1; bits of channels
    // the device does not have are dropped, and a mask without any of the
    // low twelve bits is refused.
    KavroChannelReadings Read(unsigned int mask, eRead3_ControlCode code, eRead3_UOM uom);
    KavroChannelReadings Read(eChannelMask mask, eRead3_ControlCode code, eRead3_UOM uom);
    KavroChannelReadings Read(unsigned int mask, eRead3_ControlCode code);
    KavroChannelReadings Read(unsigned int mask);
    KavroChannelReadings ReadAllChannels(eRead3_ControlCode code, eRead3_UOM uom);
    KavroChannelReadings ReadAllChannels(eRead3_ControlCode code);
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
