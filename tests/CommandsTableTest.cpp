// Every command with a reply, from one table: the bytes it sends, and how it
// copes with replies that are missing, empty, cut, refused or oversized
// (random replies are the module_replies fuzz target's). Out-of-bounds reads
// and leaked reply buffers are caught by the sanitizer runs of these tests.
#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

struct Row {
    const char* Name;
    Bytes Sent;
    int Type;
    int ReplyLength;
    unsigned char EchoArgument;  // what the link is told to wait for
    unsigned char Echo;          // what a module answers with
    bool Checked;                // the record reports a module error
    std::uint32_t EchoOnly;      // expected for a reply of just the echo
    std::uint32_t Oversized;     // expected for the echo and 599 zeros
    // Runs the command; returns the module error (or combined error code)
    // when the record has one, else the link status.
    std::function<std::uint32_t(NetworkConfiguration*)> Run;
};

// The code a caller acts on for records with a module error.
template <typename Result>
std::uint32_t code(const Result& r) {
    return r.LinkStatus != 0 ? r.LinkStatus : r.ModuleError;
}

using C = NetworkConfiguration*;
using K = KavroCommands;

const std::vector<Row>& rows() {
    static const unsigned char block[4] = {1, 2, 3, 4};
    // clang-format off
    static const std::vector<Row> table = {
        // name, bytes sent, type, reply length, echo argument, echo, checked, echo-only, oversized, run
        {"SetAddr", {'S', 1, 'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 0}, 0, 2, 'S', 'S', false, 0, 0,
         [](C c) { return K::KavroSetAddr(c, "ABCDEFGHIJ", 1).LinkStatus; }},
        {"Notify", {'N', 0}, 0, 11, 'N', 'N', false, 0, 0, [](C c) { return K::KavroNotify(c).LinkStatus; }},
        {"Identify", {'I', 1}, 0, 30, 'I', 'I', false, 0, 0, [](C c) { return K::KavroIdentify(c, 1).LinkStatus; }},
        {"GetProbeID", {'i', 1}, 0, 11, 'i', 'i', false, 0, 0, [](C c) { return K::KavroGetProbeID(c, 1).LinkStatus; }},
        {"GetInfo", {'B', 1}, 0, 41, 'B', 'B', false, 0, 0, [](C c) { return K::KavroGetInfo(c, 1).LinkStatus; }},
        {"Ping", {':', 1, 0}, 0, 13, ':', ':', false, 0, 0, [](C c) { return K::Ping(c, 1).LinkStatus; }},
        {"Clr", {'C', 1}, 0, 2, 'C', 'C', false, 0, 0, [](C c) { return K::KavroClr(c, 1).LinkStatus; }},
        {"Direction", {'U', 1}, 0, 2, 'U', 'U', false, 0, 0, [](C c) { return K::KavroDirection(c, 1).LinkStatus; }},
        {"SetMode", {'V', 1, 51, 0, 16, 0}, 0, 2, 'V', 'V', true, 255, 0,
         [](C c) { return K::KavroSetMode(c, 1, eSetModeMode::Resolution, 16).LinkStatus; }},
        {"RefMark", {'K', 1}, 0, 2, 0, 'K', true, 255, 0, [](C c) { return code(K::KavroRefMark(c, 1)); }},
        {"Preset", {'P', 1, 0x78, 0x56, 0x34, 0x12}, 0, 2, 0, 'P', true, 255, 0,
         [](C c) { return code(K::KavroPreset(c, 1, 0x12345678u)); }},
        {"GetStatus", {'G', 1}, 0, 4, 'G', 'G', true, 255, 0, [](C c) { return code(K::KavroGetStatus(c, 1)); }},
        {"Read1", {'1', 1}, 0, 3, 0, '1', true, 255, 0, [](C c) { return code(K::KavroRead1(c, 1)); }},
        {"Read2", {'L', 1}, 0, 5, 0, 'L', true, 255, 0, [](C c) { return code(K::KavroRead2(c, 1)); }},
        {"Readburst", {'T', 3}, 0, 13, 'T', 'T', false, 0, 0,
         [](C c) { const auto r = K::Readburst(c, 3); delete[] r.Data; return r.LinkStatus; }},
        {"Difference", {'F', 1}, 0, 2, 0, 'F', true, 255, 0, [](C c) { return code(K::KavroDifference(c, 1)); }},
        {"ReadDiff1", {'D', 1}, 0, 13, 0, 'D', true, 255, 0, [](C c) { return code(K::KavroReadDiff1(c, 1)); }},
        {"ReadDiff2", {'X', 1}, 0, 9, 0, 'X', true, 255, 0, [](C c) { return code(K::KavroReadDiff2(c, 1)); }},
        {"Read3", {'a', 1, 2, 4, 0xFF, 0x0F, 2}, 2, 0, 'a', 'a', true, 255, 255, [](C c) {
             return K::KavroRead3(c, 1, 2, eRead3_ControlCode::TaggedInt7DPs, 0xFFF, eRead3_UOM::Mils).ErrorCode; }},
        {"ReadBuffered1", {'Q', 1}, 2, 0, 0, 'Q', true, 253, 253,
         [](C c) { return K::KavroReadBuffered1(c, 1).ErrorCode(); }},
        {"ReadMemory", {'M', 1, 0x76, 0xF0, 0x01, 0x08, 2}, 0, 3, 0, 'M', false, 0, 0,
         [](C c) { return K::KavroReadMemory(c, 1, 0x801F076, 2).LinkStatus; }},
        {"ConfigRead", {'c', 1, 2, 1, 4, 3}, 0, 36, 'c', 'c', false, 0, 0,
         [](C c) { const auto r = K::KavroConfigRead(c, 1, 0x102, 0x304); delete[] r.Data; return r.LinkStatus; }},
        {"ConfigRead_Int", {'c', 1, 2, 0, 0, 0}, 0, 36, 'c', 'c', false, 0, 0,
         [](C c) { int value = 0; return K::KavroConfigRead_Int(c, 1, 2, value); }},
        {"PipeReceive32", {'.', 1}, 0, 36, 0, '.', true, 255, 255,
         [](C c) { return code(K::KavroPipeReceive32(c, 1)); }},
        {"PassThroughTx", {'d', 1, 0, 3, 'A', '\r', '\n'}, 0, 2, 0, 'd', true, 255, 0,
         [](C c) { return code(K::KavroPassThroughTx(c, 1, 0, "A\r\n")); }},
        {"PassThroughRx", {'e', 1, 5}, 2, 0, 0, 'e', true, 255, 0,
         [](C c) { return code(K::KavroPassThroughRx(c, 1, 5)); }},
        // The block writes are byte-checked with their checksums in their own tests.
        {"ConfigWrite", {}, 0, 2, 'b', 'b', false, 0, 0,
         [](C c) { unsigned char data[4] = {1, 2, 3, 4}; return K::KavroConfigWrite(c, 1, 2, 0, data, 4).LinkStatus; }},
        {"PipeSend32", {}, 0, 2, 0, '-', true, 255, 0, [](C c) { return code(K::KavroPipeSend32(c, 1, block, 4)); }},
    };
    // clang-format on
    return table;
}

struct Outcome {
    std::uint32_t Code = 0;
    std::string Thrown;
};

struct Reply {
    std::uint32_t Status = 0;
    Bytes Data;
};

Outcome run(const Row& row, const Reply& reply) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply(reply.Data, reply.Status);
    Outcome outcome;
    try {
        outcome.Code = row.Run(&config);
    } catch (const std::runtime_error& e) {
        outcome.Thrown = e.what();
    }
    EXPECT_EQ(0u, link.pendingReplies()) << row.Name << " fetched no reply";
    return outcome;
}

}  // namespace

