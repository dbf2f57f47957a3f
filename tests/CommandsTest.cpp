// The module commands one by one: the bytes each sends beyond the common
// table (CommandsTableTest.cpp), and what each takes from its reply.
#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {

Bytes withEcho(char echo, const std::string& text) {
    Bytes bytes(1 + text.size());
    bytes[0] = static_cast<unsigned char>(echo);
    std::copy(text.begin(), text.end(), bytes.begin() + 1);
    return bytes;
}

// Appends the block checksum word the way a module does, off by `skew` if asked.
Bytes withCheckSum(Bytes block, int skew = 0) {
    const auto sum = static_cast<std::uint16_t>(CheckSum(block.data(), static_cast<int>(block.size())) + skew);
    block.push_back(static_cast<unsigned char>(sum));
    block.push_back(static_cast<unsigned char>(sum >> 8));
    return block;
}

// A configuration-read ('c') or pipe ('.') reply: echo, count, the data padded to 32 bytes, checksum.
Bytes blockReply(char echo, const Bytes& data, int skew = 0) {
    Bytes reply(34, 0);
    reply[0] = static_cast<unsigned char>(echo);
    reply[1] = static_cast<unsigned char>(data.size());  // may claim more than the block holds
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 32), reply.begin() + 2);
    return withCheckSum(reply, skew);
}

Bytes rxReply(unsigned char flags, const std::string& text) {
    Bytes reply(3 + text.size());
    reply[0] = 'e';
    reply[1] = flags;
    reply[2] = static_cast<unsigned char>(text.size());
    std::copy(text.begin(), text.end(), reply.begin() + 3);
    return reply;
}

void appendLE(Bytes& bytes, std::uint64_t value, int width) {
    for (int k = 0; k < width; ++k) bytes.push_back(static_cast<unsigned char>(value >> (8 * k)));
}

}  // namespace

// Addressing and identification: what each command takes from its reply.

TEST(CommandsAddressing, SetAddressWaitsBeforeFetchingAndPadsAShortIdentity) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'S', 0x07});
    EXPECT_EQ(0x07, KavroCommands::KavroSetAddr(&config, "AB12345678", 4).Value);
    EXPECT_GE(link.fetches.front().At - link.sent.back().At, std::chrono::milliseconds(70));

    link.reply({'S'});
    EXPECT_EQ(0, KavroCommands::KavroSetAddr(&config, "AB", 1).Value);
    EXPECT_EQ((Bytes{'S', 1, 'A', 'B', 0, 0, 0, 0, 0, 0, 0, 0, 0}), link.commands.back());
}

TEST(CommandsAddressing, NotifyAndProbeIdTakeOnlyAFullIdentity) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply(withEcho('N', "ABCDEFGHIJ"));
    EXPECT_EQ("ABCDEFGHIJ", KavroCommands::KavroNotify(&config).IdentityText());
    link.reply(withEcho('i', "0123456789"));
    EXPECT_EQ("0123456789", KavroCommands::KavroGetProbeID(&config, 3).IdentityText());

    // Exactly 10 bytes is one short of echo + identity.
    link.reply(withEcho('i', "012345678"));
    const KavroIdentityResult cut = KavroCommands::KavroGetProbeID(&config, 3);
    EXPECT_EQ(0u, cut.LinkStatus);
    EXPECT_EQ("", cut.IdentityText());
}

TEST(CommandsAddressing, IdentifySplitsItsFieldsAndShowsARefusal) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    Bytes reply = withEcho('I', "ABCDEFGHIJP630101ADP  1.50 ");
    reply.push_back(0x2C);  // 300 mm, little-endian
    reply.push_back(0x01);
    link.reply(reply);
    const KavroIdentifyResult result = KavroCommands::KavroIdentify(&config, 5);
    EXPECT_EQ("ABCDEFGHIJ", result.IdentityText());
    EXPECT_EQ("P630101A", result.PartNumberText());
    EXPECT_EQ("DP  ", std::string(result.Model, 4));
    EXPECT_EQ("1.50 ", result.VersionText());
    EXPECT_EQ(300, result.ProbeRangeValue());

    link.reply({'!', 0x03});
    const KavroIdentifyResult refused = KavroCommands::KavroIdentify(&config, 5);
    EXPECT_EQ('!', refused.Echo);
    EXPECT_EQ("", refused.IdentityText());
}

