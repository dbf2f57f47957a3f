// One converted reading, as handed out by buffered and dynamic collections.
#pragma once

#include <cstdint>

#include "KavroErrors.h"

namespace KavroLibrary {

struct sReadingItem {
    eKavroErrors error = eKavroErrors::NoError;
    std::int32_t counts = 0;
    double value = 0.0;  // in units of measure
};

}  // namespace KavroLibrary
