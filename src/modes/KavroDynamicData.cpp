#include "KavroDynamicData.h"

#include <stdexcept>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

KavroDynamicData::KavroDynamicData(NetworkConfiguration* config, int moduleCount)
    : config_(config), moduleCount_(moduleCount) {}

KavroDynamicData::~KavroDynamicData() {
    for (sDynamicReadingData* set : sets_) delete[] set;
}

int KavroDynamicData::ReadingCount() const {
    std::lock_guard<std::mutex> data(config_->DataLock);
    std::lock_guard<std::mutex> sets(appendLock_);
    return static_cast<int>(sets_.size());
}

int KavroDynamicData::CollectionStatus() const {
    const int error = config_->DynamicError;
    return error == static_cast<int>(eKavroErrors::DynamicStopped) ? 0 : error;
}

void KavroDynamicData::CheckBounds(int moduleIndex, int readingIndex) const {
    const int readings = ReadingCount();
    if (readings == 0) throw std::runtime_error("No Dynamic collection available");
    if (moduleIndex >= moduleCount_) {
        throw std::runtime_error("ModuleIndex specified is greater than the number of modules in the collection");
    }
    if (readingIndex >= readings) {
        throw std::runtime_error("ReadingIndex specified is greater than the number of readings in the collection");
    }
}

void KavroDynamicData::AddReadings(sDynamicReadingData* readings) {
    std::lock_guard<std::mutex> sets(appendLock_);
    try {
        sets_.push_back(readings);
    } catch (...) {
        delete[] readings;
        throw;
    }
}

}  // namespace KavroLibrary
