// Reading commands: what each takes from its reply.
#include <cstring>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

// Appends the block checksum word the way a module does.
Bytes withCheckSum(Bytes block) {
    const std::uint16_t sum = CheckSum(block.data(), static_cast<int>(block.size()));
    block.push_back(static_cast<unsigned char>(sum));
    block.push_back(static_cast<unsigned char>(sum >> 8));
    return block;
}

void appendLE(Bytes& bytes, std::uint64_t value, int width) {
    for (int k = 0; k < width; ++k) bytes.push_back(static_cast<unsigned char>(value >> (8 * k)));
}

}  // namespace

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

    link.reply({'T'});
    burst = KavroCommands::Readburst(&config, 2);
    EXPECT_EQ(0, burst.DataLength);
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
