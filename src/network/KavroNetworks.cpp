#include "KavroNetworks.h"

#include <stdexcept>

#include "KavroNetwork.h"
#include "links/FtdiCommunications.h"
#include "network/ConfigurationFiles.h"

namespace KavroLibrary {

KavroNetworks::KavroNetworks() : ftdi_(std::make_unique<FTDICommunications>()) {}

KavroNetworks::~KavroNetworks() { clear(); }

void KavroNetworks::clear() {
    if (beforeClear_ && !networks_.empty()) beforeClear_();
    for (KavroNetwork* network : networks_) delete network;
    networks_.clear();
}

void KavroNetworks::FindNetworks() {
    clear();
    readConfigurationFiles(networks_);
    ftdi_->FindDevices(networks_);
}

unsigned int KavroNetworks::Count() const { return static_cast<unsigned int>(networks_.size()); }

KavroNetwork* KavroNetworks::Network(unsigned int index) const {
    if (index >= networks_.size()) throw std::runtime_error("Network at index does not exist.");
    return networks_[index];
}

void KavroNetworks::ConnectAll() {
    for (KavroNetwork* network : networks_) network->Connect();
}

void KavroNetworks::DisconnectAll() {
    for (KavroNetwork* network : networks_) network->Disconnect();
}

}  // namespace KavroLibrary
