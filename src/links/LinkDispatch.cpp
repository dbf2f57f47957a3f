#include "links/LinkDispatch.h"

#include "core/ProtocolSleep.h"

namespace KavroLibrary {

void SendModuleCommand(NetworkConfiguration* config, ModuleCommand command) {
    if (config->SendCommand == nullptr) return;
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    config->SendCommand(config, &command);
}

ModuleReply GetModuleCommandReply(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    if (config->GetReply == nullptr) return ModuleReply{};
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    return config->GetReply(config, echo, longReply);
}

ModuleReply ExchangeModuleCommand(NetworkConfiguration* config, ModuleCommand command, unsigned char echo,
                                  bool longReply, long settleMs) {
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    if (config->SendCommand != nullptr) config->SendCommand(config, &command);
    if (settleMs > 0) protocolSleepMs(settleMs);
    if (config->GetReply == nullptr) return ModuleReply{};
    return config->GetReply(config, echo, longReply);
}

ControllerIdentifyReply ControllerIdentify(NetworkConfiguration* config) {
    if (config->Identify == nullptr) return ControllerIdentifyReply{};
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    return config->Identify(config);
}

ControllerInfoReply ControllerGetInfo(NetworkConfiguration* config) {
    if (config->GetInfo == nullptr) return ControllerInfoReply{};
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    return config->GetInfo(config);
}

std::uint32_t ControllerSetSpeed(NetworkConfiguration* config, eNetSpeed speed) {
    if (config->SetSpeed == nullptr) return 255;
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    return config->SetSpeed(config, speed);
}

std::uint32_t ControllerSetIdle(NetworkConfiguration* config) {
    if (config->SetIdle == nullptr) return 255;
    std::lock_guard<std::mutex> exchange(config->LinkLock);
    return config->SetIdle(config);
}

int NextPacketNum(NetworkConfiguration* config) {
    config->PacketNumber = (config->PacketNumber + 1) & 7;
    return config->PacketNumber * 8;
}

}  // namespace KavroLibrary
