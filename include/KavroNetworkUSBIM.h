// A network behind a USB interface module (an FTDI dual-channel device whose
// channel A is wired to the controller).
#pragma once

#include "KavroNetwork.h"

namespace KavroLibrary {

class KavroNetworkUSBIM : public KavroNetwork {
public:
    KavroNetworkUSBIM(int networkNumber, int deviceIndex);
    ~KavroNetworkUSBIM() override;

    void Connect() override;
    void Disconnect() override;
};

}  // namespace KavroLibrary
