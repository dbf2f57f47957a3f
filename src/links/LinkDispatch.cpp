#include "links/LinkDispatch.h"

namespace KavroLibrary {

void SendModuleCommand(NetworkConfiguration* config, ModuleCommand command) {
    if (config->SendCommand != nullptr) config->SendCommand(config, &command);
}

ModuleReply GetModuleCommandReply(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    if (config->GetReply == nullptr) return ModuleReply{};
    return config->GetReply(config, echo, longReply);
}

int NextPacketNum(NetworkConfiguration* config) {
    config->PacketNumber = (config->PacketNumber + 1) & 7;
    return config->PacketNumber * 8;
}

}  // namespace KavroLibrary
