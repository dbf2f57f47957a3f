// One reading as numpy holds it in the arrays of buffered and dynamic data:
// a record of error (an eKavroErrors value), counts and value (in units).
#pragma once

#include <cstdint>

#include <pybind11/numpy.h>

#include "KavroReadingItem.h"

namespace kavro_python {

struct ReadingRecord {
    std::int32_t error;
    std::int32_t counts;
    double value;

    static ReadingRecord of(const KavroLibrary::sReadingItem& item) {
        return {static_cast<std::int32_t>(item.error), item.counts, item.value};
    }
};

// numpy is imported on first use, so that `import kavro` works without it.
// Call with the GIL held.
inline void registerReadingRecord() {
    static bool registered = false;
    if (registered) return;
    PYBIND11_NUMPY_DTYPE(ReadingRecord, error, counts, value);
    registered = true;
}

}  // namespace kavro_python
