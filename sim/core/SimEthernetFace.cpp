#include "core/SimEthernetFace.h"

#include "core/SimLoopback.h"

namespace kavrosim {

SimEthernetFace::SimEthernetFace(SimController& controller, std::string address)
    : SimTcpFace(controller, std::move(address), kEthernetPort, SimStreamDialect::Ethernet) {}

SimEthernetFace::~SimEthernetFace() { stop(); }

std::string SimEthernetFace::describe() const { return "ethernet " + address() + ":" + std::to_string(port()); }

}  // namespace kavrosim
