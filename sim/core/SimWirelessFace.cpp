#include "core/SimWirelessFace.h"

namespace kavrosim {

SimWirelessFace::SimWirelessFace(SimController& controller, std::string address, int port)
    : SimTcpFace(controller, std::move(address), port, SimStreamDialect::Serial) {}

SimWirelessFace::~SimWirelessFace() { stop(); }

std::string SimWirelessFace::location() const { return address() + ":" + std::to_string(port()); }

std::string SimWirelessFace::describe() const { return "wireless " + location(); }

}  // namespace kavrosim
