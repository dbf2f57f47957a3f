// The readings of one dynamic run: one set per sample, one reading per
// module of the collection.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "KavroDynamicTypes.h"
#include "KavroErrors.h"
#include "KavroReadingItem.h"

namespace KavroLibrary {

struct NetworkConfiguration;
class KavroReadType;

// Owned by the network's KavroDynamic and alive as long as the network: a
// pointer to it stays valid from run to run. Each start empties it and fills
// it with the new run's readings, which may be read while they arrive.
class KavroDynamicData {
public:
    // Made by the network's KavroDynamic.
    KavroDynamicData(NetworkConfiguration* config, int moduleCount);
    ~KavroDynamicData();
    KavroDynamicData(const KavroDynamicData&) = delete;
    KavroDynamicData& operator=(const KavroDynamicData&) = delete;

    // Number of modules in the collection.
    int ModuleCount() const { return moduleCount_; }
    // Reading sets collected so far.
    int ReadingCount() const;
    // Why the run ended; a stop on request counts as success.
    int CollectionStatus() const;
    // Throws std::runtime_error when there is no reading at the indices.
    void CheckBounds(int moduleIndex, int readingIndex) const;
    // A reading with its error, counts and value in units.
    sReadingItem GetItem(int moduleIndex, int readingIndex) const;
    // The error of a reading only.
    eKavroErrors GetReadingErrorStatus(int moduleIndex, int readingIndex) const;
    // The counts of a reading only.
    int GetReadingInCounts(int moduleIndex, int readingIndex) const;
    // Copies up to `count` readings of one module from `firstReading` on into
    // `items`; returns how many were copied (fewer at the end of the data).
    int GetItems(int moduleIndex, int firstReading, int count, sReadingItem* items) const;

    // Appends one reading set of ModuleCount() records and takes it over
    // (new[]; released with delete[]).
    void AddReadings(sDynamicReadingData* readings);

    // Library use: empties the object for a run of `moduleCount` modules whose
    // readings decode with `decoders` (one per module, as they were at the
    // start; a null entry decodes counts only) and `probes` (which are
    // digital probes). Called under the network's DataLock with no run going.
    void Reset(int moduleCount, std::vector<std::shared_ptr<const KavroReadType>> decoders, std::vector<bool> probes);
    // Library use: appends `sets` reading sets of 3-byte words (module 0
    // first), decoded in place; returns how many fitted.
    int AppendWords(const std::uint8_t* words, int sets);

private:
    // One short of 4096: a chunk and the allocator's header then fill whole
    // pages, where 4096 sets would take a page more each.
    static constexpr int kSetsPerChunk = 4095;
    static constexpr int kChunks = 65536;  // room for 268 million sets

    void checkBoundsLocked(int moduleIndex, int readingIndex) const;
    sDynamicReadingData* slot(std::int64_t set) const;
    sDynamicReadingData* reserve();
    sReadingItem convert(int moduleIndex, const sDynamicReadingData& raw) const;

    NetworkConfiguration* config_;  // not owned
    // Taken by the appender; readers take the network's DataLock instead and
    // see only the sets the count has published.
    mutable std::mutex appendLock_;
    std::atomic<std::int32_t> moduleCount_;
    // The chunk table, made with the first set from zeroed memory the system
    // hands out untouched; chunks as the run grows, in order, so the first
    // empty entry ends the used ones (a short run costs a few pages).
    struct ChunkTable {
        ChunkTable() = default;
        ~ChunkTable();
        ChunkTable(const ChunkTable&) = delete;
        ChunkTable& operator=(const ChunkTable&) = delete;
        void freeChunks();
        sDynamicReadingData** slots = nullptr;
    };
    ChunkTable chunks_;
    std::atomic<std::int64_t> count_{0};
    std::vector<std::shared_ptr<const KavroReadType>> decoders_;
    std::vector<bool> probes_;
};

}  // namespace KavroLibrary
