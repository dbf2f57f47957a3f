// A network behind a wireless interface module, reached over TCP or over
// Bluetooth RFCOMM.
#pragma once

#include <string>

#include "KavroNetwork.h"

namespace KavroLibrary {

// A network behind a wireless interface module.
class KavroNetworkWIM : public KavroNetwork {
public:
    // `address`: "a.b.c.d" or "a.b.c.d:port" for TCP (port 10001 when not
    // given), or a Bluetooth device address "XX:XX:XX:XX:XX:XX", reached on
    // RFCOMM `channel`.
    KavroNetworkWIM(int networkNumber, std::string networkName, std::string address, int channel);
    ~KavroNetworkWIM() override;

    void Connect() override;
    void Disconnect() override;
};

}  // namespace KavroLibrary
