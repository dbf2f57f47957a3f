#include "links/DynamicStream.h"

#include <memory>
#include <stdexcept>

#include "KavroDynamic.h"
#include "core/Diagnostics.h"
#include "core/JoinOrRelease.h"
#include "links/LinkDispatch.h"
#include "modes/DynamicDecoding.h"

namespace KavroLibrary {

namespace {

constexpr int kRetryBudget = 2;  // per run, never refilled
constexpr int kBadPackets = 243;
constexpr int kLinkLost = 255;
constexpr int kOverflow = 252;

void finishRead(NetworkConfiguration* config) noexcept {
    {
        std::lock_guard<std::mutex> queue(config->QueueLock);
        config->DynamicFinished = true;
    }
    config->QueueSignal.notify_all();
}

// Sets the reader has not seen yet: a gap in the set indices means the
// stream skipped readings.
void countMissingSets(NetworkConfiguration* config, const DynamicPacketCheck& check, std::uint32_t& expected) {
    if (!check.hasIndex) return;
    const auto gap = static_cast<std::int32_t>(check.firstSet - expected);
    if (gap > 0) {
        config->DynamicSetsLost += static_cast<std::uint64_t>(gap);
        config->DynamicDataLost = true;
    }
    expected = check.firstSet + static_cast<std::uint32_t>(check.sets);
}

}  // namespace

void JoinDynamicThreads(NetworkConfiguration* config) noexcept {
    joinOrRelease(config->ReadThread);
    joinOrRelease(config->DecodeThread);
}

void StartDynamicThreads(NetworkConfiguration* config, sDynamicMode mode, DynamicReadThreadFn readThread) {
    JoinDynamicThreads(config);
    CleanDynDataQueue(config);
    config->DynamicRunning = true;
    config->DynamicMode = mode;
    config->DynamicFinished = false;
    config->DynamicStopRequest = false;
    config->DynamicError = 0;
    config->DynamicProcessed = false;
    config->DynamicComplete = false;
    config->DynamicPackets = 0;
    config->DynamicPacketsAskedAgain = 0;
    config->DynamicSetsReceived = 0;
    config->DynamicSetsLost = 0;
    config->DynamicDataLost = false;
    config->ReadThread = std::thread(readThread, config, mode);
    try {
        config->DecodeThread = std::thread(DynamicThreadProcess, config, mode);
    } catch (...) {
        config->DynamicStopRequest = true;
        JoinDynamicThreads(config);
        throw;
    }
}

void RunDynamicReadLoop(NetworkConfiguration* config, const sDynamicMode& mode, const DynamicTransport& link) noexcept {
    const bool withCrc = config->PacketCrc != 0;
    bool lost = false;
    try {
        const int started = link.start(config, mode);
        if (started == kDynamicStartLost) throw std::runtime_error(link.lostMessage);
        if (started != 0) {
            config->DynamicError = started;
            config->DynamicRunning = false;
        }
        int budget = kRetryBudget;
        std::uint8_t number = withCrc ? static_cast<std::uint8_t>(NextPacketNum(config)) : 0;
        DynamicBlock request = dynamicReadBlock(config->DynamicRequestFlags, number);
        std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[kDynamicPacketSize]);
        std::uint32_t expected = 0;
        while (config->DynamicRunning) {
            const DynamicTransfer transfer = link.exchange(config, request, block.get());
            if (transfer == DynamicTransfer::Lost) throw std::runtime_error(link.lostMessage);
            const DynamicPacketCheck check = transfer == DynamicTransfer::Whole
                                                 ? checkDynamicPacket(block.get(), kDynamicPacketSize, mode.Modules, withCrc)
                                                 : DynamicPacketCheck{};
            if (check.verdict != DynamicPacketCheck::Verdict::Good) {
                if (withCrc && budget > 0) {
                    // The same request again: the same number asks for the same packet.
                    --budget;
                    ++config->DynamicPacketsAskedAgain;
                } else {
                    config->DynamicError = kBadPackets;
                    config->DynamicRunning = false;
                    if (!withCrc && link.resync != nullptr) link.resync(config);
                }
            } else {
                ++config->DynamicPackets;
                countMissingSets(config, check, expected);
                if (check.sets > 0) {
                    config->DynamicSetsReceived += static_cast<std::uint64_t>(check.sets);
                    {
                        std::lock_guard<std::mutex> queue(config->QueueLock);
                        config->DynamicQueue.push_back(block.get());
                    }
                    block.release();
                    config->QueueSignal.notify_one();
                    block.reset(new std::uint8_t[kDynamicPacketSize]);
                }
                if (check.endStatus != 0) {
                    config->DynamicError = check.endStatus;
                    config->DynamicRunning = false;
                }
                if (withCrc) {
                    number = static_cast<std::uint8_t>(NextPacketNum(config));
                    request = dynamicReadBlock(config->DynamicRequestFlags, number);
                }
            }
            if (config->DynamicStopRequest) {
                link.stop(config);
                if (!config->DynamicRunning) break;
            }
        }
    } catch (const std::exception& error) {
        lost = true;
        diagnostic(error.what());
        if (config->DynamicError == 0) config->DynamicError = kLinkLost;
        config->DynamicRunning = false;
    }
    try {
        if (!lost) link.stop(config);
        if (config->Dynamic != nullptr) config->Dynamic->StopCommands();
    } catch (const std::exception& error) {
        diagnostic("Ending the dynamic run: ", error.what());
    } catch (...) {
    }
    const int error = config->DynamicError;
    if (error != 0 && error != static_cast<int>(eKavroErrors::DynamicStopped)) config->DynamicDataLost = true;
    if (error == kOverflow) config->DynamicDataLost = true;
    finishRead(config);
}

}  // namespace KavroLibrary
