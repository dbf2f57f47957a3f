// Every module command's reply decoding, fed whatever a link could hand back:
// byte 0 picks the command, byte 1 the link status, the rest is the reply.
#include <cstring>
#include <stdexcept>
#include <string>

#include "FuzzTarget.h"
#include "commands/KavroCommands.h"
#include "links/NetworkConfiguration.h"

using namespace KavroLibrary;

namespace {

const std::uint8_t* replyBytes = nullptr;
std::size_t replySize = 0;
std::uint32_t replyStatus = 0;

void ignoreCommand(NetworkConfiguration*, ModuleCommand*) {}

ModuleReply fuzzReply(NetworkConfiguration*, unsigned char, bool) {
    ModuleReply reply;
    reply.Status = replyStatus;
    reply.Length = static_cast<std::uint32_t>(replySize);
    reply.Data = new unsigned char[replySize == 0 ? 1 : replySize];
    if (replySize > 0) std::memcpy(reply.Data, replyBytes, replySize);
    return reply;
}

void runCommand(NetworkConfiguration* config, int which) {
    constexpr int kAddress = 1;
    switch (which % 26) {
        case 0:
            KavroCommands::KavroSetAddr(config, "GP00000001", kAddress);
            break;
        case 1:
            KavroCommands::KavroNotify(config).IdentityText();
            break;
        case 2:
            KavroCommands::KavroIdentify(config, kAddress).IdentityText();
            break;
        case 3:
            KavroCommands::KavroGetProbeID(config, kAddress).IdentityText();
            break;
        case 4: {
            const KavroGetInfoResult info = KavroCommands::KavroGetInfo(config, kAddress);
            info.TypeTextString();
            info.InfoTextString();
            break;
        }
        case 5:
            KavroCommands::Ping(config, kAddress).IdentityText();
            break;
        case 6:
            KavroCommands::KavroRefMark(config, kAddress);
            break;
        case 7:
            KavroCommands::KavroSetMode(config, kAddress, eSetModeMode::Averaging, 4);
            break;
        case 8:
            KavroCommands::KavroGetStatus(config, kAddress);
            break;
        case 9:
            KavroCommands::KavroRead1(config, kAddress);
            break;
        case 10:
            KavroCommands::KavroRead2(config, kAddress);
            break;
        case 11:
            delete[] KavroCommands::Readburst(config, 4).Data;
            break;
        case 12:
            KavroCommands::KavroDifference(config, kAddress);
            break;
        case 13:
            KavroCommands::KavroReadDiff1(config, kAddress);
            break;
        case 14:
            KavroCommands::KavroReadDiff2(config, kAddress);
            break;
        case 15:
            KavroCommands::KavroRead3(config, kAddress, 0, eRead3_ControlCode::TaggedFloat, 0xFFFF, eRead3_UOM{});
            break;
        case 16:
            KavroCommands::KavroReadBuffered1(config, kAddress);
            break;
        case 17:
            KavroCommands::KavroReadMemory(config, kAddress, 0, 16);
            break;
        case 18:
            delete[] KavroCommands::KavroConfigRead(config, kAddress, 0, 0).Data;
            break;
        case 19: {
            std::int64_t value = 0;
            KavroCommands::KavroConfigRead_Int64(config, kAddress, 0, value);
            break;
        }
        case 20:
            KavroCommands::KavroConfigRead_String(config, kAddress, 0);
            break;
        case 21:
            KavroCommands::KavroConfigWrite_Int(config, kAddress, 0, 7);
            break;
        case 22: {
            const unsigned char payload[4] = {1, 2, 3, 4};
            KavroCommands::KavroPipeSend32(config, kAddress, payload, sizeof payload);
            break;
        }
        case 23:
            KavroCommands::KavroPipeReceive32(config, kAddress);
            break;
        case 24:
            KavroCommands::KavroPassThroughRx(config, kAddress, 0);
            break;
        default:
            KavroCommands::KavroClr(config, kAddress);
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    NetworkConfiguration config(0, "fuzz");
    config.SendCommand = ignoreCommand;
    config.GetReply = fuzzReply;
    replyStatus = data[1] < 0x80 ? 0 : data[1];
    replyBytes = data + 2;
    replySize = size - 2;
    try {
        runCommand(&config, data[0]);
    } catch (const std::runtime_error&) {
        // Refusing bad input with a clear error is allowed; anything else
        // (an out_of_range from a bounds check, say) escapes and is a finding.
    }
    return 0;
}
