// The readings of one dynamic run: one set per sample, one reading per
// module of the collection.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "KavroDynamicTypes.h"
#include "KavroErrors.h"
#include "KavroReadingItem.h"

namespace KavroLibrary {

struct NetworkConfiguration;

class KavroDynamicData {
public:
    KavroDynamicData(NetworkConfiguration* config, int moduleCount);
    ~KavroDynamicData();
    KavroDynamicData(const KavroDynamicData&) = delete;
    KavroDynamicData& operator=(const KavroDynamicData&) = delete;

    int ModuleCount() const { return moduleCount_; }
    int ReadingCount() const;
    // Why the run ended; a stop on request counts as success.
    int CollectionStatus() const;
    // Throws when there is no reading at the indices.
    void CheckBounds(int moduleIndex, int readingIndex) const;
    sReadingItem GetItem(int moduleIndex, int readingIndex) const;
    eKavroErrors GetReadingErrorStatus(int moduleIndex, int readingIndex) const;
    int GetReadingInCounts(int moduleIndex, int readingIndex) const;

    // Appends one reading set of ModuleCount() records and takes it over
    // (new[]; released with delete[]).
    void AddReadings(sDynamicReadingData* readings);

private:
    NetworkConfiguration* config_;  // not owned
    // Guards the sets while they grow; readers take the network's DataLock
    // first and this one only around their look at the sets.
    mutable std::mutex appendLock_;
    std::int32_t moduleCount_;
    std::vector<sDynamicReadingData*> sets_;
};

}  // namespace KavroLibrary
