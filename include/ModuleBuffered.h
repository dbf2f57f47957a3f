// A module's part in buffered mode: its settings and the readings emptied
// from its memory at the end of a run.
#pragma once

#include <cstdint>
#include <vector>

#include "KavroEnums.h"
#include "KavroReadingItem.h"

namespace KavroLibrary {

class KavroModule;

class ModuleBuffered {
public:
    explicit ModuleBuffered(KavroModule* module);

    bool Enabled() const { return enabled_; }
    void setEnabled(bool enabled);
    eBufferedMode Mode() const { return mode_; }
    void setMode(eBufferedMode mode);
    // Reading interval in timing units of 102.4 µs; 40 at the least.
    int OTUs() const { return otus_; }
    void setOTUs(int otus);
    // The interval in whole microseconds.
    int ReadingInterval() const;
    void setReadingInterval(int microseconds);
    // Requested interval minus the interval actually set, in microseconds.
    int ReadingIntervalErrorUs() const { return readingIntervalErrorUs_; }
    short TxSample() const { return txSample_; }
    void setTxSample(short value);
    eBufferedModeStatus Status() const { return status_; }

    int BufferedDataLength() const { return static_cast<int>(data_.size()); }
    // Converts raw word `index`; no bounds check.
    sReadingItem GetBufferedItem(int index) const;
    // All items in an array from the C allocator; the caller frees it with free().
    sReadingItem* GetBufferedDataArray(int& length) const;

private:
    friend class NetworkBuffered;

    KavroModule* module_;  // owner, not owned
    std::vector<std::uint16_t> data_;
    eBufferedMode mode_ = eBufferedMode::None;
    bool enabled_ = false;
    std::int32_t otus_ = 40;
    std::int32_t readingIntervalErrorUs_ = 0;
    std::int16_t txSample_ = 1;
    eBufferedModeStatus status_ = eBufferedModeStatus::None;
    bool masterArmed_ = false;
};

}  // namespace KavroLibrary
