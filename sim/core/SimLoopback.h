// Listening TCP sockets on loopback addresses. Tests run side by side in
// separate processes, each controller on its own 127.x.y.z with the fixed
// port, so a free address is found by trying to bind.
#pragma once

#include <string>

namespace kavrosim {

// The port of every Ethernet interface module.
constexpr int kEthernetPort = 10001;

// A listening, non-blocking socket on address:port, or -1 with errno set.
int listenOn(const std::string& address, int port);

// Binds on the first free 127.x.y.z (x, y, z from 1 to 254) of a sequence
// that starts at a point derived from the process id; stores the address.
// Throws std::runtime_error when none of the addresses tried is free.
int listenOnFreeLoopback(int port, std::string& address);

// An address on which nothing listens on the port right now. Another
// process may take it before the caller binds; prefer starting a face
// without an address, which binds in one step.
std::string freeLoopbackAddress(int port = kEthernetPort);

}  // namespace kavrosim
