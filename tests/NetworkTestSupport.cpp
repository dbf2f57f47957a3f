#include "NetworkTestSupport.h"

#include <cstring>
#include <map>
#include <mutex>

using namespace KavroLibrary;

namespace {

std::map<NetworkConfiguration*, FakeModuleBus*>& registry() {
    static std::map<NetworkConfiguration*, FakeModuleBus*> buses;
    return buses;
}

std::mutex& registryLock() {
    static std::mutex lock;
    return lock;
}

void append(FakeModuleBus::Bytes& bytes, const std::string& text, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) bytes.push_back(i < text.size() ? text[i] : ' ');
}

void appendWord(FakeModuleBus::Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<unsigned char>(value & 0xFF));
    bytes.push_back(static_cast<unsigned char>((value >> 8) & 0xFF));
}

FakeModuleBus::Bytes refusal(int error) { return {'!', static_cast<unsigned char>(error)}; }

}  // namespace

std::string NewFormatInfo(const std::string& countsPerUnit, char readFormat, int factor) {
    std::string text = " mm    ";
    text += countsPerUnit.substr(0, 8);
    text.resize(15, ' ');
    text += "0.0000";
    text += '3';
    text += readFormat;
    text += "     00";
    char tail[3];
    std::snprintf(tail, sizeof tail, "%2d", factor);
    text += tail;
    return text;
}

FakeModule FakeProbe(const std::string& identity, std::uint16_t firmware, bool newFormat) {
    FakeModule probe;
    probe.identity = identity;
    probe.firmware = firmware;
    if (newFormat) probe.infoText = NewFormatInfo();
    return probe;
}

FakeModuleBus::FakeModuleBus(NetworkConfiguration* config) : config_(config) {
    {
        std::lock_guard<std::mutex> guard(registryLock());
        registry()[config] = this;
    }
    config->Identify = identify;
    config->GetInfo = getInfo;
    config->SendCommand = send;
    config->GetReply = fetch;
    config->SetSpeed = setSpeed;
    config->SetIdle = setIdle;
}

FakeModuleBus::~FakeModuleBus() {
    // The network outlives the bus: leave it unconnected, with no link.
    config_->Connected = false;
    config_->Identify = nullptr;
    config_->GetInfo = nullptr;
    config_->SendCommand = nullptr;
    config_->GetReply = nullptr;
    config_->SetSpeed = nullptr;
    config_->SetIdle = nullptr;
    std::lock_guard<std::mutex> guard(registryLock());
    registry().erase(config_);
}

FakeModule& FakeModuleBus::add(FakeModule module) {
    modules.push_back(std::move(module));
    return modules.back();
}

FakeModule* FakeModuleBus::at(int address) {
    for (FakeModule& module : modules) {
        if (address != 0 && module.address == address) return &module;
    }
    return nullptr;
}

FakeModule* FakeModuleBus::withIdentity(const std::string& identity) {
    for (FakeModule& module : modules) {
        if (module.identity == identity) return &module;
    }
    return nullptr;
}

void FakeModuleBus::clearRecords() {
    commands.clear();
    sent.clear();
    fetches.clear();
    speedRequests.clear();
}

std::vector<FakeModuleBus::Bytes> FakeModuleBus::commandsWithCode(char code) const {
    std::vector<Bytes> found;
    for (const Bytes& command : commands) {
        if (!command.empty() && command[0] == static_cast<unsigned char>(code)) found.push_back(command);
    }
    return found;
}

bool FakeModuleBus::connect(std::vector<eNetSpeed> speeds) {
    config_->ControllerSpeeds = std::move(speeds);
    config_->ReadburstFlag = true;
    config_->DynamicFlag = true;
    config_->Dynamic2Flag = true;
    config_->BufferedExternalSourceFlag = true;
    config_->DynamicExternalSourceFlag = true;
    return config_->InitNetworkHook(config_);
}

FakeModuleBus* FakeModuleBus::find(NetworkConfiguration* config) {
    std::lock_guard<std::mutex> guard(registryLock());
    const auto found = registry().find(config);
    return found == registry().end() ? nullptr : found->second;
}

ControllerIdentifyReply FakeModuleBus::identify(NetworkConfiguration* config) {
    ControllerIdentifyReply identity;
    FakeModuleBus* bus = find(config);
    if (bus == nullptr || !bus->controllerAnswersIdentify) return identity;
    Bytes fields;
    append(fields, bus->controllerId, 10);
    append(fields, "P700000A", 8);
    append(fields, "IM  ", 4);
    append(fields, bus->controllerVersion, 5);
    identity.setFields(fields.data());
    identity.Error = 0;
    return identity;
}

