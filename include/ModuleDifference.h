// A module's part in difference mode: whether it takes part, what kind of
// difference tracking it supports and the results of its last run.
#pragma once

#include <cstdint>

#include "KavroEnums.h"
#include "KavroErrors.h"

namespace KavroLibrary {

class KavroModule;

class ModuleDifference {
public:
    explicit ModuleDifference(KavroModule* module);

    eDifferenceMode Mode() const { return mode_; }
    std::uint32_t ReadingCount() const { return readingCount_; }
    double Diff() const { return diff_; }
    std::int32_t DiffCounts() const { return diffCounts_; }
    eKavroErrors Error() const { return error_; }
    bool Enabled() const { return enabled_; }
    double Max() const { return max_; }
    std::int32_t MaxCounts() const { return maxCounts_; }
    double Min() const { return min_; }
    std::int32_t MinCounts() const { return minCounts_; }
    eDifferenceModeStatus Status() const { return status_; }
    double Sum() const { return sum_; }
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
