// The pipe: 32-byte blocks to and from a module, checksummed both ways. The
// link is told no echo, so that a module's refusal reaches the result.
#include <cstring>
#include <stdexcept>

#include "commands/CheckSum.h"
#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

constexpr int kBlockBytes = 32;
constexpr int kSendLength = 37;
constexpr std::size_t kReceiveReplyLength = 36;

}  // namespace

KavroCheckedValueResult KavroCommands::KavroPipeSend32(NetworkConfiguration* config, int addr,
                                                       const unsigned char* data, int count) {
    if (count > kBlockBytes) throw std::runtime_error("Payload Length Too Long");
    if (count < 0 || (count > 0 && data == nullptr)) throw std::runtime_error("Pipe payload missing");
    unsigned char block[kSendLength] = {'-', lowByte(addr), static_cast<unsigned char>(count)};
    if (count > 0) std::memcpy(block + 3, data, static_cast<std::size_t>(count));
    const std::uint16_t sum = CheckSum(block, kSendLength - 2);
    block[35] = static_cast<unsigned char>(sum);
    block[36] = static_cast<unsigned char>(sum >> 8);
    const CommandReply reply = exchange(config, CommandWithReply, block, kSendLength, 2, 0);

    KavroCheckedValueResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('-', 1);
    if (result.ModuleError == 0) result.Value = reply.at(1);
    return result;
}

KavroPipeReceiveResult KavroCommands::KavroPipeReceive32(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'.', lowByte(addr)};
    const CommandReply reply =
        exchange(config, CommandWithReply, data, sizeof data, static_cast<int>(kReceiveReplyLength), 0);

    KavroPipeReceiveResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('.', kReceiveReplyLength - 1);
    if (result.ModuleError != 0) return result;
    // A block of the wrong size or one claiming more than it can hold is not a block.
    const std::size_t count = reply.at(1);
    if (reply.size() != kReceiveReplyLength || count > kBlockBytes) {
        result.ModuleError = static_cast<std::uint32_t>(eKavroErrors::Timeout);
        return result;
    }
    if (!checkSumHolds(reply.bytes(), 34, reply.le16(34))) throw std::runtime_error("Checksum incorrect.");
    result.Data.assign(reply.bytes() + 2, reply.bytes() + 2 + count);
    return result;
}

}  // namespace KavroLibrary