TEST(CommandsAddressing, GetInfoLeavesBlanksWhenRefusedOrCut) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    const std::string info = " mm    8192.0000.000030     00 1";
    Bytes reply = withEcho('B', "DP  ");
    reply.insert(reply.end(), {150, 0, 0x34, 0x12});
    reply.insert(reply.end(), info.begin(), info.end());
    link.reply(reply);
    const KavroGetInfoResult result = KavroCommands::KavroGetInfo(&config, 2);
    EXPECT_EQ("DP  ", result.TypeTextString());
    EXPECT_EQ(150, result.FirmwareVersion);
    EXPECT_EQ(0x1234, result.StrokeCode);
    EXPECT_EQ(info, result.InfoTextString());

    // A first-generation module refuses: the caller sees "!" and blank fields.
    link.reply({'!', 0x03});
    const KavroGetInfoResult refused = KavroCommands::KavroGetInfo(&config, 2);
    EXPECT_EQ('!', refused.Echo);
    EXPECT_EQ("    ", refused.TypeTextString());
    EXPECT_EQ(std::string(32, ' '), refused.InfoTextString());

    link.reply(withEcho('B', "DI"));
    const KavroGetInfoResult cut = KavroCommands::KavroGetInfo(&config, 2);
    EXPECT_EQ("DI  ", cut.TypeTextString());
    EXPECT_EQ(0, cut.FirmwareVersion);
    EXPECT_EQ(std::string(32, ' '), cut.InfoTextString());
}

TEST(CommandsAddressing, PingTakesAnyAnswerWithAHighByteFirstChecksum) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    Bytes reply = withEcho(':', "ABCDEFGHIJ");
    reply.insert(reply.end(), {0xFC, 0xDE});
    link.reply(reply);
    const KavroPingResult answer = KavroCommands::Ping(&config, 17);
    EXPECT_EQ("ABCDEFGHIJ", answer.IdentityText());
    EXPECT_EQ(0xFCDE, answer.Checksum);

    // Colliding answers may carry a bad status; the caller's checksum test judges them.
    link.reply(reply, 253);
    EXPECT_EQ("ABCDEFGHIJ", KavroCommands::Ping(&config, 17).IdentityText());
}

// Control commands: the broadcasts, the pauses, and the checked replies of
// preset, reference mark and status.

TEST(CommandsControl, ClearPausesOnlyWhenAnswered) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'C', 0x01});
    Clock::time_point start = Clock::now();
    EXPECT_EQ(0x01, KavroCommands::KavroClr(&config, 6).Value);
    EXPECT_GE(Clock::now() - start, milliseconds(500));

    link.reply({}, 255);
    start = Clock::now();
    KavroCommands::KavroClr(&config, 6);
    EXPECT_LT(Clock::now() - start, milliseconds(400));

    link.reply({'U', 0x01});
    start = Clock::now();
    EXPECT_EQ(0x01, KavroCommands::KavroDirection(&config, 9).Value);
    EXPECT_GE(Clock::now() - start, milliseconds(1));
}

TEST(CommandsControl, BroadcastsFetchNothingAndKeepTheirPauses) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    Clock::time_point start = Clock::now();
    KavroCommands::KavroRst(&config);
    EXPECT_GE(Clock::now() - start, milliseconds(500));
    start = Clock::now();
    KavroCommands::KavroClearTCon(&config);
    EXPECT_GE(Clock::now() - start, milliseconds(50));
    KavroCommands::KavroControl(&config, eKavroControlAction::ApplySpeed);
    KavroCommands::KavroStartDiff(&config);
    KavroCommands::KavroStopDiff(&config);

    const std::vector<Bytes> expected{{'R', 0}, {'r', 0}, {'W', 0, 10}, {'O', 0}, {'H', 0}};
    EXPECT_EQ(expected, link.commands);
    for (const FakeModuleBus::Sent& sent : link.sent) {
        EXPECT_EQ(1, sent.Type);
        EXPECT_EQ(0, sent.ReplyLength);
    }
    EXPECT_TRUE(link.fetches.empty());
}

TEST(CommandsControl, SetModeSendsLow16BitsOfModeAndArgument) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'V', 0x05});
    EXPECT_EQ(0x05, KavroCommands::KavroSetMode(&config, 2, eSetModeMode::TxSample, 0x1FFFF).Value);
    EXPECT_EQ((Bytes{'V', 2, 77, 0, 0xFF, 0xFF}), link.commands.back());
}

