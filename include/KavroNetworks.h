// The collection of every network the library knows: those listed in the
// controller configuration files, then the USB interface modules found.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KavroLibrary {

class KavroNetwork;
class FTDICommunications;

// Every network the installation has; filled by FindNetworks(), owned by the server.
class KavroNetworks {
public:
    KavroNetworks();
    ~KavroNetworks();
    KavroNetworks(const KavroNetworks&) = delete;
    KavroNetworks& operator=(const KavroNetworks&) = delete;

    // Rebuilds the list: configuration-file networks first, then USB. Earlier
    // KavroNetwork pointers become invalid. Throws std::logic_error when HOME
    // is not set.
    void FindNetworks();

    // Number of networks found.
    unsigned int Count() const;
    // Throws std::runtime_error("Network at index does not exist.") past the end.
    KavroNetwork* Network(unsigned int index) const;

    // Connects every network; those that do not answer stay unconnected.
    void ConnectAll();
    // Disconnects every network.
    void DisconnectAll();

private:
    friend class KavroServer;

    void clear();

    // Called before the networks are destroyed, so that the server's watcher
    // lets go of them first.
    std::function<void()> beforeClear_;

    std::unique_ptr<FTDICommunications> ftdi_;
    std::vector<KavroNetwork*> networks_;
};

}  // namespace KavroLibrary
