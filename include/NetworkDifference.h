// Difference mode across one network: start and stop for every enabled module.
#pragma once

#include "KavroEnums.h"

namespace KavroLibrary {

class KavroNetwork;

// Difference mode on one network: start and stop the enabled modules.
class NetworkDifference {
public:
    // Made by its network; reached through KavroNetwork::Difference().
    explicit NetworkDifference(KavroNetwork* network);

    // Number of modules whose difference mode is enabled.
    int Count() const;
    // Where the network's difference run is.
    eDifferenceModeStatus Status() const { return status_; }

    // Checks the enabled modules and starts them tracking; the network is busy until Stop().
    void Start();
    // Stops the modules and reads every enabled module's result.
    void Stop();

private:
    KavroNetwork* network_;  // owner, not owned
    eDifferenceModeStatus status_ = eDifferenceModeStatus::None;
};

}  // namespace KavroLibrary
