// Dynamic packets as a controller might send them: the first input byte gives
// the run's module count, the second whether packets are checked; the rest is
// cut into 4096-byte packets handed to the read loop one per request (the
// input's end loses the link). What was queued is then decoded and read back.
#include <algorithm>
#include <cstring>

#include "FuzzTarget.h"
#include "KavroDynamicData.h"
#include "links/DynamicStream.h"
#include "links/NetworkConfiguration.h"
#include "modes/DynamicDecoding.h"

using namespace KavroLibrary;

namespace {

const std::uint8_t* input = nullptr;
std::size_t left = 0;

int fuzzStart(NetworkConfiguration*, const sDynamicMode&) { return 0; }

DynamicTransfer fuzzExchange(NetworkConfiguration*, const DynamicBlock&, std::uint8_t* packet) {
    if (left == 0) return DynamicTransfer::Lost;
    const std::size_t n = std::min(left, kDynamicPacketSize);
    std::memset(packet, 0, kDynamicPacketSize);
    std::memcpy(packet, input, n);
    input += n;
    left -= n;
    return DynamicTransfer::Whole;
}

std::uint32_t fuzzStop(NetworkConfiguration*) { return 0; }

const DynamicTransport kFuzzLink{"Fuzz Link Lost", fuzzStart, fuzzExchange, fuzzStop, nullptr};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    NetworkConfiguration config(0, "fuzz");
    sDynamicMode mode;
    mode.Modules = data[0] % 201;
    config.PacketCrc = data[1] & 1;
    input = data + 2;
    left = size - 2;
    KavroDynamicData readings(&config, mode.Modules);
    config.DynamicData = &readings;
    config.DynamicRunning = true;
    RunDynamicReadLoop(&config, mode, kFuzzLink);
    DynamicThreadProcess(&config, mode);
    const int count = readings.ReadingCount();
    for (int module = 0; module < mode.Modules && count > 0; ++module) {
        readings.GetItem(module, count - 1);
    }
    config.DynamicData = nullptr;
    return 0;
}
