// Decoding dynamic packets on one core: words into errors and counts, and
// whole packets appended to a run's data.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "KavroDynamicData.h"
#include "KavroDynamicTypes.h"
#include "links/NetworkConfiguration.h"
#include "modes/DynamicDecoding.h"

using namespace KavroLibrary;

namespace {

constexpr int kModules = 8;
constexpr int kSetsPerPacket = 4080 / (3 * kModules);  // a full packet of eight modules

std::vector<std::uint8_t> packetWords() {
    std::mt19937 random(7);
    std::vector<std::uint8_t> words(static_cast<std::size_t>(kSetsPerPacket) * kModules * 3);
    for (std::size_t i = 0; i < words.size(); i += 3) {
        // Mostly readings, now and then a module's error word.
        const std::uint32_t word = random() % 100 == 0 ? 0x8000FFu : random() % 0x400000u;
        words[i] = static_cast<std::uint8_t>(word);
        words[i + 1] = static_cast<std::uint8_t>(word >> 8);
        words[i + 2] = static_cast<std::uint8_t>(word >> 16);
    }
    return words;
}

void DecodeWords(benchmark::State& state) {
    const std::vector<std::uint8_t> words = packetWords();
    const std::size_t count = words.size() / 3;
    std::vector<sDynamicReadingData> out(count);
    for (auto _ : state) {
        decodeDynamicWords(words.data(), count, out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(DecodeWords);

// Packets into a run's storage, as the decoding thread does it (allocation
// of the storage included).
void AppendPackets(benchmark::State& state) {
    const std::vector<std::uint8_t> words = packetWords();
    NetworkConfiguration config(0, "bench");
    KavroDynamicData data(&config, kModules);
    std::int64_t sets = 0;
    for (auto _ : state) {
        if (data.AppendWords(words.data(), kSetsPerPacket) < kSetsPerPacket) {
            state.PauseTiming();
            data.Reset(kModules, {}, {});
            state.ResumeTiming();
        }
        sets += kSetsPerPacket;
    }
    state.SetItemsProcessed(sets * kModules);
}
BENCHMARK(AppendPackets);

}  // namespace

BENCHMARK_MAIN();
