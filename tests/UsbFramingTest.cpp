// The USB interface module's block layout, byte for byte.
#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "RecordingFtdi.h"
#include "links/Crc16.h"
#include "links/LinkDispatch.h"
#include "links/UsbFraming.h"

using namespace KavroLibrary;
using Bytes = RecordingFtdi::Bytes;

namespace {

Bytes header(unsigned char n) { return {0x88, 0x10, static_cast<unsigned char>(n - 1), 0x00}; }

ModuleCommand command(int type, std::vector<unsigned char>& data, int replyLength) {
    ModuleCommand c;
    c.Type = type;
    c.Length = static_cast<int>(data.size());
    c.ReplyLength = replyLength;
    c.Data = data.data();
    return c;
}

// A first reply block: length, status, unused byte, payload from byte 7.
Bytes replyBlock(unsigned length, std::uint32_t status, const Bytes& payload) {
    Bytes b(20, 0);
    b[0] = length & 0xFF;
    b[1] = (length >> 8) & 0xFF;
    for (int i = 0; i < 4; ++i) b[2 + i] = (status >> (8 * i)) & 0xFF;
    for (std::size_t i = 0; i < payload.size() && i < 13; ++i) b[7 + i] = payload[i];
    return b;
}

struct UsbLink : ::testing::Test {
    NetworkConfiguration config{0, "usb"};
    RecordingFtdi ftdi;
    void SetUp() override {
        config.SendCommand = &SendModuleCommand;
        config.GetReply = &GetModuleCommandResponse;
    }
};

}  // namespace

TEST_F(UsbLink, CommandBlocksOf15And16Bytes) {
    Bytes fifteen(15);
    std::iota(fifteen.begin(), fifteen.end(), 1);
    SendModuleCommand(&config, command(0, fifteen, 300));
    ASSERT_EQ(1u, ftdi.writes().size());
    Bytes expected = header(20);
    Bytes block{0x03, 15, 0x01, 0x2C, 0x00};
    block.insert(block.end(), fifteen.begin(), fifteen.end());
    expected.insert(expected.end(), block.begin(), block.end());
    EXPECT_EQ(expected, ftdi.writes()[0]);

    Bytes sixteen(16, 0xAA);
    sixteen[15] = 0x55;
    SendModuleCommand(&config, command(0, sixteen, 2));
    ASSERT_EQ(3u, ftdi.writes().size());
    EXPECT_EQ(24u, ftdi.writes()[1].size());
    EXPECT_EQ(16, ftdi.writes()[1][5]);
    Bytes continuation = header(20);
    continuation.push_back(0x55);
    continuation.resize(24, 0);
    EXPECT_EQ(continuation, ftdi.writes()[2]);

    // A long continuation is as long as its data.
    Bytes forty(41, 0x11);
    SendModuleCommand(&config, command(0, forty, 2));
    ASSERT_EQ(5u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x10, 25, 0x00}), Bytes(ftdi.writes()[4].begin(), ftdi.writes()[4].begin() + 4));
    EXPECT_EQ(30u, ftdi.writes()[4].size());
}

TEST_F(UsbLink, TypesOneAndTwo) {
    Bytes reset{'R', 0x00};
    ftdi.scriptRead(Bytes(20, 0));
    SendModuleCommand(&config, command(1, reset, 0));
    ASSERT_EQ(2u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00}), ftdi.writes()[1]);
    EXPECT_EQ(0u, ftdi.pendingReads()) << "the type 1 block is read back";

    Bytes unknown{'a', 1, 0, 2, 0xFF, 0x0F, 0};
    SendModuleCommand(&config, command(2, unknown, 1234));
    ASSERT_EQ(3u, ftdi.writes().size());
    EXPECT_EQ(0xFF, ftdi.writes()[2][6]);
    EXPECT_EQ(0xFF, ftdi.writes()[2][7]);
    EXPECT_EQ(2u, ftdi.writes().size() - 1) << "type 2 reads nothing at send time";
}

TEST_F(UsbLink, RepliesOf13And14Bytes) {
    Bytes payload13(13);
    std::iota(payload13.begin(), payload13.end(), 100);
    ftdi.scriptRead(replyBlock(13, 0, payload13));
    ModuleReply reply = GetModuleCommandReply(&config, 0, false);
    EXPECT_EQ(0u, reply.Status);
    ASSERT_EQ(13u, reply.Length);
    EXPECT_EQ(payload13, Bytes(reply.Data, reply.Data + 13));
    delete[] reply.Data;
    ASSERT_EQ(1u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00, 0x87}), ftdi.writes()[0]);

    Bytes payload14(14);
    std::iota(payload14.begin(), payload14.end(), 1);
    ftdi.scriptRead(replyBlock(14, 7, payload14));
    Bytes second(20, 0xEE);
    second[0] = 14;
    ftdi.scriptRead(second);
    reply = GetModuleCommandReply(&config, 0, false);
    EXPECT_EQ(7u, reply.Status);
    ASSERT_EQ(14u, reply.Length);
    EXPECT_EQ(payload14, Bytes(reply.Data, reply.Data + 14));
    delete[] reply.Data;
    ASSERT_EQ(3u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00, 0x87}), ftdi.writes()[2]);
    EXPECT_EQ(20u, ftdi.readSizes().back());
}

