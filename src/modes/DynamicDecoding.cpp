#include "modes/DynamicDecoding.h"

#include <memory>

#include "KavroDynamicData.h"
#include "core/Diagnostics.h"
#include "links/DynamicPacket.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

namespace {

constexpr std::uint32_t kErrorWord = 0x800000;

std::int32_t wordError(std::uint32_t word) {
    switch (word) {
        case 0x8000C4:
            return 0x21C4;
        case 0x8000FB:
            return static_cast<std::int32_t>(eKavroErrors::FRAMING_ERR);
        case 0x8000FC:
            return 252;
        case 0x8000FD:
            return 253;
        case 0x8000FE:
            return 254;
        case 0x8000FF:
            return static_cast<std::int32_t>(eKavroErrors::Timeout);
        case 0xFFFFFF:
            return static_cast<std::int32_t>(eKavroErrors::UnderRange);
        default:
            return static_cast<std::int32_t>(eKavroErrors::Unknown);
    }
}

}  // namespace

sDynamicReadingData decodeDynamicWord(std::uint32_t word) {
    sDynamicReadingData reading;
    if (word < kErrorWord) {
        reading.counts = static_cast<std::int32_t>(word);
    } else {
        reading.error = wordError(word);
    }
    return reading;
}

void decodeDynamicWords(const std::uint8_t* words, std::size_t count, sDynamicReadingData* out) {
    for (std::size_t i = 0; i < count; ++i, words += 3) {
        const std::uint32_t word = static_cast<std::uint32_t>(words[0]) | (static_cast<std::uint32_t>(words[1]) << 8) |
                                   (static_cast<std::uint32_t>(words[2]) << 16);
        // Readings far outnumber errors: keep their path branch-light.
        if (word < kErrorWord) {
            out[i].error = 0;
            out[i].counts = static_cast<std::int32_t>(word);
        } else {
            out[i] = decodeDynamicWord(word);
        }
    }
}

bool DynamicDataAvailable(NetworkConfiguration* config) {
    std::lock_guard<std::mutex> queue(config->QueueLock);
    return !config->DynamicQueue.empty();
}

void CleanDynDataQueue(NetworkConfiguration* config) {
    std::lock_guard<std::mutex> queue(config->QueueLock);
    for (unsigned char* block : config->DynamicQueue) delete[] block;
    config->DynamicQueue.clear();
}

void DynamicThreadProcess(NetworkConfiguration* config, sDynamicMode mode) noexcept {
    const int modules = mode.Modules;
    for (;;) {
        std::unique_ptr<unsigned char[]> block;
        {
            std::unique_lock<std::mutex> queue(config->QueueLock);
            config->QueueSignal.wait(queue, [&] { return !config->DynamicQueue.empty() || config->DynamicFinished; });
            if (config->DynamicQueue.empty()) break;  // the read thread has finished and nothing is left
            block.reset(config->DynamicQueue.front());
            config->DynamicQueue.pop_front();
        }
        const int sets = static_cast<int>(block[12]) | (static_cast<int>(block[13]) << 8);
        KavroDynamicData* data = config->DynamicData;
        if (data != nullptr && modules > 0) {
            const int added = data->AppendWords(block.get() + kDynamicHeaderSize, sets);
            if (added < sets) {
                config->DynamicSetsLost += static_cast<std::uint64_t>(sets - added);
                config->DynamicDataLost = true;
            }
        }
    }
    config->DynamicProcessed = true;
    config->DynamicComplete = true;
    // The network is free again before anyone can see the run complete.
    config->ActiveOperation = OperationIdle;
    {
        std::lock_guard<std::mutex> run(config->RunLock);
        config->DynamicState = eDynamicState::Complete;
    }
    config->RunSignal.notify_all();
    const DynamicCallbackFn callback = config->DynamicCallback;
    if (callback != nullptr) {
        try {
            callback(config->NetworkNumber);
        } catch (const std::exception& error) {
            diagnostic("The dynamic run's callback failed: ", error.what());
        } catch (...) {
            diagnostic("The dynamic run's callback failed");
        }
    }
}

}  // namespace KavroLibrary