TEST(CommandsTable, EveryCommandGoesOutByteExactAndFetchesOnce) {
    for (const Row& row : rows()) {
        NetworkConfiguration config(0, "net");
        FakeModuleBus link(&config);
        try {
            row.Run(&config);
        } catch (const std::runtime_error&) {
            // The silent bus times the pass-through receive out; its bytes went all the same.
        }
        ASSERT_EQ(1u, link.commands.size()) << row.Name;
        EXPECT_EQ(row.Type, link.sent.back().Type) << row.Name;
        EXPECT_EQ(row.ReplyLength, link.sent.back().ReplyLength) << row.Name;
        if (!row.Sent.empty()) {
            EXPECT_EQ(row.Sent, link.commands.back()) << row.Name;
        }
        ASSERT_EQ(1u, link.fetches.size()) << row.Name;
        EXPECT_EQ(row.EchoArgument, link.fetches.front().Echo) << row.Name;
        EXPECT_FALSE(link.fetches.front().LongReply) << row.Name;
    }
}

TEST(CommandsTable, FailedEmptyCutRefusedAndOversizedRepliesAreNotTakenAsAnswers) {
    for (const Row& row : rows()) {
        const Outcome silent = run(row, {255, {}});
        if (row.Echo == 'e') {
            EXPECT_EQ("Pass through Rx timed out.", silent.Thrown);
        } else {
            EXPECT_EQ("", silent.Thrown) << row.Name;
            EXPECT_EQ(255u, silent.Code) << row.Name;
        }
        // A failed exchange with bytes behind it: the status wins, the bytes are ignored.
        EXPECT_EQ(253u, run(row, {253, {row.Echo, 0, 0, 0}}).Code) << row.Name;

        const Outcome empty = run(row, {0, {}});
        EXPECT_EQ("", empty.Thrown) << row.Name;
        EXPECT_EQ(row.Checked ? 255u : 0u, empty.Code) << row.Name;

        EXPECT_EQ(row.EchoOnly, run(row, {0, {row.Echo}}).Code) << row.Name;
        // "!" without its error byte is no refusal code, just a bad reply.
        // Set address and read burst check their echo too.
        const bool echoChecked = row.Checked || row.Echo == 'S' || row.Echo == 'T';
        EXPECT_EQ(echoChecked ? 255u : 0u, run(row, {0, {'!'}}).Code) << row.Name;
        // A refusal is the module's error, checked command or not; identify
        // and get-info hand the "!" on as their echo, ping's caller sorts
        // answers by their checksum.
        const bool echoCarriesIt = row.Echo == 'I' || row.Echo == 'B' || row.Echo == ':';
        EXPECT_EQ(echoCarriesIt ? 0u : 0x2105u, run(row, {0, {'!', 0x05}}).Code) << row.Name;

        Bytes big(600, 0);
        big[0] = row.Echo;
        const Outcome oversized = run(row, {0, big});
        EXPECT_EQ("", oversized.Thrown) << row.Name;
        EXPECT_EQ(row.Oversized, oversized.Code) << row.Name;
    }
}

