#include "ModuleBuffered.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

#include "KavroModule.h"
#include "commands/KavroCommands.h"
#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

constexpr int kMinimumOTUs = 40;
constexpr double kMicrosecondsPerOTU = 102.4;
constexpr int kLargestIntervalUs = 6710784;  // 65535 timing units

constexpr std::uint16_t kBelowRangeWord = 0x8000;
constexpr std::uint16_t kAboveRangeWord = 0xFFFF;

}  // namespace

ModuleBuffered::ModuleBuffered(KavroModule* module) : module_(module) {}

void ModuleBuffered::setEnabled(bool enabled) {
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change module buffered state whilst the network is busy");
    }
    if (enabled && !module_->BufferedCapable()) throw std::runtime_error("Module is not buffered capable");
    enabled_ = enabled;
}

void ModuleBuffered::setMode(eBufferedMode mode) {
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change buffered mode whilst the network is busy");
    }
    mode_ = mode;
}

void ModuleBuffered::setOTUs(int otus) {
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change OTUs whilst the network is busy");
    }
    // Kept as the modules' own rule is written: whole multiples of 40 of the
    // value divided in double precision, which every integer from 40 passes.
    const double value = otus;
    if (otus < kMinimumOTUs || value != (value / 40.0) * 40.0) throw std::runtime_error("Invalid OTU");
    otus_ = otus;
    readingIntervalErrorUs_ = 0;
}

int ModuleBuffered::ReadingInterval() const { return static_cast<int>(otus_ * kMicrosecondsPerOTU); }

void ModuleBuffered::setReadingInterval(int microseconds) {
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change OTUs whilst the network is busy");
    }
    if (microseconds > kLargestIntervalUs) throw std::runtime_error("Reading interval too large");
    int otus = kMinimumOTUs * static_cast<int>(microseconds / kMicrosecondsPerOTU / 40.0 + 0.5);
    if (otus == 0) otus = kMinimumOTUs;
    try {
        setOTUs(otus);
    } catch (const std::runtime_error&) {
        throw std::runtime_error("Error setting OTUs");
    }
    readingIntervalErrorUs_ = microseconds - ReadingInterval();
}

void ModuleBuffered::setTxSample(short value) {
    NetworkConfiguration* config = module_->Configuration();
    if (config->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change TxSample whilst the network is busy");
    }
    const KavroValueResult reply =
        KavroCommands::KavroSetMode(config, module_->Address(), eSetModeMode::TxSample, value);
    if (reply.LinkStatus != 0) throw std::runtime_error("Unable To Set TxSample Value.");
    txSample_ = value;
}

sReadingItem ModuleBuffered::GetBufferedItem(int index) const {
    const std::uint16_t word = data_[static_cast<std::size_t>(index)];
    const KavroReadType* readType = module_->ReadType();
    sReadingItem item;
    if (word == kBelowRangeWord) {
        item.error = eKavroErrors::UnderRange;
        item.counts = 0;
    } else if (word == kAboveRangeWord) {
        item.error = eKavroErrors::OverRange;
        item.counts = readType->FullScale;
    } else {
        item.error = eKavroErrors::NoError;
        item.counts = static_cast<std::int16_t>(word);
    }
    item.value = readType->Read(item.counts);
    return item;
}

sReadingItem* ModuleBuffered::GetBufferedDataArray(int& length) const {
    length = BufferedDataLength();
    auto* items = static_cast<sReadingItem*>(std::malloc(sizeof(sReadingItem) * static_cast<std::size_t>(length)));
    if (items == nullptr && length > 0) throw std::runtime_error("Out of Memory");
    for (int index = 0; index < length; ++index) new (&items[index]) sReadingItem(GetBufferedItem(index));
    return items;
}

}  // namespace KavroLibrary
