// The USB interface module's block layout, byte for byte.
#include <gtest/gtest.h>

#include <numeric>

#include "RecordingFtdi.h"
#include "links/Crc16.h"
#include "links/FtdiCommunications.h"
#include "links/LinkDispatch.h"
#include "links/UsbFraming.h"

using namespace KavroLibrary;
using Bytes = RecordingFtdi::Bytes;

namespace {

// A first reply block: length, status, unused byte, payload from byte 7.
Bytes replyBlock(unsigned length, std::uint32_t status, const Bytes& payload) {
    Bytes b(20, 0);
    b[0] = length & 0xFF;
    b[1] = (length >> 8) & 0xFF;
    for (int i = 0; i < 4; ++i) b[2 + i] = (status >> (8 * i)) & 0xFF;
    for (std::size_t i = 0; i < payload.size() && i < 13; ++i) b[7 + i] = payload[i];
    return b;
}

// A 20-byte request block (wait for ready, clock out), then reads of `reads` bytes each.
Bytes block(Bytes head, std::initializer_list<unsigned> reads = {}) {
    Bytes out{0x88, 0x10, 0x13, 0x00};
    head.resize(20, 0);
    out.insert(out.end(), head.begin(), head.end());
    for (unsigned n : reads) out.insert(out.end(), {0x88, 0x24, static_cast<unsigned char>(n - 1), 0x00});
    return out;
}

Bytes counting(std::size_t n, unsigned char from) {
    Bytes b(n);
    std::iota(b.begin(), b.end(), from);
    return b;
}

struct UsbLink : ::testing::Test {
    NetworkConfiguration config{0, "usb"};
    RecordingFtdi ftdi;
    void SetUp() override {
        config.SendCommand = &SendModuleCommand;
        config.GetReply = &GetModuleCommandResponse;
    }
    void send(int type, Bytes data, int replyLength) {
        SendModuleCommand(&config, {type, static_cast<int>(data.size()), replyLength, data.data()});
    }
};

}  // namespace

// Catches wrong header, reply length order, the 15-byte split and short continuations.
TEST_F(UsbLink, CommandBlocksAndTypes) {
    send(0, counting(15, 1), 300);
    Bytes head{0x03, 15, 0x01, 0x2C, 0x00};
    for (unsigned char b = 1; b <= 15; ++b) head.push_back(b);
    ASSERT_EQ(1u, ftdi.writes().size());
    EXPECT_EQ(block(head), ftdi.writes()[0]);

    Bytes sixteen(16, 0xAA);
    sixteen[15] = 0x55;
    send(0, sixteen, 2);
    ASSERT_EQ(3u, ftdi.writes().size());
    EXPECT_EQ(16, ftdi.writes()[1][5]);
    EXPECT_EQ(block({0x55}), ftdi.writes()[2]);

    send(0, Bytes(41, 0x11), 2);  // a long continuation is as long as its data
    ASSERT_EQ(5u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x10, 25, 0x00}), Bytes(ftdi.writes()[4].begin(), ftdi.writes()[4].begin() + 4));
    EXPECT_EQ(30u, ftdi.writes()[4].size());

    // Type 1 reads its empty block back; type 2 asks 0xFFFF and reads nothing.
    ftdi.scriptRead(Bytes(20, 0));
    send(1, {'R', 0x00}, 0);
    ASSERT_EQ(7u, ftdi.writes().size());
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00}), ftdi.writes()[6]);
    EXPECT_EQ(0u, ftdi.pendingReads());
    send(2, {'a', 1, 0, 2, 0xFF, 0x0F, 0}, 1234);
    ASSERT_EQ(8u, ftdi.writes().size());
    EXPECT_EQ(0xFF, ftdi.writes()[7][6]);
    EXPECT_EQ(0xFF, ftdi.writes()[7][7]);
}

