// Difference mode: per-module enable, the broadcast start and stop, and the
// two read-outs.
#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

KavroCheckedValueResult KavroCommands::KavroDifference(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'F', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 2, 0);

    KavroCheckedValueResult result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('F', 1);
    if (result.ModuleError == 0) result.Value = reply.at(1);
    return result;
}

// Start and stop go to every module at once so that all enabled modules track
// the same span; the caller paces what follows.
void KavroCommands::KavroStartDiff(NetworkConfiguration* config) {
    unsigned char data[2] = {'O', 0x00};
    sendCommand(config, CommandWithoutReply, data, sizeof data, 0);
}

void KavroCommands::KavroStopDiff(NetworkConfiguration* config) {
    unsigned char data[2] = {'H', 0x00};
    sendCommand(config, CommandWithoutReply, data, sizeof data, 0);
}

KavroReadDiff1Result KavroCommands::KavroReadDiff1(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'D', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 13, 0);

    KavroReadDiff1Result result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('D', 12);
    if (result.ModuleError != 0) return result;
    result.First = reply.le16(1);
    result.Second = reply.le16(3);
    result.SumLow = reply.le32(5);
    result.ByteValue = reply.at(9);
    result.Count24 = reply.le32(10) & 0xFFFFFFu;
    return result;
}

KavroReadDiff2Result KavroCommands::KavroReadDiff2(NetworkConfiguration* config, int addr) {
    unsigned char data[2] = {'X', lowByte(addr)};
    const CommandReply reply = exchange(config, CommandWithReply, data, sizeof data, 9, 0);

    KavroReadDiff2Result result;
    result.LinkStatus = reply.status();
    result.ModuleError = reply.moduleError('X', 8);
    if (result.ModuleError != 0) return result;
    result.First = reply.le32(1);
    result.Second = reply.le32(5);
    return result;
}

}  // namespace KavroLibrary
