// The read side of a dynamic run, shared by the links that stream: one small
// table of byte transfers per link, one loop that checks, retries, queues and
// ends the stream, and the start and end of the run's two threads.
#pragma once

#include <cstdint>

#include "links/DynamicPacket.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// What became of one transfer.
enum class DynamicTransfer {
    Whole,  // the whole answer arrived
    Short,  // part of it arrived in time: a bad packet
    Lost,   // the link is gone
};

// A start refused by the controller carries its status; a lost link this.
constexpr int kDynamicStartLost = -1;

struct DynamicTransport {
    // What the read thread reports when the link is lost.
    const char* lostMessage;
    // Sends the start request: 0 when the controller streams, its status
    // when it refused, kDynamicStartLost when the link is lost.
    int (*start)(NetworkConfiguration* config, const sDynamicMode& mode);
    // Sends a read request and gathers one packet of kDynamicPacketSize bytes.
    DynamicTransfer (*exchange)(NetworkConfiguration* config, const DynamicBlock& request, std::uint8_t* packet);
    // Sends the stop request; the controller's status.
    std::uint32_t (*stop)(NetworkConfiguration* config);
    // Puts the link back in step after a bad packet that cannot be asked
    // for again; may be null.
    void (*resync)(NetworkConfiguration* config);
};

using DynamicReadThreadFn = void (*)(NetworkConfiguration* config, sDynamicMode mode);

// Empties the queue, resets the run's flags and health, and starts the read
// thread and the decoding thread (joining those of a finished run first).
void StartDynamicThreads(NetworkConfiguration* config, sDynamicMode mode, DynamicReadThreadFn readThread);

// The read thread's loop over `link`; never throws. Always ends by setting
// DynamicFinished.
void RunDynamicReadLoop(NetworkConfiguration* config, const sDynamicMode& mode, const DynamicTransport& link) noexcept;

// Waits for both threads of the last run to end (a thread does not wait for
// itself: a callback that ends its own run lets its thread go).
void JoinDynamicThreads(NetworkConfiguration* config) noexcept;

}  // namespace KavroLibrary