// Catches an off-by-one at the 13-byte first block and a short second read.
TEST_F(UsbLink, RepliesOf13And14Bytes) {
    const Bytes readFlushed{0x88, 0x24, 0x13, 0x00, 0x87};
    const Bytes payload13 = counting(13, 100);
    ftdi.scriptRead(replyBlock(13, 0, payload13));
    ModuleReply reply = GetModuleCommandReply(&config, 0, false);
    EXPECT_EQ(0u, reply.Status);
    ASSERT_EQ(13u, reply.Length);
    EXPECT_EQ(payload13, Bytes(reply.Data, reply.Data + 13));
    delete[] reply.Data;
    ASSERT_EQ(1u, ftdi.writes().size());
    EXPECT_EQ(readFlushed, ftdi.writes()[0]);

    const Bytes payload14 = counting(14, 1);
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
    EXPECT_EQ(readFlushed, ftdi.writes()[2]);
    EXPECT_EQ(20u, ftdi.readSizes().back());
}

// Catches reading a missing or short block as data, and a link left out of step after a short second block.
TEST_F(UsbLink, ShortOrMissingFirstBlockIsStatus255) {
    for (std::size_t got : {0, 19}) {
        if (got > 0) ftdi.scriptRead(Bytes(got, 0));
        const int purgesBefore = ftdi.purges();
        const ModuleReply reply = GetModuleCommandReply(&config, 0, false);
        EXPECT_EQ(255u, reply.Status) << got;
        EXPECT_EQ(0u, reply.Length) << got;
        EXPECT_EQ(nullptr, reply.Data) << got;
        EXPECT_EQ(purgesBefore + 1, ftdi.purges()) << "a late block must not answer the next request";
    }
    // A second block that comes back short is no answer (its missing bytes
    // would read as zeros), and the link is purged so that the late block
    // cannot answer the next request.
    for (std::size_t got : {0, 19}) {
        ftdi.scriptRead(replyBlock(33, 0, Bytes(13, 1)));
        if (got > 0) ftdi.scriptRead(Bytes(got, 1));
        const int purgesBefore = ftdi.purges();
        const ModuleReply reply = GetModuleCommandReply(&config, 0, false);
        EXPECT_EQ(255u, reply.Status) << got;
        EXPECT_EQ(0u, reply.Length) << got;
        delete[] reply.Data;
        EXPECT_EQ(purgesBefore + 1, ftdi.purges()) << got;
    }
}

// Catches a speed the controller cannot take sent as a rate, and a short
// get-info read as fields. (Good requests and answers are the USB network
// tests', through the stand-in.)
TEST_F(UsbLink, ControllerRequests) {
    Bytes speedReply(20, 0);
    speedReply[2] = 9;
    ftdi.scriptRead(speedReply);
    EXPECT_EQ(9u, SetControllerSpeedFTDI(&config, eNetSpeed::High));  // the controller's status is passed on
    ftdi.scriptRead(Bytes(5, 0));
    EXPECT_EQ(255u, SetControllerSpeedFTDI(&config, static_cast<eNetSpeed>(3)));
    EXPECT_EQ(0, ftdi.writes().back()[9] | ftdi.writes().back()[10] | ftdi.writes().back()[11]);

    ftdi.scriptRead(Bytes(8, 0));  // a short get-info leaves the blanks
    const ControllerInfoReply got = GetInfoNetwork(&config);
    EXPECT_EQ("    ", got.TypeCodeText());
    EXPECT_EQ(std::string(16, ' '), got.Limit());
}

// Catches the packet number counted in the wrong bits or not wrapping.
TEST(PacketNumber, CountsInBitsThreeToFive) {
    NetworkConfiguration config(0, "n");
    std::vector<int> numbers;
    for (int i = 0; i < 9; ++i) numbers.push_back(NextPacketNum(&config));
    EXPECT_EQ((std::vector<int>{8, 16, 24, 32, 40, 48, 56, 0, 8}), numbers);
}

// Catches a wrong polynomial, an ignored seed or start index.
TEST(Crc16, CheckValueSeedAndStart) {
    const unsigned char check[] = "123456789";
    EXPECT_EQ(0xBB3D, tabularCRC16(0, check, 9, 0));
    EXPECT_NE(0xBB3D, tabularCRC16(1, check, 9, 0));
    EXPECT_EQ(1, tabularCRC16(1, check, 0, 4));
    const unsigned char padded[] = "xx123456789";
    EXPECT_EQ(tabularCRC16(1, check, 9, 0), tabularCRC16(1, padded, 9, 2));
}

