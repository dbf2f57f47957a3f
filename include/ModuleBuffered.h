// A module's part in buffered mode: its settings and the readings emptied
// from its memory at the end of a run.
#pragma once

#include <cstdint>
#include <vector>

#include "KavroEnums.h"
#include "KavroReadingItem.h"

namespace KavroLibrary {

class KavroModule;

// A module's part in buffered mode: its settings and the readings emptied from it.
class ModuleBuffered {
public:
    // Made with its module; reached through KavroModule::Buffered().
    explicit ModuleBuffered(KavroModule* module);

    // Whether the module takes part in the network's buffered runs.
    bool Enabled() const { return enabled_; }
    // Lets the module take part; refused without the capability or while the network is busy.
    void setEnabled(bool enabled);
    // How the module records.
    eBufferedMode Mode() const { return mode_; }
    // Chooses how the module records: at its interval (Sync) or per trigger (Sample).
    void setMode(eBufferedMode mode);
    // Reading interval in timing units of 102.4 µs; 40 at the least.
    int OTUs() const { return otus_; }
    // Sets the interval in timing units (at least 40).
    void setOTUs(int otus);
    // The interval in whole microseconds.
    int ReadingInterval() const;
    // Sets the interval in microseconds, rounded to 40 timing units.
    void setReadingInterval(int microseconds);
    // Requested interval minus the interval actually set, in microseconds.
    int ReadingIntervalErrorUs() const { return readingIntervalErrorUs_; }
    // The sample setting a buffered master sends.
    short TxSample() const { return txSample_; }
    // Sends the sample setting to the module at once.
    void setTxSample(short value);
    // Where the module's buffered run is.
    eBufferedModeStatus Status() const { return status_; }

    // Number of readings emptied from the module at the last stop.
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
