// Records of a dynamic (high-speed streaming) run.
#pragma once

#include <cstdint>

#include "KavroEnums.h"
#include "KavroErrors.h"

namespace KavroLibrary {

// The parameters of one dynamic run, handed by value to the link and to the
// decoding thread.
struct sDynamicMode {
    std::int32_t Collection = -1;  // readings per module; -1 = until stopped
    std::int32_t Modules = 0;      // number of modules in the collection
    // The sampling rate.
    eDynamicRate Rate = eDynamicRate::Rate4K;
    // Whether a master module paces the run.
    bool ExternalMaster = false;
    std::int32_t Interval = 0;  // microseconds between reading sets
};

// One dynamic reading of one module.
struct sDynamicReadingData {
    std::int32_t error = 0;   // an eKavroErrors value
    std::int32_t counts = 0;  // the raw 24-bit word when error is 0, else 0
};

// How a dynamic run went, readable while it runs and after it ended.
struct sDynamicHealth {
    std::uint64_t Packets = 0;          // packets taken in, with or without readings
    std::uint64_t PacketsAskedAgain = 0;  // packets that arrived damaged and were asked for again
    std::uint64_t ReadingSets = 0;      // reading sets taken in
    std::uint64_t ReadingSetsLost = 0;  // reading sets known missing from the stream
    // Readings are missing: sets skipped in the stream, the controller's
    // store overflowed, or the run ended on an error before its end.
    bool DataLost = false;
};

}  // namespace KavroLibrary