// Catches read instructions of the wrong length for a reply with its CRC.
TEST(RxPacket, ReadInstructionsForAFullPacket) {
    NetworkConfiguration config(0, "n");
    config.ExtraReplyBytes = 2;
    unsigned char buffer[32] = {};
    unsigned int position = 0;
    SetupRxPacket_CRC(&config, position, static_cast<short>(4089 - 2), buffer, true);
    // 20 bytes, then 4076 more: 4096 in all.
    EXPECT_EQ((Bytes{0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0xEB, 0x0F, 0x87}), Bytes(buffer, buffer + position));
    position = 0;
    SetupRxPacket_CRC(&config, position, 10, buffer, false);
    EXPECT_EQ(5u, position) << "17 bytes fit in the first block";
    position = 0;
    SetupRxPacket_CRC(&config, position, 15, buffer, false);
    EXPECT_EQ(9u, position);
    EXPECT_EQ(0x13, buffer[6]) << "the second read is never shorter than 20 bytes";
}

namespace {

// A device that takes every set-up call but whose engine never answers the
// 0xAB probe, or whose transmit queue never empties.
struct DeadEngine {
    static inline bool answers = false;
    static inline bool drains = true;
    static FT_STATUS ok(FT_HANDLE) { return FT_OK; }
    static FT_STATUS purge(FT_HANDLE, ULONG) { return FT_OK; }
    static FT_STATUS chars(FT_HANDLE, UCHAR, UCHAR, UCHAR, UCHAR) { return FT_OK; }
    static FT_STATUS timeouts(FT_HANDLE, ULONG, ULONG) { return FT_OK; }
    static FT_STATUS flow(FT_HANDLE, USHORT, UCHAR, UCHAR) { return FT_OK; }
    static FT_STATUS bitMode(FT_HANDLE, UCHAR, UCHAR) { return FT_OK; }
    static FT_STATUS write(FT_HANDLE, void*, DWORD count, LPDWORD written) {
        *written = count;
        return FT_OK;
    }
    static FT_STATUS read(FT_HANDLE, void*, DWORD count, LPDWORD got) {
        *got = count;
        return FT_OK;
    }
    static FT_STATUS queue(FT_HANDLE, DWORD* waiting) {
        *waiting = answers ? 2 : 0;
        return FT_OK;
    }
    static FT_STATUS status(FT_HANDLE, DWORD* rx, DWORD* tx, DWORD* events) {
        *rx = 0;
        *tx = drains ? 0 : 1;
        *events = 0;
        return FT_OK;
    }
};

}  // namespace

// Catches an MPSSE set-up that carries on after its waits gave up.
TEST(UsbSetup, WaitsThatGiveUpAreErrors) {
    FtdiApi table;
    table.ResetDevice = DeadEngine::ok;
    table.Purge = DeadEngine::purge;
    table.SetChars = DeadEngine::chars;
    table.SetTimeouts = DeadEngine::timeouts;
    table.SetFlowControl = DeadEngine::flow;
    table.SetBitMode = DeadEngine::bitMode;
    table.Write = DeadEngine::write;
    table.Read = DeadEngine::read;
    table.GetQueueStatus = DeadEngine::queue;
    table.GetStatus = DeadEngine::status;
    ftdiInstall(&table);
    NetworkConfiguration config(0, "usb");
    const struct {
        bool answers, drains;
        bool fine;
    } cases[] = {{true, true, true}, {false, true, false}, {true, false, false}};
    for (const auto& c : cases) {
        DeadEngine::answers = c.answers;
        DeadEngine::drains = c.drains;
        EXPECT_EQ(c.fine, SetupSPI(nullptr, &config) == FT_OK) << c.answers << c.drains;
    }
    ftdiInstall(nullptr);
}
