#include "KavroNetworkETHIM.h"

#include <cerrno>
#include <utility>

#include "core/Diagnostics.h"
#include "links/EthernetLink.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

KavroNetworkETHIM::KavroNetworkETHIM(int networkNumber, std::string networkName, std::string address)
    : KavroNetwork(networkNumber, std::move(networkName)) {
    config_->Address = std::move(address);
    config_->ControllerName = "ETHIM (Unknown)";
    config_->NetworkType = eNetworkType::ETHIM;
    config_->Identify = ETHIMKavroIdentifyController;
    config_->GetInfo = ETHIMKavroGetInfoController;
    config_->SendCommand = ETHIMSendModuleCommand;
    config_->GetReply = ETHIMReadModuleResponse;
    config_->SetSpeed = SetControllerSpeedETHIM;
    config_->SetIdle = SetControllerIdleETHIM;
    config_->StartDynamic = StartDynamicETHIM;
}

KavroNetworkETHIM::~KavroNetworkETHIM() {
    // A run's threads and the modules' reset use the link while it is still open.
    stopRunningMode();
    if (config_->Connected) KavroNetworkETHIM::Disconnect();
    closeSocket();
}

void KavroNetworkETHIM::closeSocket() { KavroLibrary::closeSocket(config_.get()); }

void KavroNetworkETHIM::Connect() {
    if (config_->Connected) Disconnect();
    KavroNetwork::Connect();
    openSocket(config_.get());
    if (config_->InitNetworkHook != nullptr && config_->InitNetworkHook(config_.get())) {
        UpdateCapabilitiesETHIM(config_.get());
        if (config_->ResetAllSpeedsHook != nullptr) config_->ResetAllSpeedsHook(config_.get());
    } else {
        const int error = errno;
        config_->Connected = false;
        diagnostic("Unable to communicate with ethim. Sockets error number: ", error);
    }
}

void KavroNetworkETHIM::Disconnect() {
    KavroNetwork::Disconnect();
    closeSocket();
}

}  // namespace KavroLibrary
