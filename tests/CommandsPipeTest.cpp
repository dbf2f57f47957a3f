// Pipe and pass-through: the checksummed blocks and the relayed text.
#include <algorithm>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "MessageOf.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

Bytes pipeReply(const Bytes& data, int checkSumSkew = 0) {
    Bytes reply(36, 0);
    reply[0] = '.';
    reply[1] = static_cast<unsigned char>(data.size());
    std::copy(data.begin(), data.end(), reply.begin() + 2);
    const auto sum = static_cast<std::uint16_t>(CheckSum(reply.data(), 34) + checkSumSkew);
    reply[34] = static_cast<unsigned char>(sum);
    reply[35] = static_cast<unsigned char>(sum >> 8);
    return reply;
}

Bytes rxReply(unsigned char flags, const std::string& text) {
    Bytes reply(3 + text.size());
    reply[0] = 'e';
    reply[1] = flags;
    reply[2] = static_cast<unsigned char>(text.size());
    std::copy(text.begin(), text.end(), reply.begin() + 3);
    return reply;
}

}  // namespace

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

    link.reply(pipeReply(Bytes(data, data + 32)));
    EXPECT_EQ(Bytes(data, data + 32), KavroCommands::KavroPipeReceive32(&config, 6).Data);
    link.reply(pipeReply({0xAA, 0xBB}, 1));
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
