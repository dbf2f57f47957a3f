// The USB interface module link: finding the FTDI devices, preparing a
// channel as a serial port to ask the controller what it is, and switching it
// to MPSSE for the 20-byte block exchange.
#pragma once

#include <string>
#include <vector>

#include "links/FtdiApi.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

class KavroNetwork;

class FTDICommunications {
public:
    // Appends one new KavroNetworkUSBIM per usable device.
    void FindDevices(std::vector<KavroNetwork*>& networks);
    // Opens the network's device and prepares it for block exchange; 0 = good.
    FT_STATUS Open(NetworkConfiguration* config);
    void Close(void* handle);
};

FT_STATUS ResetupDevice(void*& handle, int deviceIndex);
FT_STATUS SetRS232BaudRate(void* handle);
std::string GetModuleTypeController(void* handle);
FT_STATUS SetupSPI(void* handle, NetworkConfiguration* config);
void UpdateCapabilitiesUSBIM(NetworkConfiguration* config);

// Fills the link table with the USB link's functions.
void fillUsbLinkTable(NetworkConfiguration* config);

// Waits (in short steps) until the device's transmit queue is empty; false
// when it did not empty within 5 s or the device failed.
bool WaitForEmptyTransmitQueue(void* handle, long stepMilliseconds);

}  // namespace KavroLibrary
