// Control: clear, direction, reference mark, preset, set mode, status and the
// broadcast reset, clear-TCON and control action.
#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"
#include "core/ProtocolSleep.h"

namespace KavroLibrary {

namespace {

constexpr long kClearSettleMs = 500;
constexpr long kResetSettleMs = 500;
constexpr long kClearTConSettleMs = 50;
constexpr long kDirectionSettleMs = 1;

// The value byte of an unchecked reply: byte 1 when the reply holds it.
KavroValueResult valueResult(const CommandReply& reply) {
    KavroValueResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus == 0 && reply.size() > 1) result.Value = reply.at(1);
    return result;
}

// A one-address command whose reply is the echo and a value byte, checked.
KavroCheckedValueResult checkedValueCommand(NetworkConfiguration* config, unsigned char* data, int length,
                                            unsigned char code, unsigned char echoArgument) {
    const CommandReply reply = exchange(config, CommandWithReply, data, length, 2, echoArgument);
    KavroCheckedValueResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError(code, 1);
    if (result.ModuleError == 0) result.Value = reply.at(1);
    return result;
}

void broadcast(NetworkConfiguration* config, unsigned char code) {
    unsigned char data[2] = {code, 0x00};
    sendCommand(config, CommandWithoutReply, data, sizeof data, 0);
}

}  // namespace

KavroValueResult KavroCommands::KavroClr(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'C', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 2, 'C');
    const KavroValueResult result = valueResult(reply);
    // An answered clear means the module is now clearing; give it time.
    if (result.LinkStatus == 0) protocolSleepMs(kClearSettleMs);
    return result;
}

KavroValueResult KavroCommands::KavroDirection(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'U', lowByte(addr)};
    const KavroValueResult result = valueResult(exchange(config, CommandWithReply, data, sizeof data, 2, 'U'));
    protocolSleepMs(kDirectionSettleMs);
    return result;
}

KavroCheckedValueResult KavroCommands::KavroRefMark(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'K', lowByte(addr)};
    return checkedValueCommand(config, data, sizeof data, 'K', 0);
}

KavroCheckedValueResult KavroCommands::KavroPreset(NetworkConfiguration* config, int addr, unsigned int value) {
    unsigned char data[6] = {'P',
                             lowByte(addr),
                             static_cast<unsigned char>(value),
                             static_cast<unsigned char>(value >> 8),
                             static_cast<unsigned char>(value >> 16),
                             static_cast<unsigned char>(value >> 24)};
    return checkedValueCommand(config, data, sizeof data, 'P', 0);
}

KavroValueResult KavroCommands::KavroSetMode(NetworkConfiguration* config, int addr, eSetModeMode mode, int argument) {
    const int modeNumber = static_cast<int>(mode);
    unsigned char data[6] = {
        'V', lowByte(addr), lowByte(modeNumber), lowByte(modeNumber >> 8), lowByte(argument), lowByte(argument >> 8)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 2, 'V');
    KavroValueResult result = valueResult(reply);
    // Links that do not check the echo themselves (USB) must not take a
    // wrong first byte for a mode that was set.
    if (result.LinkStatus == 0) result.LinkStatus = reply.moduleError('V', 1);
    return result;
}

void KavroCommands::KavroControl(NetworkConfiguration* config, eKavroControlAction action) {
    unsigned char data[3] = {'W', 0x00, lowByte(static_cast<int>(action))};
    sendCommand(config, CommandWithoutReply, data, sizeof data, 0);
}

void KavroCommands::KavroRst(NetworkConfiguration* config) {
    broadcast(config, 'R');
    protocolSleepMs(kResetSettleMs);
}

void KavroCommands::KavroClearTCon(NetworkConfiguration* config) {
    broadcast(config, 'r');
    protocolSleepMs(kClearTConSettleMs);
}

KavroStatusResult KavroCommands::KavroGetStatus(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'G', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 4, 'G');

    KavroStatusResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('G', 3);
    if (result.ModuleError != 0) return result;
    // The status reply carries its own error byte behind the echo.
    if (reply.at(1) != 0) result.ModuleError = static_cast<std::uint32_t>(eKavroErrors::ModuleBase) | reply.at(1);
    result.StatusWord = reply.le16(2);
    return result;
}

}  // namespace KavroLibrary
