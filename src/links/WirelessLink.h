// The wireless interface module link: a stream connection to the module, over
// TCP for a network address or over Bluetooth RFCOMM for a Bluetooth device
// address, carrying the serial interface module's framing. It cannot stream
// dynamic data.
#pragma once

#include <cstdint>
#include <string>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// TCP port used when the address names none.
constexpr int kWirelessDefaultPort = 10001;

// Where an address text points. Forms: "a.b.c.d", "a.b.c.d:port" (TCP) and
// "XX:XX:XX:XX:XX:XX" (Bluetooth, RFCOMM on the network's channel).
struct WirelessAddress {
    enum Kind { Invalid, Tcp, Bluetooth } kind = Invalid;
    std::string host;  // dotted IPv4 for TCP
    int port = kWirelessDefaultPort;
    unsigned char bluetooth[6] = {};  // as written, most significant first
};
WirelessAddress ParseWirelessAddress(const std::string& text);

// Opens the connection (5 s limit); sets SocketFd and the connected flag.
bool WIMOpen(NetworkConfiguration* config);
void WIMClose(NetworkConfiguration* config);

void WIMSendModuleCommand(NetworkConfiguration* config, ModuleCommand* command);
ModuleReply WIMReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply);
ControllerIdentifyReply WIMKavroIdentifyController(NetworkConfiguration* config);
ControllerInfoReply WIMKavroGetInfoController(NetworkConfiguration* config);
std::uint32_t SetControllerSpeedWIM(NetworkConfiguration* config, eNetSpeed speed);
std::uint32_t SetControllerIdleWIM(NetworkConfiguration* config);
void StartDynamicWIM(NetworkConfiguration* config, sDynamicMode mode);
void UpdateCapabilitiesWIM(NetworkConfiguration* config);

// Fills the link table with the wireless link's functions.
void fillWirelessLinkTable(NetworkConfiguration* config);

}  // namespace KavroLibrary