TEST(CommandsControl, PresetRefMarkAndStatusCheckTheirReplies) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'P', 0x02});
    const KavroCheckedValueResult preset = KavroCommands::KavroPreset(&config, 4, 1);
    EXPECT_EQ(0u, preset.ModuleError);
    EXPECT_EQ(0x02, preset.Value);
    // Each checks its own echo.
    link.reply({'K', 0x09});
    EXPECT_EQ(255u, KavroCommands::KavroPreset(&config, 4, 1).ModuleError);
    link.reply({'K', 0x09});
    EXPECT_EQ(0x09, KavroCommands::KavroRefMark(&config, 7).Value);

    link.reply({'G', 0x00, 0x34, 0x12});
    const KavroStatusResult good = KavroCommands::KavroGetStatus(&config, 3);
    EXPECT_EQ(0u, good.ModuleError);
    EXPECT_EQ(0x1234, good.StatusWord);
    link.reply({'G', 0x77, 0x01, 0x00});
    const KavroStatusResult faulty = KavroCommands::KavroGetStatus(&config, 3);
    EXPECT_EQ(0x2177u, faulty.ModuleError);
    EXPECT_EQ(0x0001, faulty.StatusWord);
}

// Reading commands: what each takes from its reply.

TEST(CommandsReading, SingleAndDifferenceReadsTakeLittleEndianValues) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'1', 0x34, 0x12});
    EXPECT_EQ(0x1234, KavroCommands::KavroRead1(&config, 3).Reading);
    link.reply({'!', 0x07});
    EXPECT_EQ(0, KavroCommands::KavroRead1(&config, 3).Reading);
    link.reply({'L', 0x78, 0x56, 0x34, 0x12});
    EXPECT_EQ(0x12345678u, KavroCommands::KavroRead2(&config, 8).Reading);

    link.reply({'D', 0x00, 0x80, 0xFF, 0xFF, 0x11, 0x22, 0x33, 0x44, 0x05, 0x01, 0x02, 0x03});
    const KavroReadDiff1Result one = KavroCommands::KavroReadDiff1(&config, 2);
    EXPECT_EQ(0u, one.ModuleError);
    EXPECT_EQ(0x8000, one.First);
    EXPECT_EQ(0xFFFF, one.Second);
    EXPECT_EQ(0u, one.Zero);
    EXPECT_EQ(0x44332211u, one.SumLow);
    EXPECT_EQ(0x05, one.ByteValue);
    EXPECT_EQ(0x030201u, one.Count24);

    link.reply({'X', 0x01, 0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0x7F});
    const KavroReadDiff2Result two = KavroCommands::KavroReadDiff2(&config, 4);
    EXPECT_EQ(0x80000001u, two.First);
    EXPECT_EQ(0x7FFFFFFFu, two.Second);
}

TEST(CommandsReading, ReadburstAsksLongRepliesPastSixtyTwoModulesAndDropsTheEcho) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    KavroCommands::Readburst(&config, 62);
    EXPECT_EQ(249, link.sent.back().ReplyLength);
    EXPECT_FALSE(link.fetches.back().LongReply);

    Bytes reply{'T'};
    for (int i = 0; i < 63 * 4; ++i) reply.push_back(static_cast<unsigned char>(i));
    link.reply(reply);
    KavroReadburstResult burst = KavroCommands::Readburst(&config, 63);
    EXPECT_EQ(253, link.sent.back().ReplyLength);
    EXPECT_TRUE(link.fetches.back().LongReply);
    ASSERT_EQ(252, burst.DataLength);
    EXPECT_EQ(0, std::memcmp(reply.data() + 1, burst.Data, 252));
    delete[] burst.Data;
}

TEST(CommandsReading, BufferedReadOutChecksItsBlock) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply(withCheckSum({'Q', 3, 0x01, 0x00, 0x00, 0x80, 0xFF, 0xFF}));
    const KavroReadBufferedResult good = KavroCommands::KavroReadBuffered1(&config, 5);
    EXPECT_EQ(0u, good.ErrorCode());
    EXPECT_EQ((std::vector<std::uint16_t>{0x0001, 0x8000, 0xFFFF}), good.Words);

    link.reply(withCheckSum({'Q', 0}));
    const KavroReadBufferedResult empty = KavroCommands::KavroReadBuffered1(&config, 5);
    EXPECT_EQ(0u, empty.ErrorCode());
    EXPECT_TRUE(empty.Words.empty());

    Bytes corrupt = withCheckSum({'Q', 1, 0x10, 0x00});
    corrupt.back() ^= 0x01;
    link.reply(corrupt);
    const KavroReadBufferedResult bad = KavroCommands::KavroReadBuffered1(&config, 5);
    EXPECT_EQ(253u, bad.ErrorCode());
    EXPECT_TRUE(bad.Words.empty());
    // A count the reply cannot hold is a broken block, even if the bytes sum up.
    link.reply(withCheckSum({'Q', 4, 0x10, 0x00}));
    EXPECT_EQ(253u, KavroCommands::KavroReadBuffered1(&config, 5).ErrorCode());
}

