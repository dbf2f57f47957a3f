// Pass-through: text lines relayed by a wireless concentrator to and from one
// of its devices. The link is told no echo, so that the concentrator's refusal
// reaches the result instead of passing for silence.
#include <cstring>
#include <stdexcept>

#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

constexpr std::size_t kMaximumText = 128;
constexpr std::size_t kTxHeader = 4;
constexpr std::size_t kRxHeader = 3;
constexpr unsigned char kReplyComplete = 0x01;

}  // namespace

KavroCheckedValueResult KavroCommands::KavroPassThroughTx(NetworkConfiguration* config, int addr, int deviceIndex,
                                                          std::string text) {
    if (text.size() > kMaximumText) throw std::runtime_error("Command cannot be > 128 characters");
    unsigned char data[kTxHeader + kMaximumText] = {'d', lowByte(addr), lowByte(deviceIndex),
                                                    static_cast<unsigned char>(text.size())};
    std::memcpy(data + kTxHeader, text.data(), text.size());
    const int length = static_cast<int>(kTxHeader + text.size());
    const CommandReply reply = exchange(config, CommandWithReply, data, length, 2, 0);

    // Value is the concentrator's status: 0 when it took the line.
    KavroCheckedValueResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('d', 1);
    if (result.ModuleError == 0) result.Value = reply.at(1);
    return result;
}

KavroPassThroughRxResult KavroCommands::KavroPassThroughRx(NetworkConfiguration* config, int addr, int deviceIndex) {
    unsigned char data[3] = {'e', lowByte(addr), lowByte(deviceIndex)};
    const CommandReply reply = exchange(config, CommandUnknownReply, data, sizeof data, 0, 0);
    if (reply.status() == static_cast<std::uint32_t>(eKavroErrors::Timeout)) {
        throw std::runtime_error("Pass through Rx timed out.");
    }

    KavroPassThroughRxResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('e', kRxHeader - 1);
    if (result.ModuleError != 0) return result;
    const std::size_t count = reply.at(2);
    if (count > kMaximumText) throw std::runtime_error("Kavro passthrough reply too long");
    if (reply.size() < kRxHeader + count) {
        result.ModuleError = static_cast<std::uint32_t>(eKavroErrors::Timeout);
        return result;
    }
    result.Complete = (reply.at(1) & kReplyComplete) != 0;
    result.Text.assign(reinterpret_cast<const char*>(reply.bytes()) + kRxHeader, count);
    return result;
}

}  // namespace KavroLibrary