TEST_F(UsbLink, ShortOrMissingFirstBlockIsStatus255) {
    ModuleReply reply = GetModuleCommandReply(&config, 0, false);
    EXPECT_EQ(255u, reply.Status);
    EXPECT_EQ(0u, reply.Length);
    EXPECT_EQ(nullptr, reply.Data);
    ftdi.scriptRead(Bytes(19, 0));
    reply = GetModuleCommandReply(&config, 0, false);
    EXPECT_EQ(255u, reply.Status);
    EXPECT_EQ(nullptr, reply.Data);
    // A long reply whose second block never comes stays in bounds.
    ftdi.scriptRead(replyBlock(600, 0, Bytes(13, 1)));
    reply = GetModuleCommandReply(&config, 0, false);
    ASSERT_EQ(600u, reply.Length);
    EXPECT_EQ(0, reply.Data[599]);
    delete[] reply.Data;
}

TEST_F(UsbLink, ControllerRequests) {
    Bytes speedReply(20, 0);
    speedReply[2] = 9;
    ftdi.scriptRead(speedReply);
    EXPECT_EQ(9u, SetControllerSpeedFTDI(&config, eNetSpeed::High));
    Bytes expected = header(20);
    expected.push_back(0x04);
    expected.resize(24, 0);
    expected[9] = 1500000 & 0xFF;
    expected[10] = (1500000 >> 8) & 0xFF;
    expected[11] = (1500000 >> 16) & 0xFF;
    for (unsigned char b : {0x88, 0x24, 0x13, 0x00}) expected.push_back(b);
    EXPECT_EQ(expected, ftdi.writes().back());

    ftdi.scriptRead(Bytes(5, 0));
    EXPECT_EQ(255u, SetControllerSpeedFTDI(&config, static_cast<eNetSpeed>(3)));
    EXPECT_EQ(0, ftdi.writes().back()[9] | ftdi.writes().back()[10] | ftdi.writes().back()[11]);

    Bytes identify(40, 0);
    const char* text = "ID000001AB12345678MODL1.18X";
    for (int i = 0; i < 27; ++i) identify[7 + i] = static_cast<unsigned char>(text[i]);
    ftdi.scriptRead(identify);
    ControllerIdentifyReply id = IdentifyNetwork(&config);
    EXPECT_EQ(0, id.Error);
    EXPECT_EQ("ID000001AB", id.IdentityText());
    EXPECT_EQ("1.18X", id.VersionText());
    Bytes identifyWrite = ftdi.writes().back();
    EXPECT_EQ(32u, identifyWrite.size());
    EXPECT_EQ(0x08, identifyWrite[4]);

    Bytes info(47, ' ');
    info[2] = info[3] = info[4] = info[5] = 0;
    std::memcpy(info.data() + 7, "USB2", 4);
    info[11] = 150;
    info[12] = 0;
    std::memcpy(info.data() + 15, "L032", 4);
    ftdi.scriptRead(info);
    ControllerInfoReply got = GetInfoNetwork(&config);
    EXPECT_EQ(0, got.Error);
    EXPECT_EQ("USB2", got.TypeCodeText());
    EXPECT_EQ(150, got.Value);
    EXPECT_EQ("L032", got.Limit().substr(0, 4));
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0x1A, 0x00}),
              Bytes(ftdi.writes().back().end() - 8, ftdi.writes().back().end()));

    // A short get-info leaves the blanks.
    Bytes shortInfo(8, 0);
    ftdi.scriptRead(shortInfo);
    got = GetInfoNetwork(&config);
    EXPECT_EQ("    ", got.TypeCodeText());
    EXPECT_EQ(std::string(16, ' '), got.Limit());
}

TEST(PacketNumber, CountsInBitsThreeToFive) {
    NetworkConfiguration config(0, "n");
    std::vector<int> numbers;
    for (int i = 0; i < 9; ++i) numbers.push_back(NextPacketNum(&config));
    EXPECT_EQ((std::vector<int>{8, 16, 24, 32, 40, 48, 56, 0, 8}), numbers);
}

TEST(Crc16, TableAndSeed) {
    EXPECT_EQ(0xC0C1, crctable[1]);
    EXPECT_EQ(0xC181, crctable[2]);
    const unsigned char check[] = "123456789";
    EXPECT_EQ(0xBB3D, tabularCRC16(0, check, 9, 0));
    EXPECT_NE(0xBB3D, tabularCRC16(1, check, 9, 0));
    EXPECT_EQ(1, tabularCRC16(1, check, 0, 4));
    // The start index offsets into the buffer.
    const unsigned char padded[] = "xx123456789";
    EXPECT_EQ(tabularCRC16(1, check, 9, 0), tabularCRC16(1, padded, 9, 2));
}

TEST(RxPacket, ReadInstructionsForAFullPacket) {
    NetworkConfiguration config(0, "n");
    config.ExtraReplyBytes = 2;
    unsigned char buffer[32] = {};
    unsigned int position = 0;
    SetupRxPacket_CRC(&config, position, static_cast<short>(4089 - 2), buffer, true);
    // 20 bytes, then 4076 more: 4096 in all.
    EXPECT_EQ(9u, position);
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0xEB, 0x0F, 0x87}), Bytes(buffer, buffer + 9));
    position = 0;
    SetupRxPacket_CRC(&config, position, 10, buffer, false);
    EXPECT_EQ(5u, position) << "17 bytes fit in the first block";
    position = 0;
    SetupRxPacket_CRC(&config, position, 15, buffer, false);
    EXPECT_EQ(9u, position);
    EXPECT_EQ(0x13, buffer[6]) << "the second read is never shorter than 20 bytes";
}