TEST(CommandsReading, MemoryReadKeepsTheWholeReplyAndRefusesABadCount) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'M', 0x10, 0x00});
    EXPECT_EQ((std::vector<unsigned char>{'M', 0x10, 0x00}),
              KavroCommands::KavroReadMemory(&config, 3, 0x0801F076u, 2).Reply);
    KavroCommands::KavroReadMemory(&config, 3, 0, 250);
    EXPECT_TRUE(link.fetches.back().LongReply);

    const std::size_t sentBefore = link.commands.size();
    EXPECT_THROW(KavroCommands::KavroReadMemory(&config, 3, 0, 256), std::runtime_error);
    EXPECT_THROW(KavroCommands::KavroReadMemory(&config, 3, 0, -1), std::runtime_error);
    EXPECT_EQ(sentBefore, link.commands.size());
}

TEST(CommandsReading, MultiChannelReadDecodesRecords) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    // Two channels in 10^-7 units, 1.2345678 and -0.5; the second overflowed.
    Bytes reply{'a', 2, 2, 0x05, 0x00, 1, 0};
    appendLE(reply, 2, 2);
    appendLE(reply, 123456, 4);
    reply.insert(reply.end(), {1, 0x00, 1});
    appendLE(reply, 12345678, 8);
    reply.insert(reply.end(), {3, 0xD5, 1});
    appendLE(reply, static_cast<std::uint64_t>(-5000000), 8);
    link.reply(reply);
    const auto read = [&config] {
        return KavroCommands::KavroRead3(&config, 4, 2, eRead3_ControlCode::NormalInt7DPs, 5, eRead3_UOM::Inches);
    };
    const KavroRead3Result fixed = read();
    EXPECT_EQ(0u, fixed.ErrorCode);
    ASSERT_EQ(2u, fixed.Readings.size());
    EXPECT_EQ(1, fixed.Readings[0].Channel);
    EXPECT_EQ(eKavroErrors::NoError, fixed.Readings[0].Error);
    EXPECT_EQ(eRead3_UOM::Inches, fixed.Readings[0].Unit);
    EXPECT_DOUBLE_EQ(1.2345678, fixed.Readings[0].Value);
    EXPECT_EQ(3, fixed.Readings[1].Channel);
    EXPECT_EQ(eKavroErrors::KAVRO_READ_READING_OVERFLOW, fixed.Readings[1].Error);
    EXPECT_DOUBLE_EQ(-0.5, fixed.Readings[1].Value);

    // A count beyond the records that came: not taken.
    link.reply(Bytes(reply.begin(), reply.end() - 1));
    const KavroRead3Result untaken = read();
    EXPECT_EQ(255u, untaken.ErrorCode);
    EXPECT_TRUE(untaken.Readings.empty());

    // Float codes carry IEEE-754 doubles, little-endian.
    Bytes floating{'a', 0, 1, 0x01, 0x00, 0, 0};
    appendLE(floating, 1, 2);
    appendLE(floating, 0, 4);
    floating.insert(floating.end(), {1, 0x00, 0});
    const double value = -12.625;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    appendLE(floating, bits, 8);
    link.reply(floating);
    const KavroRead3Result real =
        KavroCommands::KavroRead3(&config, 4, 0, eRead3_ControlCode::NormalFloat, 1, eRead3_UOM::Default);
    ASSERT_EQ(1u, real.Readings.size());
    EXPECT_EQ(-12.625, real.Readings[0].Value);
}

// Configuration memory: block write and read with their checksums, and the
// typed wrappers.

