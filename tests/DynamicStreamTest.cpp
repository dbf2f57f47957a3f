// What a controller's packets do to a run, against a scripted link: the
// read loop's checks, retries, hand-over and ends, and the decoding of words.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "KavroLibrary.h"
#include "MessageOf.h"
#include "links/Crc16.h"
#include "links/DynamicStream.h"
#include "modes/DynamicDecoding.h"

using namespace KavroLibrary;

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Script {
    std::vector<Bytes> answers;  // one per read request; an empty one loses the link
    std::size_t next = 0;
    std::vector<DynamicBlock> requests;
    int resyncs = 0;
};
Script* script = nullptr;

int scriptedStart(NetworkConfiguration*, const sDynamicMode&) { return 0; }
DynamicTransfer scriptedExchange(NetworkConfiguration*, const DynamicBlock& request, std::uint8_t* packet) {
    script->requests.push_back(request);
    if (script->next >= script->answers.size() || script->answers[script->next].empty()) return DynamicTransfer::Lost;
    const Bytes& answer = script->answers[script->next++];
    std::copy(answer.begin(), answer.end(), packet);
    return DynamicTransfer::Whole;
}
std::uint32_t scriptedStop(NetworkConfiguration*) { return 0; }
void scriptedResync(NetworkConfiguration*) { ++script->resyncs; }
const DynamicTransport kScripted{"Scripted Link Lost", scriptedStart, scriptedExchange, scriptedStop, scriptedResync};

struct PacketLayout {
    int sets = 0;
    int endStatus = 0;
    bool badCrc = false;
    std::int64_t firstSet = -1;  // -1: the packet carries no index
    std::uint32_t word = 0x000010;
};

Bytes packet(int modules, const PacketLayout& layout, bool withCrc = true) {
    Bytes out(kDynamicPacketSize, 0);
    const std::size_t readings = static_cast<std::size_t>(layout.sets) * modules * 3;
    out[2] = static_cast<std::uint8_t>(layout.endStatus);
    if (layout.firstSet >= 0) {
        out[3] = 1;
        for (int i = 0; i < 4; ++i) out[8 + i] = static_cast<std::uint8_t>(layout.firstSet >> (8 * i));
    }
    out[12] = static_cast<std::uint8_t>(layout.sets & 0xFF);
    out[13] = static_cast<std::uint8_t>(layout.sets >> 8);
    for (std::size_t i = 0; i + 2 < readings + 2 && 14 + i + 2 < out.size(); i += 3) {
        out[14 + i] = static_cast<std::uint8_t>(layout.word);
        out[15 + i] = static_cast<std::uint8_t>(layout.word >> 8);
        out[16 + i] = static_cast<std::uint8_t>(layout.word >> 16);
    }
    if (withCrc && 14 + readings + 2 <= out.size()) {
        unsigned short crc = tabularCRC16(1, out.data(), static_cast<unsigned short>(14 + readings), 0);
        if (layout.badCrc) crc ^= 0x0101;
        out[14 + readings] = static_cast<std::uint8_t>(crc >> 8);
        out[15 + readings] = static_cast<std::uint8_t>(crc);
    }
    return out;
}

struct ScriptedRun {
    explicit ScriptedRun(bool withCrc, int modules = 2) {
        config.PacketCrc = withCrc ? 1 : 0;
        config.DynamicRequestFlags = withCrc ? kDynamicChecking : 0;
        mode.Modules = modules;
    }
    ~ScriptedRun() { CleanDynDataQueue(&config); }
    void go(std::vector<Bytes> answers) {
        script = &scripted;
        scripted.answers = std::move(answers);
        config.DynamicRunning = true;
        RunDynamicReadLoop(&config, mode, kScripted);
        script = nullptr;
    }
    std::size_t queued() {
        std::lock_guard<std::mutex> lock(config.QueueLock);
        return config.DynamicQueue.size();
    }
    NetworkConfiguration config{0, "Scripted"};
    sDynamicMode mode;
    Script scripted;
};

}  // namespace

// Packets without readings are not queued; the end status ends the run; the
// packet number moves on with each good packet.
TEST(DynamicReadLoop, QueuesReadingsAndEndsOnTheEndStatus) {
    ScriptedRun run(true);
    run.go({packet(2, {3}), packet(2, {0}), packet(2, {1, 242})});
    EXPECT_EQ(2u, run.queued());
    EXPECT_EQ(242, run.config.DynamicError);
    EXPECT_TRUE(run.config.DynamicFinished);
    EXPECT_FALSE(run.config.DynamicRunning);
    ASSERT_EQ(3u, run.scripted.requests.size());
    EXPECT_EQ(0x4E, run.scripted.requests[0][0]);
    EXPECT_EQ(8, run.scripted.requests[0][4]);
    EXPECT_EQ(16, run.scripted.requests[1][4]);
    EXPECT_EQ(4u, run.config.DynamicSetsReceived);
    EXPECT_FALSE(run.config.DynamicDataLost);
}

