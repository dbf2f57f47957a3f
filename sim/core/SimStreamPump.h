// Serves one byte-stream connection (a TCP client or the pty's master
// side): reads requests, hands them to the controller, writes the framed
// answers, until the peer goes, a fault closes it or the face stops.
#pragma once

#include "core/SimController.h"
#include "core/SimStopSignal.h"
#include "core/SimStreamFraming.h"

namespace kavrosim {

enum class SimPumpEnd { PeerClosed, CloseRequested, Stopped };

struct SimStreamEndpoint {
    int fd;       // non-blocking
    bool socket;  // sockets are written with MSG_NOSIGNAL
};

SimPumpEnd pumpStream(SimStreamEndpoint endpoint, SimController& controller, SimStreamDialect dialect,
                      const SimStopSignal& stop);

}  // namespace kavrosim