TEST(CommandsConfig, WriteBuildsAChecksummedBlockAndRefusesOversize) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    unsigned char data[32];
    for (int i = 0; i < 32; ++i) data[i] = static_cast<unsigned char>(0xE0 + i);
    link.reply({'b', 0x07});
    EXPECT_EQ(0x07, KavroCommands::KavroConfigWrite(&config, 9, 0x1234, 0xABCD, data, 32).Value);
    Bytes sent = link.commands.back();
    ASSERT_EQ(41u, sent.size());
    EXPECT_EQ((Bytes{'b', 9, 0x34, 0x12, 0xCD, 0xAB, 32}), Bytes(sent.begin(), sent.begin() + 7));
    EXPECT_EQ(Bytes(data, data + 32), Bytes(sent.begin() + 7, sent.begin() + 39));
    unsigned sum = 0;
    for (int i = 0; i < 39; ++i) sum += sent[i];
    EXPECT_EQ(0u, (sum + (sent[39] | (sent[40] << 8))) & 0xFFFF);

    // A partial block is zero padded; only a two-byte reply carries the value.
    link.reply({'b', 0x07, 0x00});
    EXPECT_EQ(0, KavroCommands::KavroConfigWrite(&config, 9, 1, 0, data, 3).Value);
    sent = link.commands.back();
    EXPECT_EQ(3, sent[6]);
    EXPECT_EQ(Bytes(29, 0), Bytes(sent.begin() + 10, sent.begin() + 39));

    const std::size_t sentBefore = link.commands.size();
    unsigned char tooMany[33] = {};
    EXPECT_EQ("KavroConfigWrite data bytes exceeded",
              messageOf([&] { KavroCommands::KavroConfigWrite(&config, 9, 1, 0, tooMany, 33); }));
    EXPECT_THROW(KavroCommands::KavroConfigWrite_String(&config, 9, 1, std::string(33, 'x')), std::runtime_error);
    EXPECT_THROW(KavroCommands::KavroConfigWrite(&config, 9, 1, 0, nullptr, -1), std::runtime_error);
    EXPECT_EQ(sentBefore, link.commands.size());
}

TEST(CommandsConfig, ReadTakesOnlyWholeBlocksAndFlagsABadCheckSum) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    // A full block: the checksum covers every data byte up to the last.
    Bytes full(32);
    for (int i = 0; i < 32; ++i) full[i] = static_cast<unsigned char>(0xC0 + i);
    link.reply(blockReply('c', full));
    KavroConfigReadResult block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(0u, block.LinkStatus);
    ASSERT_EQ(32, block.DataLength);
    EXPECT_EQ(full, Bytes(block.Data, block.Data + 32));
    delete[] block.Data;

    // Off by one: checksum error, the data still handed over.
    link.reply(blockReply('c', {0x11, 0x22, 0x33}, 1));
    block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(253u, block.LinkStatus);
    EXPECT_EQ(3, block.DataLength);
    delete[] block.Data;

    Bytes longer = blockReply('c', {0x11});
    longer.push_back(0);
    link.reply(longer);
    EXPECT_EQ(nullptr, KavroCommands::KavroConfigRead(&config, 5, 1, 0).Data);
    // A count past the 32-byte block cannot be believed, even with a good sum.
    link.reply(blockReply('c', Bytes(33, 0)));
    block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(253u, block.LinkStatus);
    EXPECT_EQ(nullptr, block.Data);
}

