#include "ModuleDifference.h"

#include <stdexcept>

#include "KavroModule.h"
#include "KavroModuleDP.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"
#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

// Range markers of the word-sized read-out, and the counts they read as.
constexpr std::uint16_t kBelowRangeWord = 0x8000;
constexpr std::uint16_t kAboveRangeWord = 0xFFFF;
constexpr std::int32_t kWordFullScale = 16384;

std::int32_t wordCounts(std::uint16_t word) {
    if (word == kBelowRangeWord) return 0;
    if (word == kAboveRangeWord) return kWordFullScale;
    return word;
}

}  // namespace

ModuleDifference::ModuleDifference(KavroModule* module) : module_(module) {}

void ModuleDifference::setEnabled(bool enabled) {
    if (!enabled) {
        enabled_ = false;
        return;
    }
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change module enable state during an kavro operation");
    }
    if (mode_ == eDifferenceMode::ModeNone) throw std::runtime_error("Module is not difference mode capable.");
    const auto* probe = dynamic_cast<const KavroModuleDP*>(module_);
    if (probe != nullptr && probe->Resolution() != eResolution::res14Bit) {
        throw std::runtime_error("Module must be set to 14bit resolution for difference mode.");
    }
    enabled_ = true;
}

void ModuleDifference::ReadDifference() {
    if (status_ != eDifferenceModeStatus::Started) {
        throw std::runtime_error("Read difference called for a module not running difference mode.");
    }
    min_ = max_ = sum_ = diff_ = 0.0;
    minCounts_ = maxCounts_ = diffCounts_ = 0;
    sumCounts_ = 0;
    readingCount_ = 0;

    NetworkConfiguration* config = module_->Configuration();
    const int address = module_->Address();
    const KavroReadType* readType = module_->ReadType();
    if (mode_ == eDifferenceMode::Mode1) {
        const KavroReadDiff1Result reply = KavroCommands::KavroReadDiff1(config, address);
        if (reply.LinkStatus != 0) {
            error_ = static_cast<eKavroErrors>(reply.LinkStatus);
        } else {
            readingCount_ = reply.Count24;
            // Range markers fold into the error kept since the run was armed,
            // so interim reads accumulate under- and over-range.
            setError(error_, reply.First, reply.Second, eKavroErrors::NoError,
                     static_cast<eKavroErrors>(reply.ModuleError));
            minCounts_ = wordCounts(reply.First);
            maxCounts_ = wordCounts(reply.Second);
            // The 40-bit sum: bits 32-39 in byte 9, bits 0-31 in bytes 5-8.
            sumCounts_ = (static_cast<std::int64_t>(reply.ByteValue) << 32) |
                         static_cast<std::int64_t>(reply.SumLow | reply.Zero);
            sum_ = readType->ReadSum(static_cast<long>(sumCounts_), static_cast<int>(readingCount_));
        }
    } else if (mode_ == eDifferenceMode::Mode2) {
        const KavroReadDiff2Result reply = KavroCommands::KavroReadDiff2(config, address);
        if (reply.LinkStatus != 0) {
            error_ = static_cast<eKavroErrors>(reply.LinkStatus);
        } else {
            if (error_ == eKavroErrors::NoError) error_ = static_cast<eKavroErrors>(reply.ModuleError);
            // Full readings carry no range markers: taken as they come.
            minCounts_ = static_cast<std::int32_t>(reply.First);
            maxCounts_ = static_cast<std::int32_t>(reply.Second);
        }
    } else {
        throw std::runtime_error("Internal Error: Unexpected difference mode.");
    }

    min_ = readType->Read(minCounts_);
    max_ = readType->Read(maxCounts_);
    diff_ = max_ - min_;
    diffCounts_ = maxCounts_ - minCounts_;
}

}  // namespace KavroLibrary
