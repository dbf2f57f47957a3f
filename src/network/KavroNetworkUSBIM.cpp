#include "KavroNetworkUSBIM.h"

#include "links/FtdiCommunications.h"
#include "links/NetworkConfiguration.h"
#include "links/UsbDynamic.h"
#include "links/UsbFraming.h"

namespace KavroLibrary {

void fillUsbLinkTable(NetworkConfiguration* config) {
    config->Identify = &IdentifyNetwork;
    config->GetInfo = &GetInfoNetwork;
    config->SendCommand = &SendModuleCommand;
    config->GetReply = &GetModuleCommandResponse;
    config->SetSpeed = &SetControllerSpeedFTDI;
    config->SetIdle = &SetControllerIdleFTDI;
    config->StartDynamic = &StartDynamicFTDI;
}

KavroNetworkUSBIM::KavroNetworkUSBIM(int networkNumber, int deviceIndex) : KavroNetwork(networkNumber, "") {
    config_->DeviceIndex = deviceIndex;
    config_->ControllerName = "USBIM (Unknown)";
    config_->NetworkType = eNetworkType::USBIM_Mk2;
    fillUsbLinkTable(config_.get());
}

KavroNetworkUSBIM::~KavroNetworkUSBIM() {
    // A run's threads and the modules' reset use the link while it is still open.
    stopRunningMode();
    try {
        if (IsConnected()) KavroNetworkUSBIM::Disconnect();
    } catch (const std::exception&) {
        config_->Connected = false;  // an operation still runs: just let go
    }
    if (config_->FtdiHandle != nullptr) {
        FTDICommunications().Close(config_->FtdiHandle);
        config_->FtdiHandle = nullptr;
    }
}

void KavroNetworkUSBIM::Connect() {
    if (IsConnected()) KavroNetworkUSBIM::Disconnect();
    FTDICommunications ftdi;
    if (ftdi.Open(config_.get()) != FT_OK) return;
    KavroNetwork::Connect();
    if (config_->InitNetworkHook != nullptr && config_->InitNetworkHook(config_.get())) {
        UpdateCapabilitiesUSBIM(config_.get());
        if (config_->ResetAllSpeedsHook != nullptr) config_->ResetAllSpeedsHook(config_.get());
    } else {
        // The channel stays ours while open: close it, or the next Connect
        // could not open it again.
        config_->Connected = false;
        ftdi.Close(config_->FtdiHandle);
        config_->FtdiHandle = nullptr;
    }
}

void KavroNetworkUSBIM::Disconnect() {
    if (!IsConnected()) return;
    KavroNetwork::Disconnect();
    FTDICommunications().Close(config_->FtdiHandle);
    config_->FtdiHandle = nullptr;
}

}  // namespace KavroLibrary