ControllerInfoReply FakeModuleBus::getInfo(NetworkConfiguration* config) {
    ControllerInfoReply info;
    FakeModuleBus* bus = find(config);
    if (bus == nullptr || !bus->controllerAnswersInfo) {
        info.Error = 255;
        return info;
    }
    std::memcpy(info.TypeCode, bus->controllerType.c_str(), std::min<std::size_t>(4, bus->controllerType.size()));
    info.Value = bus->controllerFirmware;
    std::memcpy(info.LimitText, bus->limitText.c_str(), std::min<std::size_t>(16, bus->limitText.size()));
    return info;
}

void FakeModuleBus::send(NetworkConfiguration* config, ModuleCommand* command) {
    FakeModuleBus* bus = find(config);
    if (bus == nullptr) return;
    Bytes bytes(command->Data, command->Data + command->Length);
    bus->commands.push_back(bytes);
    bus->sent.push_back({command->Type, command->ReplyLength, Clock::now()});
    bus->pending_ = bus->answer(bytes);
    if (command->Type == CommandWithoutReply) bus->pending_.reset();
}

ModuleReply FakeModuleBus::fetch(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    ModuleReply result;
    FakeModuleBus* bus = find(config);
    if (bus == nullptr) return result;
    bus->fetches.push_back({echo, longReply, Clock::now()});
    Bytes bytes;
    if (!bus->script_.empty()) {
        result.Status = bus->script_.front().first;
        bytes = std::move(bus->script_.front().second);
        bus->script_.pop_front();
        bus->pending_.reset();
        if (bytes.empty()) return result;
    } else if (bus->pending_) {
        bytes = *bus->pending_;
        bus->pending_.reset();
        result.Status = 0;
    } else {
        return result;
    }
    result.Length = static_cast<std::uint32_t>(bytes.size());
    result.Data = new unsigned char[bytes.size()];
    std::memcpy(result.Data, bytes.data(), bytes.size());
    return result;
}

std::uint32_t FakeModuleBus::setSpeed(NetworkConfiguration* config, eNetSpeed speed) {
    FakeModuleBus* bus = find(config);
    if (bus != nullptr) bus->speedRequests.push_back(speed);
    return 0;
}

std::uint32_t FakeModuleBus::setIdle(NetworkConfiguration*) { return 0; }

std::optional<FakeModuleBus::Bytes> FakeModuleBus::answer(const Bytes& command) {
    if (command.size() < 2) return std::nullopt;
    const unsigned char code = command[0];
    // Broadcasts.
    if (code == 'R') {
        for (FakeModule& module : modules) module.address = 0;
        return std::nullopt;
    }
    if (code == 'W' || code == 'O' || code == 'H' || code == 'r') return std::nullopt;
    if (code == 'S') {
        const std::string identity(command.begin() + 2, command.begin() + 12);
        FakeModule* module = withIdentity(identity);
        if (module == nullptr) return std::nullopt;
        module->address = command[1];
        return Bytes{'S', 0};
    }

    FakeModule* module = at(command[1]);
    if (module == nullptr) return std::nullopt;
    Bytes out{code};
    switch (code) {
        case 'I':
            append(out, module->identity, 10);
            append(out, module->partNumber, 8);
            append(out, "MOD ", 4);
            append(out, module->version, 5);
            appendWord(out, static_cast<unsigned>(module->probeRange));
            return out;
        case 'B':
            if (!module->answersGetInfo) return refusal(0x03);
            append(out, module->typeText, 4);
            appendWord(out, module->firmware);
            appendWord(out, module->strokeCode);
            append(out, module->infoText, 32);
            return out;
        case 'i':
            append(out, module->identity, 10);
            return out;
        case 'C':
            module->address = 0;
            out.push_back(0);
            return out;
        case 'V':
            if (module->refuseSetMode != 0) return refusal(module->refuseSetMode);
            out.push_back(0);
            return out;
        case 'P':
        case 'U':
        case 'K':
            out.push_back(0);
            return out;
        case '1':
            if (module->readError != 0) return refusal(module->readError);
            appendWord(out, module->reading & 0xFFFF);
            return out;
        case 'L':
            if (module->readError != 0) return refusal(module->readError);
            appendWord(out, module->reading & 0xFFFF);
            appendWord(out, module->reading >> 16);
            return out;
        case 'G':
            out.push_back(static_cast<unsigned char>(module->statusError));
            appendWord(out, module->statusWord);
            return out;
        case 'M':
            if (module->memoryError != 0) return refusal(module->memoryError);
            out.insert(out.end(), module->memory.begin(), module->memory.end());
            return out;
        default:
            return std::nullopt;
    }
}
