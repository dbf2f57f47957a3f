// A network behind a serial interface module on an RS-232 line.
#pragma once

#include <string>

#include "KavroNetwork.h"

namespace KavroLibrary {

// A network behind a serial interface module.
class KavroNetworkRS232 : public KavroNetwork {
public:
    // `devicePath` names the tty; `baud` is the line's rate.
    KavroNetworkRS232(int networkNumber, std::string networkName, std::string devicePath, int baud);
    ~KavroNetworkRS232() override;

    void Connect() override;
    void Disconnect() override;

private:
    void closeLine();
};

}  // namespace KavroLibrary
