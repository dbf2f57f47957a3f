// Reading: single reads, the burst read, the buffered read-out and the memory read.
#include <stdexcept>

#include "commands/CheckSum.h"
#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

// Controllers announce a reply longer than this with a 16-bit length.
constexpr int kShortReplyLimit = 250;
constexpr int kMaximumMemoryRead = 255;

}  // namespace

KavroRead1Result KavroCommands::KavroRead1(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'1', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 3, 0);

    KavroRead1Result result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('1', 2);
    if (result.ModuleError == 0) result.Reading = reply.le16(1);
    return result;
}

KavroRead2Result KavroCommands::KavroRead2(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'L', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 5, 0);

    KavroRead2Result result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('L', 4);
    if (result.ModuleError == 0) result.Reading = reply.le32(1);
    return result;
}

KavroReadburstResult KavroCommands::Readburst(NetworkConfiguration* config, int moduleCount) {
    unsigned char data[2] = {'T', lowByte(moduleCount)};
    const int replyLength = 4 * moduleCount + 1;
    const CommandReply reply =
        exchange(config, CommandWithReply, data, sizeof data, replyLength, 'T', replyLength > kShortReplyLimit);

    KavroReadburstResult result;
    result.LinkStatus = reply.echoedStatus('T');
    if (result.LinkStatus != 0 || reply.size() <= 1) return result;
    // The caller splits the readings by length.
    result.DataLength = static_cast<int>(reply.size() - 1);
    result.Data = new unsigned char[reply.size() - 1];
    reply.copy(1, result.Data, reply.size() - 1);
    return result;
}

KavroReadBufferedResult KavroCommands::KavroReadBuffered1(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'Q', lowByte(addr)};
    // No echo is named to the link: the refusals BUFFER_FULL and BFR_EMPTY_STOP
    // steer the read-out and must not turn into time-outs.
    const CommandReply reply = exchange(config, CommandUnknownReply, data, sizeof data, 0, 0);

    KavroReadBufferedResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('Q', 0);
    if (result.ModuleError != 0) return result;
    // The block must hold its count, that many words and the checksum, and check.
    const std::size_t words = reply.at(1);
    const std::size_t blockEnd = 2 + 2 * words;
    if (reply.size() < blockEnd + 2 ||
        !checkSumHolds(reply.bytes(), static_cast<int>(blockEnd), reply.le16(blockEnd))) {
        result.LinkStatus = static_cast<std::uint32_t>(eKavroErrors::Checksum);
        result.ModuleError = static_cast<std::uint32_t>(eKavroErrors::Timeout);
        return result;
    }
    result.Words.reserve(words);
    for (std::size_t i = 0; i < words; ++i) result.Words.push_back(reply.le16(2 + 2 * i));
    return result;
}

KavroReadMemoryResult KavroCommands::KavroReadMemory(NetworkConfiguration* config, int addr,
                                                     std::uint32_t memoryAddress, int count) {
    // The count travels in one byte; anything else would ask for a reply the
    // module never sends.
    if (count < 0 || count > kMaximumMemoryRead) throw std::runtime_error("Read memory count must be 0 to 255");
    unsigned char data[7] = {'M',
                             lowByte(addr),
                             static_cast<unsigned char>(memoryAddress),
                             static_cast<unsigned char>(memoryAddress >> 8),
                             static_cast<unsigned char>(memoryAddress >> 16),
                             static_cast<unsigned char>(memoryAddress >> 24),
                             lowByte(count)};
    const int replyLength = 1 + count;
    const CommandReply reply =
        exchange(config, CommandWithReply, data, sizeof data, replyLength, 0, replyLength > kShortReplyLimit);

    KavroReadMemoryResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus == 0) result.Reply.assign(reply.bytes(), reply.bytes() + reply.size());
    return result;
}

}  // namespace KavroLibrary
