#include "KavroNetworkRS232.h"

#include <utility>

#include "links/NetworkConfiguration.h"
#include "links/SerialLink.h"

namespace KavroLibrary {

KavroNetworkRS232::KavroNetworkRS232(int networkNumber, std::string networkName, std::string devicePath, int baud)
    : KavroNetwork(networkNumber, std::move(networkName)) {
    config_->ControllerName = "RS232IM_Mk2 (Unknown)";
    config_->NetworkType = eNetworkType::RS232IM_Mk2;
    config_->Address = std::move(devicePath);
    config_->BaudRate = baud;
    config_->Identify = RS232KavroIdentifyController;
    config_->GetInfo = RS232KavroGetInfoController;
    config_->SendCommand = RS232SendModuleCommand;
    config_->GetReply = RS232ReadModuleResponse;
    config_->SetSpeed = SetControllerSpeedRS232;
    config_->SetIdle = SetControllerIdleRS232;
    config_->StartDynamic = StartDynamicRS232;
}

KavroNetworkRS232::~KavroNetworkRS232() {
    // The modules are reset while the line is still open.
    if (config_->Connected) KavroNetworkRS232::Disconnect();
    closeLine();
}

void KavroNetworkRS232::closeLine() { RS232CloseLine(config_.get()); }

void KavroNetworkRS232::Connect() {
    if (config_->Connected) Disconnect();
    KavroNetwork::Connect();
    if (RS232OpenLine(config_.get()) < 0) return;  // reported by the link
    if (config_->InitNetworkHook != nullptr && config_->InitNetworkHook(config_.get())) {
        UpdateCapabilitiesRS232(config_.get());
        if (config_->ResetAllSpeedsHook != nullptr) config_->ResetAllSpeedsHook(config_.get());
    } else {
        config_->Connected = false;
    }
}

void KavroNetworkRS232::Disconnect() {
    KavroNetwork::Disconnect();
    closeLine();
}

}  // namespace KavroLibrary
