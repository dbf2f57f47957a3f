// The USB link's block parsing: every FT_Read hands out the next slice of the
// input (its length taken from the input too), for a module reply and the
// controller's identify and get-info answers.
#include <algorithm>
#include <cstring>

#include "FuzzTarget.h"
#include "links/FtdiApi.h"
#include "links/NetworkConfiguration.h"
#include "links/UsbFraming.h"

using namespace KavroLibrary;

namespace {

const std::uint8_t* input = nullptr;
std::size_t left = 0;

FT_STATUS fuzzWrite(FT_HANDLE, void*, DWORD count, LPDWORD written) {
    *written = count;
    return FT_OK;
}

FT_STATUS fuzzRead(FT_HANDLE, void* buffer, DWORD count, LPDWORD got) {
    *got = 0;
    if (left == 0) return FT_OK;
    // The first byte says how much of the request arrives (0: all of it).
    const std::size_t wanted = input[0] == 0 ? count : std::min<std::size_t>(count, input[0]);
    ++input;
    --left;
    const std::size_t n = std::min(wanted, left);
    std::memcpy(buffer, input, n);
    input += n;
    left -= n;
    *got = static_cast<DWORD>(n);
    return FT_OK;
}

FT_STATUS fuzzPurge(FT_HANDLE, ULONG) { return FT_OK; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    FtdiApi table;
    table.Write = fuzzWrite;
    table.Read = fuzzRead;
    table.Purge = fuzzPurge;
    ftdiInstall(&table);
    NetworkConfiguration config(0, "fuzz");
    input = data + 1;
    left = size - 1;
    switch (data[0] % 3) {
        case 0: {
            const ModuleReply reply = GetModuleCommandResponse(&config, 0, false);
            // The caller reads every byte the reply claims to hold.
            volatile unsigned sum = 0;
            for (std::uint32_t i = 0; i < reply.Length; ++i) sum = sum + reply.Data[i];
            delete[] reply.Data;
            break;
        }
        case 1:
            IdentifyNetwork(&config);
            break;
        default:
            GetInfoNetwork(&config);
            break;
    }
    ftdiInstall(nullptr);
    return 0;
}