// Two bad packets are asked for again with the same number; a third ends the
// run with 243 whatever the packet's fault.
TEST(DynamicReadLoop, RetriesTwicePerRunThenGivesUp) {
    ScriptedRun retried(true);
    retried.go({packet(2, {1, 0, true}), packet(2, {1, 0, true}), packet(2, {1, 242})});
    EXPECT_EQ(242, retried.config.DynamicError);
    ASSERT_EQ(3u, retried.scripted.requests.size());
    EXPECT_EQ(retried.scripted.requests[0], retried.scripted.requests[2]);
    EXPECT_EQ(2u, retried.config.DynamicPacketsAskedAgain);

    ScriptedRun exhausted(true);
    exhausted.go({packet(2, {1, 0, true}), packet(2, {1}), packet(2, {1, 0, true}), packet(2, {1, 0, true})});
    EXPECT_EQ(243, exhausted.config.DynamicError);
    EXPECT_TRUE(exhausted.config.DynamicFinished);
    EXPECT_TRUE(exhausted.config.DynamicDataLost);
    EXPECT_EQ(1u, exhausted.queued());

    // 1361 sets of one module are 4083 bytes: more than a packet holds.
    ScriptedRun tooLong(false, 1);
    tooLong.go({packet(1, {1361}, false)});
    EXPECT_EQ(243, tooLong.config.DynamicError);
    EXPECT_EQ(1, tooLong.scripted.resyncs);
    ScriptedRun longest(false, 1);
    longest.go({packet(1, {1360, 242}, false)});
    EXPECT_EQ(242, longest.config.DynamicError);
}

TEST(DynamicReadLoop, ALostLinkOrSkippedSetsShowInTheHealth) {
    ScriptedRun lost(true);
    lost.go({packet(2, {1}), Bytes{}});
    EXPECT_EQ(255, lost.config.DynamicError);
    EXPECT_TRUE(lost.config.DynamicFinished);
    EXPECT_TRUE(lost.config.DynamicDataLost);

    ScriptedRun gap(true);
    gap.go({packet(2, {2, 0, false, 0}), packet(2, {2, 0, false, 5}), packet(2, {1, 242, false, 7})});
    EXPECT_EQ(3u, gap.config.DynamicSetsLost);
    EXPECT_TRUE(gap.config.DynamicDataLost);
    EXPECT_EQ(242, gap.config.DynamicError);
}

TEST(DynamicDecoding, WordsBecomeErrorsAndCounts) {
    const struct {
        std::uint32_t word;
        std::int32_t error;
        std::int32_t counts;
    } cases[] = {
        {0x000010, 0, 16},          {0x7FFFFF, 0, 0x7FFFFF},    {0x8000C4, 0x21C4, 0}, {0x8000FB, 8459, 0},
        {0x8000FC, 252, 0},         {0x8000FF, 255, 0},         {0xFFFFFF, 8466, 0},   {0x800123, 0x10002, 0},
    };
    for (const auto& c : cases) {
        const sDynamicReadingData reading = decodeDynamicWord(c.word);
        EXPECT_EQ(c.error, reading.error) << std::hex << c.word;
        EXPECT_EQ(c.counts, reading.counts) << std::hex << c.word;
    }
}

// Appended words are 23-bit signed; indices are checked at their edges; only
// some run errors make a collection's status.
TEST(KavroDynamicData, SignedItemsBoundsAndStatus) {
    KavroNetwork network(0, "Dynamic data");
    NetworkConfiguration* config = network.Configuration();
    KavroDynamicData data(config, 2);
    EXPECT_EQ("No Dynamic collection available", messageOf([&] { data.GetItem(0, 0); }));
    const std::uint8_t words[] = {0x00, 0x00, 0x40, 0xFF, 0xFF, 0x3F, 0x10, 0, 0, 0x11, 0, 0};
    EXPECT_EQ(2, data.AppendWords(words, 2));
    EXPECT_EQ(-4194304, data.GetReadingInCounts(0, 0));
    EXPECT_EQ(4194303, data.GetReadingInCounts(1, 0));
    EXPECT_EQ(17, data.GetReadingInCounts(1, 1));
    EXPECT_EQ("ModuleIndex specified is negative", messageOf([&] { data.GetItem(-1, 0); }));
    EXPECT_EQ("ReadingIndex specified is negative", messageOf([&] { data.GetItem(0, -1); }));
    EXPECT_EQ("ModuleIndex specified is greater than the number of modules in the collection",
              messageOf([&] { data.GetItem(2, 0); }));
    EXPECT_EQ("ReadingIndex specified is greater than the number of readings in the collection",
              messageOf([&] { data.GetItem(0, 2); }));

    config->DynamicError = 242;
    EXPECT_EQ(0, data.CollectionStatus());
    config->DynamicError = 243;
    EXPECT_EQ(243, data.CollectionStatus());
}
