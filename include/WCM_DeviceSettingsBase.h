// The text-command channel to a wireless hand tool: the concentrator puts the
// tool's radio link into configuration mode, and lines pass through it to the
// tool and back. The base of the settings classes of each kind of tool.
#pragma once

#include <string>

#include "KavroEnums.h"

namespace KavroLibrary {

class WCM_Device;

// Sends text commands to a hand tool through its concentrator; the base of the tools' settings.
class WCM_DeviceSettingsBase {
public:
    // Made by its slot; reached through WCM_Device::Settings().
    explicit WCM_DeviceSettingsBase(WCM_Device* device);
    virtual ~WCM_DeviceSettingsBase();
    WCM_DeviceSettingsBase(const WCM_DeviceSettingsBase&) = delete;
    WCM_DeviceSettingsBase& operator=(const WCM_DeviceSettingsBase&) = delete;

    // The slot the tool is in.
    WCM_Device* Device() const { return device_; }

    // Whether the concentrator is to hold the tool in configuration mode.
    bool ConfigMode();
    // Asks the concentrator to hold the tool in configuration mode, or to let it go.
    void setConfigMode(bool on);
    // Whether the tool is in configuration mode now.
    bool EnteredConfigMode();
    // The tool's connection; a failed read gives Error.
    eWCM_DeviceStatus getConnectionStatus();

    // Sends one command line to the tool and, when asked, returns its reply.
    // The command is trimmed and ends in exactly one carriage return + line
    // feed; commands the tool's type does not allow through the concentrator
    // are refused before anything is sent. Configuration mode is entered
    // when needed (for up to about 30 s) and left as it was found, also when
    // sending or the reply (awaited for up to about 0.5 s) fails. Failures
    // throw std::runtime_error.
    std::string SendCommand(std::string command, bool waitForReply);

private:
    WCM_Device* device_;  // not owned
};

}  // namespace KavroLibrary
