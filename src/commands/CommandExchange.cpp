#include "commands/CommandExchange.h"

#include "links/LinkDispatch.h"

namespace KavroLibrary {

void sendCommand(NetworkConfiguration* config, int type, unsigned char* data, int length, int replyLength) {
    ModuleCommand command;
    command.Type = type;
    command.Length = length;
    command.ReplyLength = replyLength;
    command.Data = data;
    SendModuleCommand(config, command);
}

CommandReply fetchReply(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    return CommandReply(GetModuleCommandReply(config, echo, longReply));
}

CommandReply exchange(NetworkConfiguration* config, int type, unsigned char* data, int length, int replyLength,
                      unsigned char echo, bool longReply, long settleMs) {
    ModuleCommand command;
    command.Type = type;
    command.Length = length;
    command.ReplyLength = replyLength;
    command.Data = data;
    return CommandReply(ExchangeModuleCommand(config, command, echo, longReply, settleMs));
}

}  // namespace KavroLibrary
