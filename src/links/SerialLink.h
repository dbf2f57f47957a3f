// The serial interface module link: a raw 8N1 RS-232 line carrying the byte
// framing of ByteFraming.h. The serial link cannot stream dynamic data.
#pragma once

#include <termios.h>

#include <cstdint>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Opens the tty named by `Address` at `BaudRate` and sets it up raw, keeping
// the descriptor in `SocketFd`. Returns the descriptor, or -1 after writing
// "Unable to open <path>" to standard error.
int RS232OpenLine(NetworkConfiguration* config);

// Closes `SocketFd` if it is open.
void RS232CloseLine(NetworkConfiguration* config);

// The line settings RS232OpenLine applies to what the line held before: raw
// 8N1, receiver on, modem lines ignored, the speed for `baud`, a 1 s read
// time-out without a minimum count.
void RS232ConfigureLine(termios& settings, int baud);

// Writes all `count` bytes and waits until they have left. Returns the number
// of bytes written.
int RS232WriteDataFixedLength(NetworkConfiguration* config, unsigned char* bytes, int count);

// Gathers `count` bytes for at most 1 s. Returns the number of bytes gathered.
int RS232ReadDataFixedLength(NetworkConfiguration* config, unsigned char* bytes, int count);

// The controller's code for a line rate: 19200 2, 28800 3, 38400 4, 57600 5,
// 115200 6, 230400 7, 460800 8, any other 0.
int BaudRateToBaudIndex(int baud);

// The link table of the serial link.
void RS232SendModuleCommand(NetworkConfiguration* config, ModuleCommand* command);
ModuleReply RS232ReadModuleResponse(NetworkConfiguration* config, unsigned char echo, bool longReply);
ControllerIdentifyReply RS232KavroIdentifyController(NetworkConfiguration* config);
ControllerInfoReply RS232KavroGetInfoController(NetworkConfiguration* config);
std::uint32_t SetControllerSpeedRS232(NetworkConfiguration* config, eNetSpeed speed);
std::uint32_t SetControllerIdleRS232(NetworkConfiguration* config);
void StartDynamicRS232(NetworkConfiguration* config, sDynamicMode mode);

// Capability flag 0 on, 3 to 6 off, 1 and 2 as they are; a controller of
// firmware number above 150 offers the speed High.
void UpdateCapabilitiesRS232(NetworkConfiguration* config);

}  // namespace KavroLibrary
