// One converted reading, as handed out by buffered and dynamic collections.
#pragma once

#include <cstdint>

#include "KavroErrors.h"

namespace KavroLibrary {

// One reading: its error, counts and value in units.
struct sReadingItem {
    // NoError, or why the reading is not one (UnderRange ...).
    eKavroErrors error = eKavroErrors::NoError;
    // The reading in counts.
    std::int32_t counts = 0;
    double value = 0.0;  // in units of measure
};

}  // namespace KavroLibrary
