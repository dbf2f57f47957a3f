#include "KavroNetworkWIM.h"

#include <exception>
#include <utility>

#include "links/NetworkConfiguration.h"
#include "links/WirelessLink.h"

namespace KavroLibrary {

KavroNetworkWIM::KavroNetworkWIM(int networkNumber, std::string networkName, std::string address, int channel)
    : KavroNetwork(networkNumber, std::move(networkName)) {
    config_->Address = std::move(address);
    config_->WirelessChannel = channel;
    config_->ControllerName = "WIMV2 (Unknown)";
    config_->NetworkType = eNetworkType::WIMV2;
    fillWirelessLinkTable(config_.get());
}

KavroNetworkWIM::~KavroNetworkWIM() {
    // The modules are reset while the connection is still open.
    try {
        if (IsConnected()) KavroNetworkWIM::Disconnect();
    } catch (const std::exception&) {
        config_->Connected = false;  // an operation still runs: just let go
    }
    WIMClose(config_.get());
}

void KavroNetworkWIM::Connect() {
    if (IsConnected()) KavroNetworkWIM::Disconnect();
    KavroNetwork::Connect();
    if (!WIMOpen(config_.get())) {
        config_->Connected = false;
        return;
    }
    if (config_->InitNetworkHook != nullptr && config_->InitNetworkHook(config_.get())) {
        UpdateCapabilitiesWIM(config_.get());
        if (config_->ResetAllSpeedsHook != nullptr) config_->ResetAllSpeedsHook(config_.get());
    } else {
        config_->Connected = false;
        WIMClose(config_.get());
    }
}

void KavroNetworkWIM::Disconnect() {
    KavroNetwork::Disconnect();
    WIMClose(config_.get());
}

}  // namespace KavroLibrary
