// Addressing and identification: what each command takes from its reply.
#include <algorithm>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

Bytes withEcho(char echo, const std::string& text) {
    Bytes bytes(1 + text.size());
    bytes[0] = static_cast<unsigned char>(echo);
    std::copy(text.begin(), text.end(), bytes.begin() + 1);
    return bytes;
}

}  // namespace

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
