// The decoding side of a dynamic run: reading words into errors and counts,
// and the thread that turns the queued packets into reading sets.
#pragma once

#include <cstddef>
#include <cstdint>

#include "KavroDynamicTypes.h"

namespace KavroLibrary {

struct NetworkConfiguration;

// One 24-bit reading word as the controller streamed it.
sDynamicReadingData decodeDynamicWord(std::uint32_t word);

// Decodes `count` 3-byte little-endian words into `out`.
void decodeDynamicWords(const std::uint8_t* words, std::size_t count, sDynamicReadingData* out);

// Body of the decoding thread: takes the queued packets until the read thread
// has finished and the queue is empty, then completes the run and calls the
// run's callback with the network number.
void DynamicThreadProcess(NetworkConfiguration* config, sDynamicMode mode) noexcept;

// True when a packet waits in the queue.
bool DynamicDataAvailable(NetworkConfiguration* config);

// Drops every queued packet.
void CleanDynDataQueue(NetworkConfiguration* config);

}  // namespace KavroLibrary
