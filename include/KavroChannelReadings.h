// The result of a multi-channel read of a wireless device.
#pragma once

#include <utility>
#include <vector>

#include "KavroEnums.h"
#include "KavroErrors.h"

namespace KavroLibrary {

// One channel of a multi-channel read.
struct sChannelReading {
    int Channel = 0;                             // channel number, 1 to 12
    eKavroErrors Error = eKavroErrors::NoError;  // the channel's own status
    eRead3_UOM Unit = eRead3_UOM::Default;       // unit the value is given in
    double Value = 0.0;                          // the reading in that unit
};

// The channels read together from a wireless hand tool, in channel order.
class KavroChannelReadings {
public:
    KavroChannelReadings() = default;
    // Library use: the result of a read.
    explicit KavroChannelReadings(std::vector<sChannelReading> readings) : readings_(std::move(readings)) {}

    // A copy of the record at the index; no range check.
    sChannelReading operator[](int index) const { return readings_[static_cast<std::size_t>(index)]; }
    // Number of channels read.
    int ReadingCount() const { return static_cast<int>(readings_.size()); }

private:
    std::vector<sChannelReading> readings_;
};

}  // namespace KavroLibrary
