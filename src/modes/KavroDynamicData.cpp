#include "KavroDynamicData.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "links/NetworkConfiguration.h"
#include "modes/DynamicDecoding.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

constexpr std::int32_t kProbeOverRange = 0x3FFFFF;
constexpr std::int32_t kProbeUnderRange = 0x7FFFFF;

}  // namespace

KavroDynamicData::KavroDynamicData(NetworkConfiguration* config, int moduleCount)
    : config_(config),
      moduleCount_(std::max(moduleCount, 0)),
      decoders_(static_cast<std::size_t>(moduleCount_)),
      probes_(static_cast<std::size_t>(moduleCount_), false) {}

KavroDynamicData::~KavroDynamicData() = default;

KavroDynamicData::ChunkTable::~ChunkTable() {
    freeChunks();
    std::free(slots);
}

void KavroDynamicData::ChunkTable::freeChunks() {
    for (int i = 0; slots != nullptr && i < kChunks && slots[i] != nullptr; ++i) {
        delete[] slots[i];
        slots[i] = nullptr;
    }
}

void KavroDynamicData::Reset(int moduleCount, std::vector<std::shared_ptr<const KavroReadType>> decoders,
                             std::vector<bool> probes) {
    std::lock_guard<std::mutex> append(appendLock_);
    count_.store(0, std::memory_order_release);
    chunks_.freeChunks();
    moduleCount_ = std::max(moduleCount, 0);
    decoders_ = std::move(decoders);
    probes_ = std::move(probes);
    decoders_.resize(static_cast<std::size_t>(moduleCount_));
    probes_.resize(static_cast<std::size_t>(moduleCount_), false);
}

int KavroDynamicData::ReadingCount() const {
    std::lock_guard<std::mutex> data(config_->DataLock);
    return static_cast<int>(std::min<std::int64_t>(count_.load(std::memory_order_acquire), INT32_MAX));
}

int KavroDynamicData::CollectionStatus() const {
    const int error = config_->DynamicError;
    return error == static_cast<int>(eKavroErrors::DynamicStopped) ? 0 : error;
}

void KavroDynamicData::CheckBounds(int moduleIndex, int readingIndex) const {
    std::lock_guard<std::mutex> data(config_->DataLock);
    checkBoundsLocked(moduleIndex, readingIndex);
}

void KavroDynamicData::checkBoundsLocked(int moduleIndex, int readingIndex) const {
    const std::int64_t readings = count_.load(std::memory_order_acquire);
    if (readings == 0) throw std::runtime_error("No Dynamic collection available");
    if (moduleIndex < 0) throw std::runtime_error("ModuleIndex specified is negative");
    if (moduleIndex >= moduleCount_) {
        throw std::runtime_error("ModuleIndex specified is greater than the number of modules in the collection");
    }
    if (readingIndex < 0) throw std::runtime_error("ReadingIndex specified is negative");
    if (readingIndex >= readings) {
        throw std::runtime_error("ReadingIndex specified is greater than the number of readings in the collection");
    }
}

sDynamicReadingData* KavroDynamicData::slot(std::int64_t set) const {
    return chunks_.slots[set / kSetsPerChunk] + (set % kSetsPerChunk) * moduleCount_;
}

sReadingItem KavroDynamicData::convert(int moduleIndex, const sDynamicReadingData& raw) const {
    sReadingItem item;
    const KavroReadType* decoder = decoders_[static_cast<std::size_t>(moduleIndex)].get();
    item.error = static_cast<eKavroErrors>(raw.error);
    if (probes_[static_cast<std::size_t>(moduleIndex)]) {
        item.counts = raw.counts;
        if (raw.error == 0 && raw.counts == kProbeOverRange) {
            item.counts = decoder != nullptr ? decoder->FullScale : raw.counts;
            item.error = eKavroErrors::OverRange;
        } else if (raw.error == 0 && raw.counts == kProbeUnderRange) {
            item.counts = 0;
            item.error = eKavroErrors::UnderRange;
        }
    } else {
        item.counts = (raw.counts & 0x3FFFFF) - (raw.counts & 0x400000);
    }
    item.value = decoder != nullptr ? decoder->Read(item.counts) : 0.0;
    return item;
}

sReadingItem KavroDynamicData::GetItem(int moduleIndex, int readingIndex) const {
    std::lock_guard<std::mutex> data(config_->DataLock);
    checkBoundsLocked(moduleIndex, readingIndex);
    return convert(moduleIndex, slot(readingIndex)[moduleIndex]);
}

eKavroErrors KavroDynamicData::GetReadingErrorStatus(int moduleIndex, int readingIndex) const {
    return GetItem(moduleIndex, readingIndex).error;
}

int KavroDynamicData::GetReadingInCounts(int moduleIndex, int readingIndex) const {
    return GetItem(moduleIndex, readingIndex).counts;
}

int KavroDynamicData::GetItems(int moduleIndex, int firstReading, int count, sReadingItem* items) const {
    if (count <= 0 || items == nullptr) return 0;
    std::lock_guard<std::mutex> data(config_->DataLock);
    checkBoundsLocked(moduleIndex, firstReading);
    const std::int64_t available = count_.load(std::memory_order_acquire) - firstReading;
    const int n = static_cast<int>(std::min<std::int64_t>(count, available));
    for (int i = 0; i < n; ++i) items[i] = convert(moduleIndex, slot(firstReading + i)[moduleIndex]);
    return n;
}

sDynamicReadingData* KavroDynamicData::reserve() {
    const std::int64_t set = count_.load(std::memory_order_relaxed);
    const std::int64_t chunk = set / kSetsPerChunk;
    if (chunk >= kChunks || moduleCount_ == 0) return nullptr;
    if (chunks_.slots == nullptr) {
        chunks_.slots = static_cast<sDynamicReadingData**>(std::calloc(kChunks, sizeof(sDynamicReadingData*)));
        if (chunks_.slots == nullptr) throw std::bad_alloc();
    }
    if (chunks_.slots[chunk] == nullptr) {
        chunks_.slots[chunk] = new sDynamicReadingData[static_cast<std::size_t>(kSetsPerChunk) * moduleCount_];
    }
    return slot(set);
}

void KavroDynamicData::AddReadings(sDynamicReadingData* readings) {
    std::unique_ptr<sDynamicReadingData[]> owned(readings);
    std::lock_guard<std::mutex> append(appendLock_);
    sDynamicReadingData* target = reserve();
    if (target == nullptr || readings == nullptr) return;
    std::copy(readings, readings + moduleCount_, target);
    // Publishes the set: a reader that sees the count sees the readings.
    count_.fetch_add(1, std::memory_order_release);
}

int KavroDynamicData::AppendWords(const std::uint8_t* words, int sets) {
    std::lock_guard<std::mutex> append(appendLock_);
    int added = 0;
    while (added < sets) {
        sDynamicReadingData* target = reserve();
        if (target == nullptr) break;
        // The rest of the chunk takes as many sets as fit, then one publish.
        const std::int64_t set = count_.load(std::memory_order_relaxed);
        const int room = static_cast<int>(kSetsPerChunk - set % kSetsPerChunk);
        const int batch = std::min(sets - added, room);
        decodeDynamicWords(words + static_cast<std::size_t>(added) * moduleCount_ * 3,
                           static_cast<std::size_t>(batch) * moduleCount_, target);
        added += batch;
        count_.fetch_add(batch, std::memory_order_release);
    }
    return added;
}

}  // namespace KavroLibrary
