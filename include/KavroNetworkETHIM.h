// A network behind an Ethernet interface module, reached over TCP.
#pragma once

#include <string>

#include "KavroNetwork.h"

namespace KavroLibrary {

// A network behind an Ethernet interface module.
class KavroNetworkETHIM : public KavroNetwork {
public:
    // `address` is the controller's dotted IPv4 address.
    KavroNetworkETHIM(int networkNumber, std::string networkName, std::string address);
    ~KavroNetworkETHIM() override;

    void Connect() override;
    void Disconnect() override;

private:
    void closeSocket();
};

}  // namespace KavroLibrary
