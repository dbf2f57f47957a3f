#include "network/InitNetwork.h"

#include <stdexcept>
#include <string>

#include "KavroNumberText.h"
#include "commands/KavroCommands.h"
#include "core/Diagnostics.h"
#include "links/LinkDispatch.h"

namespace KavroLibrary {

namespace {

constexpr int kDefaultModuleLimit = 200;

// "L" and up to four digits gives the limit; any other text means the default.
int moduleLimitFrom(const std::string& limitText) {
    if (limitText.empty() || limitText[0] != 'L') return kDefaultModuleLimit;
    try {
        return KavroNumberStrToInt(limitText.substr(1, 4));
    } catch (const std::exception&) {
        return kDefaultModuleLimit;
    }
}

// USB controllers from firmware 1.18 on understand the extended requests.
bool usbExtendedFirmware(const std::string& versionText) {
    try {
        return KavroNumberStrToDouble(versionText) >= 1.18;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

bool InitNetwork(NetworkConfiguration* config) {
    ControllerInfoReply info;
    info.Error = 255;
    info = ControllerGetInfo(config);
    if (info.Error != 0) {
        diagnostic("Controller GetInfo Failed");
        return false;
    }
    ControllerIdentifyReply identity;
    identity = ControllerIdentify(config);
    if (identity.Error != 0) {
        diagnostic("Controller Identify Failed");
        return false;
    }

    config->ControllerID = identity.IdentityText();
    config->ControllerTypeCode = info.TypeCodeText();
    config->ControllerValue = info.Value;
    config->MaxModules = moduleLimitFrom(info.Limit());

    const std::string& code = config->ControllerTypeCode;
    std::string kind;
    if (code == "USB2") {
        kind = "USBIM";
        if (usbExtendedFirmware(identity.VersionText())) {
            config->UsbExtendedMode = true;
            config->UsbExtendedByte = 0x40;
            config->UsbExtendedValue = 2;
        }
    } else if (code == "232I" || code == "485I") {
        kind = "RS232IM";
    } else if (code == "ETHI") {
        kind = "ETHIM";
    } else if (code == "ETH2") {
        kind = "ETHIM 2";
        config->NetworkType = eNetworkType::ETHIM2;
    } else {
        kind = code;
    }
    config->Description = kind + " (" + config->ControllerID + ")";
    config->ControllerName = config->Description;  // the placeholder has served its time

    config->Connected = true;
    config->ActiveOperation = OperationIdle;
    return true;
}

void ResetAllSpeeds(NetworkConfiguration* config) {
    const std::vector<eNetSpeed> speeds = config->ControllerSpeeds;
    for (eNetSpeed speed : speeds) {
        ControllerSetSpeed(config, speed);
        KavroCommands::KavroRst(config);
    }
    ControllerSetSpeed(config, eNetSpeed::Low);
    config->NetSpeed = eNetSpeed::Low;
}

}  // namespace KavroLibrary