TEST(CommandsConfig, TypedReadsNeedTheirWidthAndWritesSendIt) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    int asInt = -1;
    link.reply(blockReply('c', {0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(0u, KavroCommands::KavroConfigRead_Int(&config, 1, 2, asInt));
    EXPECT_EQ(0x12345678, asInt);
    link.reply(blockReply('c', {0x78, 0x56, 0x34}));
    EXPECT_EQ(0u, KavroCommands::KavroConfigRead_Int(&config, 1, 2, asInt));
    EXPECT_EQ(0, asInt);

    std::int64_t wide = -1;
    link.reply(blockReply('c', {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    KavroCommands::KavroConfigRead_Int64(&config, 1, 2, wide);
    EXPECT_EQ(-2, wide);
    link.reply(blockReply('c', {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    KavroCommands::KavroConfigRead_Int64(&config, 1, 2, wide);
    EXPECT_EQ(0, wide);

    unsigned char byte = 1;
    link.reply(blockReply('c', {0x42}, 1));
    EXPECT_EQ(253u, KavroCommands::KavroConfigRead_Byte(&config, 1, 2, byte));
    EXPECT_EQ(0, byte);
    link.reply(blockReply('c', {'W', 'H', 'T', ' '}));
    EXPECT_EQ("WHT ", KavroCommands::KavroConfigRead_String(&config, 1, 1003));

    const auto payload = [&link] {
        const Bytes data = link.commands.back();
        return Bytes(data.begin() + 7, data.begin() + 7 + data[6]);
    };
    KavroCommands::KavroConfigWrite_UInt16(&config, 3, 1, 0xABCD);
    EXPECT_EQ((Bytes{0xCD, 0xAB}), payload());
    KavroCommands::KavroConfigWrite_Int(&config, 3, 1, -2);
    EXPECT_EQ((Bytes{0xFE, 0xFF, 0xFF, 0xFF}), payload());
    KavroCommands::KavroConfigWrite_Int64(&config, 3, 1, 0x0102030405060708LL);
    EXPECT_EQ((Bytes{8, 7, 6, 5, 4, 3, 2, 1}), payload());
    KavroCommands::KavroConfigWrite_String(&config, 3, 1, "AB");
    EXPECT_EQ((Bytes{'A', 'B'}), payload());
}

// Pipe and pass-through: the checksummed blocks and the relayed text.

TEST(CommandsPipe, BlocksAreChecksummedBothWays) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    unsigned char data[32];
    for (int i = 0; i < 32; ++i) data[i] = static_cast<unsigned char>(0xF0 - i);
    link.reply({'-', 32});
    EXPECT_EQ(32, KavroCommands::KavroPipeSend32(&config, 6, data, 32).Value);
    const Bytes sent = link.commands.back();
    ASSERT_EQ(37u, sent.size());
    EXPECT_EQ((Bytes{'-', 6, 32}), Bytes(sent.begin(), sent.begin() + 3));
    EXPECT_EQ(Bytes(data, data + 32), Bytes(sent.begin() + 3, sent.begin() + 35));
    unsigned sum = 0;
    for (int i = 0; i < 35; ++i) sum += sent[i];
    EXPECT_EQ(0u, (sum + (sent[35] | (sent[36] << 8))) & 0xFFFF);

    const std::size_t before = link.commands.size();
    const unsigned char big[33] = {};
    EXPECT_EQ("Payload Length Too Long", messageOf([&] { KavroCommands::KavroPipeSend32(&config, 6, big, 33); }));
    EXPECT_EQ(before, link.commands.size());

    link.reply(blockReply('.', Bytes(data, data + 32)));
    EXPECT_EQ(Bytes(data, data + 32), KavroCommands::KavroPipeReceive32(&config, 6).Data);
    link.reply(blockReply('.', {0xAA, 0xBB}, 1));
    EXPECT_EQ("Checksum incorrect.", messageOf([&] { KavroCommands::KavroPipeReceive32(&config, 6); }));
}

TEST(CommandsPassThrough, TextGoesOutWithItsLengthAndComesBackSoFar) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    link.reply({'d', 0x01});
    EXPECT_EQ(0x01, KavroCommands::KavroPassThroughTx(&config, 4, 2, "x").Value);
    link.reply({'d', 0x00});
    KavroCommands::KavroPassThroughTx(&config, 4, 2, std::string(128, 'a'));
    EXPECT_EQ(132, static_cast<int>(link.commands.back().size()));
    EXPECT_EQ(128, link.commands.back()[3]);
    const std::size_t before = link.commands.size();
    EXPECT_EQ("Command cannot be > 128 characters",
              messageOf([&] { KavroCommands::KavroPassThroughTx(&config, 4, 2, std::string(129, 'a')); }));
    EXPECT_EQ(before, link.commands.size());

    link.reply(rxReply(0x00, "Bat"));
    const KavroPassThroughRxResult partial = KavroCommands::KavroPassThroughRx(&config, 4, 1);
    EXPECT_FALSE(partial.Complete);
    EXPECT_EQ("Bat", partial.Text);
    link.reply(rxReply(0x01, "Batt 87\r\n"));
    const KavroPassThroughRxResult whole = KavroCommands::KavroPassThroughRx(&config, 4, 1);
    EXPECT_TRUE(whole.Complete);
    EXPECT_EQ("Batt 87\r\n", whole.Text);

    // The count is trusted only as far as the reply goes, and only up to 128.
    Bytes cut = rxReply(0x01, "Batt");
    cut.pop_back();
    link.reply(cut);
    const KavroPassThroughRxResult shortReply = KavroCommands::KavroPassThroughRx(&config, 4, 1);
    EXPECT_EQ(255u, shortReply.ModuleError);
    EXPECT_EQ("", shortReply.Text);
    link.reply(rxReply(0x01, std::string(129, 'z')));
    EXPECT_EQ("Kavro passthrough reply too long", messageOf([&] { KavroCommands::KavroPassThroughRx(&config, 4, 1); }));
}
