// Configuration memory: block write and read with their checksums, and the
// typed wrappers.
#include <algorithm>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "MessageOf.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

// A read reply: 'c', n, the data padded to 32 bytes, checksum.
Bytes readReply(const Bytes& data, int checkSumSkew = 0) {
    Bytes reply(36, 0);
    reply[0] = 'c';
    reply[1] = static_cast<unsigned char>(data.size());
    std::copy(data.begin(), data.end(), reply.begin() + 2);
    const auto sum = static_cast<std::uint16_t>(CheckSum(reply.data(), 34) + checkSumSkew);
    reply[34] = static_cast<unsigned char>(sum);
    reply[35] = static_cast<unsigned char>(sum >> 8);
    return reply;
}

}  // namespace

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
    link.reply(readReply(full));
    KavroConfigReadResult block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(0u, block.LinkStatus);
    ASSERT_EQ(32, block.DataLength);
    EXPECT_EQ(full, Bytes(block.Data, block.Data + 32));
    delete[] block.Data;

    // Off by one: checksum error, the data still handed over.
    link.reply(readReply({0x11, 0x22, 0x33}, 1));
    block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(253u, block.LinkStatus);
    EXPECT_EQ(3, block.DataLength);
    delete[] block.Data;

    Bytes longer = readReply({0x11});
    longer.push_back(0);
    link.reply(longer);
    EXPECT_EQ(nullptr, KavroCommands::KavroConfigRead(&config, 5, 1, 0).Data);
    // A count past the 32-byte block cannot be believed, even with a good sum.
    link.reply(readReply(Bytes(33, 0)));
    block = KavroCommands::KavroConfigRead(&config, 5, 1, 0);
    EXPECT_EQ(253u, block.LinkStatus);
    EXPECT_EQ(nullptr, block.Data);
}

TEST(CommandsConfig, TypedReadsNeedTheirWidthAndWritesSendIt) {
    NetworkConfiguration config(0, "net");
    FakeModuleBus link(&config);
    int asInt = -1;
    link.reply(readReply({0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(0u, KavroCommands::KavroConfigRead_Int(&config, 1, 2, asInt));
    EXPECT_EQ(0x12345678, asInt);
    link.reply(readReply({0x78, 0x56, 0x34}));
    EXPECT_EQ(0u, KavroCommands::KavroConfigRead_Int(&config, 1, 2, asInt));
    EXPECT_EQ(0, asInt);

    std::int64_t wide = -1;
    link.reply(readReply({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    KavroCommands::KavroConfigRead_Int64(&config, 1, 2, wide);
    EXPECT_EQ(-2, wide);
    link.reply(readReply({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    KavroCommands::KavroConfigRead_Int64(&config, 1, 2, wide);
    EXPECT_EQ(0, wide);

    unsigned char byte = 1;
    link.reply(readReply({0x42}, 1));
    EXPECT_EQ(253u, KavroCommands::KavroConfigRead_Byte(&config, 1, 2, byte));
    EXPECT_EQ(0, byte);
    link.reply(readReply({'W', 'H', 'T', ' '}));
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
