// A network behind a USB interface module (an FTDI dual-channel device whose
// channel A is wired to the controller).
#pragma once

#include "KavroNetwork.h"

namespace KavroLibrary {

// A network behind a USB interface module.
class KavroNetworkUSBIM : public KavroNetwork {
public:
    // The interface module at `deviceIndex` in the D2XX library's device list.
    KavroNetworkUSBIM(int networkNumber, int deviceIndex);
    ~KavroNetworkUSBIM() override;

    void Connect() override;
    void Disconnect() override;
};

}  // namespace KavroLibrary
