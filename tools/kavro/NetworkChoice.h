// Which networks a command works on, and connecting them side by side.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KavroLibrary {
class KavroNetwork;
}

namespace kavro_tool {

struct NetworkChoice {
    enum class Kind { Ethernet, Serial, Usb, Wireless };
    Kind kind = Kind::Ethernet;
    std::string where;  // address, device path[:baud], device index or controller identity, address[:channel]
};

// Parses "PATH[:BAUD]" and the like; throws std::invalid_argument.
NetworkChoice parseChoice(NetworkChoice::Kind kind, const std::string& text);

// Whether a --usb choice is a D2XX device index (digits) rather than a
// controller's identity.
bool isUsbIndex(const NetworkChoice& choice);

// The network object for a choice (a USB one by its device index) (not connected yet); `number` names it.
std::unique_ptr<KavroLibrary::KavroNetwork> makeNetwork(const NetworkChoice& choice, int number);

// Runs `work` on every network at once, one thread each (a bus's time-outs
// then add up per network, not over all of them); rethrows the first
// exception once every thread has ended.
void inParallel(const std::vector<KavroLibrary::KavroNetwork*>& networks,
                const std::function<void(KavroLibrary::KavroNetwork&)>& work);

// Connects every network at once; a failure is one line on standard error.
void connectAll(const std::vector<KavroLibrary::KavroNetwork*>& networks);

// A short name for records: the network's name, or its controller's identity.
std::string networkLabel(KavroLibrary::KavroNetwork& network, int number);

}  // namespace kavro_tool
