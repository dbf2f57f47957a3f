#include "links/UsbDynamic.h"

#include <algorithm>
#include <vector>

#include "core/ProtocolSleep.h"
#include "links/DynamicStream.h"
#include "links/FtdiApi.h"
#include "links/UsbFraming.h"

namespace KavroLibrary {

namespace {

constexpr auto kStopPause = std::chrono::milliseconds(50);
constexpr auto kResyncPause = std::chrono::milliseconds(400);

std::vector<unsigned char> blockWrite(const DynamicBlock& block) {
    std::vector<unsigned char> out(4 + block.size());
    out[0] = kMpsseWaitReady;
    out[1] = kMpsseClockOut;
    out[2] = kUsbBlockSize - 1;
    out[3] = 0x00;
    std::copy(block.begin(), block.end(), out.begin() + 4);
    return out;
}

// Writes and reads under the link's lock; false when the device failed.
bool transfer(NetworkConfiguration* config, const std::vector<unsigned char>& out, unsigned char* in, DWORD count,
              DWORD& got) {
    got = 0;
    FtdiApi& api = ftdiTable();
    if (api.Write == nullptr || api.Read == nullptr || config->FtdiHandle == nullptr) return false;
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    DWORD written = 0;
    if (api.Write(config->FtdiHandle, const_cast<unsigned char*>(out.data()), static_cast<DWORD>(out.size()),
                  &written) != FT_OK) {
        return false;
    }
    const FT_STATUS status = api.Read(config->FtdiHandle, in, count, &got);
    got = std::min(got, count);
    return status == FT_OK || got == count;
}

int startUsb(NetworkConfiguration* config, const sDynamicMode& mode) {
    return SendStartDynMasterCMD(config, mode) ? 0 : kDynamicStartLost;
}

DynamicTransfer exchangeUsb(NetworkConfiguration* config, const DynamicBlock& request, std::uint8_t* packet) {
    std::vector<unsigned char> out = blockWrite(request);
    out.push_back(kMpsseFlush);
    // The read instructions for the whole packet.
    unsigned char reads[16];
    unsigned int position = 0;
    SetupRxPacket_CRC(config, position, static_cast<short>(4089 - config->ExtraReplyBytes), reads,
                      config->PacketCrc != 0);
    out.insert(out.end(), reads, reads + position);
    DWORD got = 0;
    // Nothing at all for a whole read time-out: the controller is gone.
    if (!transfer(config, out, packet, kDynamicPacketSize, got) || got == 0) return DynamicTransfer::Lost;
    if (got < kDynamicPacketSize) {
        // The rest would arrive as the start of the next packet.
        std::fill(packet + got, packet + kDynamicPacketSize, 0);
        if (ftdiTable().Purge != nullptr) ftdiTable().Purge(config->FtdiHandle, FT_PURGE_RX | FT_PURGE_TX);
        return DynamicTransfer::Short;
    }
    return DynamicTransfer::Whole;
}

void resyncUsb(NetworkConfiguration* config) {
    if (ftdiTable().Purge != nullptr) ftdiTable().Purge(config->FtdiHandle, FT_PURGE_RX | FT_PURGE_TX);
    protocolSleep(kResyncPause);
}

const DynamicTransport kUsbStreaming{"USBIM Connection Lost", startUsb, exchangeUsb, StopDynamic, resyncUsb};

}  // namespace

bool SendStartDynMasterCMD(NetworkConfiguration* config, sDynamicMode mode) {
    std::vector<unsigned char> out = blockWrite(dynamicStartBlock(mode));
    out.insert(out.end(), {kMpsseWaitReady, kMpsseClockIn, kUsbBlockSize - 1, 0x00, kMpsseFlush});
    unsigned char answer[kUsbBlockSize];
    DWORD got = 0;
    // The answer block says nothing; only a failed device matters.
    return transfer(config, out, answer, kUsbBlockSize, got);
}

std::uint32_t StopDynamic(NetworkConfiguration* config) {
    std::vector<unsigned char> out = blockWrite(dynamicStopBlock());
    out.insert(out.end(), {kMpsseWaitReady, kMpsseClockIn, kUsbBlockSize - 1, 0x00});
    unsigned char answer[kUsbBlockSize] = {};
    DWORD got = 0;
    transfer(config, out, answer, kUsbBlockSize, got);
    std::uint32_t status = 0;
    if (got > 5) {
        status = static_cast<std::uint32_t>(answer[2]) | (static_cast<std::uint32_t>(answer[3]) << 8) |
                 (static_cast<std::uint32_t>(answer[4]) << 16) | (static_cast<std::uint32_t>(answer[5]) << 24);
    }
    protocolSleep(kStopPause);
    return status;
}

void DynamicReadThreadProcessFTDI(NetworkConfiguration* config, sDynamicMode mode) noexcept {
    RunDynamicReadLoop(config, mode, kUsbStreaming);
}

void StartDynamicFTDI(NetworkConfiguration* config, sDynamicMode mode) {
    config->PacketCrc = config->UsbExtendedMode ? 1 : 0;
    config->DynamicRequestFlags = config->UsbExtendedByte;
    config->ExtraReplyBytes = static_cast<std::uint16_t>(config->UsbExtendedValue);
    config->PacketNumber = 0;
    StartDynamicThreads(config, mode, DynamicReadThreadProcessFTDI);
}

}  // namespace KavroLibrary
