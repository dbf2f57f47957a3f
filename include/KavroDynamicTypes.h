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
    eDynamicRate Rate = eDynamicRate::Rate4K;
    bool ExternalMaster = false;
    std::int32_t Interval = 0;  // microseconds between reading sets
};

// One dynamic reading of one module.
struct sDynamicReadingData {
    std::int32_t error = 0;   // an eKavroErrors value
    std::int32_t counts = 0;  // the raw 24-bit word when error is 0, else 0
};

}  // namespace KavroLibrary
