// Difference mode across one network: start and stop for every enabled module.
#pragma once

#include "KavroEnums.h"

namespace KavroLibrary {

class KavroNetwork;

class NetworkDifference {
public:
    explicit NetworkDifference(KavroNetwork* network);

    // Number of modules whose difference mode is enabled.
    int Count() const;
    eDifferenceModeStatus Status() const { return status_; }

    void Start();
    void Stop();

private:
    KavroNetwork* network_;  // owner, not owned
    eDifferenceModeStatus status_ = eDifferenceModeStatus::None;
};

}  // namespace KavroLibrary
