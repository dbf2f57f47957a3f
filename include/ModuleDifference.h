// A module's part in difference mode: whether it takes part, what kind of
// difference tracking it supports and the results of its last run.
#pragma once

#include <cstdint>

#include "KavroEnums.h"
#include "KavroErrors.h"

namespace KavroLibrary {

class KavroModule;

// A module's part in difference mode: whether it takes part, and its results.
class ModuleDifference {
public:
    // Made with its module; reached through KavroModule::Difference().
    explicit ModuleDifference(KavroModule* module);

    // How the module tracks a difference run.
    eDifferenceMode Mode() const { return mode_; }
    // Readings the module counted (Mode1).
    std::uint32_t ReadingCount() const { return readingCount_; }
    // Largest less smallest reading, in units.
    double Diff() const { return diff_; }
    // Largest less smallest reading, in counts.
    std::int32_t DiffCounts() const { return diffCounts_; }
    // The run's error or range flags.
    eKavroErrors Error() const { return error_; }
    // Whether the module takes part in the network's difference runs.
    bool Enabled() const { return enabled_; }
    // The largest reading, in units.
    double Max() const { return max_; }
    // The largest reading, in counts.
    std::int32_t MaxCounts() const { return maxCounts_; }
    // The smallest reading, in units.
    double Min() const { return min_; }
    // The smallest reading, in counts.
    std::int32_t MinCounts() const { return minCounts_; }
    // Where the module's difference run is.
    eDifferenceModeStatus Status() const { return status_; }
    // The sum of the readings in units (Mode1).
    double Sum() const { return sum_; }
    // The sum of the readings in counts (Mode1).
    std::int64_t SumCounts() const { return sumCounts_; }

    // Disabling always succeeds; enabling refuses while the network is busy,
    // for a module without the capability and for a probe not at 14 bits.
    void setEnabled(bool enabled);

    // Fetches the module's current difference result.
    void ReadDifference();

private:
    // The capability is decided when the module is created; the network-wide
    // controller arms and resets the modules.
    friend class KavroNetwork;
    friend class KavroModuleDP;
    friend class NetworkDifference;

    KavroModule* module_;  // owner, not owned
    eDifferenceMode mode_ = eDifferenceMode::ModeNone;
    std::uint32_t readingCount_ = 0;
    double diff_ = 0.0;
    std::int32_t diffCounts_ = 0;
    eKavroErrors error_ = eKavroErrors::NoError;
    bool enabled_ = false;
    double max_ = 0.0;
    std::int32_t maxCounts_ = 0;
    double min_ = 0.0;
    std::int32_t minCounts_ = 0;
    eDifferenceModeStatus status_ = eDifferenceModeStatus::None;
    double sum_ = 0.0;
    std::int64_t sumCounts_ = 0;
};

}  // namespace KavroLibrary
