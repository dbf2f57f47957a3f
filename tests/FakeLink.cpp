#include "FakeLink.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace KavroLibrary {

namespace {

// The link table holds plain function pointers, so each record finds its fake here.
std::mutex registryLock;
std::map<const NetworkConfiguration*, FakeLink*>& registry() {
    static std::map<const NetworkConfiguration*, FakeLink*> fakes;
    return fakes;
}

}  // namespace

FakeLink::FakeLink(NetworkConfiguration& config)
    : config_(config),
      savedIdentify_(config.Identify),
      savedGetInfo_(config.GetInfo),
      savedSendCommand_(config.SendCommand),
      savedGetReply_(config.GetReply),
      savedSetSpeed_(config.SetSpeed),
      savedSetIdle_(config.SetIdle) {
    {
        std::lock_guard<std::mutex> guard(registryLock);
        if (!registry().emplace(&config, this).second) {
            throw std::logic_error("FakeLink: this NetworkConfiguration already has a fake");
        }
    }
    config.Identify = &FakeLink::identify;
    config.GetInfo = &FakeLink::getInfo;
    config.SendCommand = &FakeLink::sendCommand;
    config.GetReply = &FakeLink::getReply;
    config.SetSpeed = &FakeLink::setSpeed;
    config.SetIdle = &FakeLink::setIdle;
}

FakeLink::~FakeLink() {
    config_.Identify = savedIdentify_;
    config_.GetInfo = savedGetInfo_;
    config_.SendCommand = savedSendCommand_;
    config_.GetReply = savedGetReply_;
    config_.SetSpeed = savedSetSpeed_;
    config_.SetIdle = savedSetIdle_;
    std::lock_guard<std::mutex> guard(registryLock);
    registry().erase(&config_);
}

FakeLink* FakeLink::find(NetworkConfiguration* config) {
    std::lock_guard<std::mutex> guard(registryLock);
    const auto it = registry().find(config);
    if (it == registry().end()) throw std::logic_error("FakeLink: no fake for this NetworkConfiguration");
    return it->second;
}

void FakeLink::reply(Bytes data, std::uint32_t status) {
    std::lock_guard<std::mutex> guard(lock_);
    script_.push_back(Reply{status, std::move(data)});
}

void FakeLink::replyText(const std::string& data, std::uint32_t status) {
    reply(Bytes(data.begin(), data.end()), status);
}

void FakeLink::noReply(std::uint32_t status) { reply(Bytes{}, status); }

void FakeLink::setResponder(Responder responder) {
    std::lock_guard<std::mutex> guard(lock_);
    responder_ = std::move(responder);
}

std::size_t FakeLink::pendingReplies() const {
    std::lock_guard<std::mutex> guard(lock_);
    return script_.size();
}

void FakeLink::setControllerIdentify(const ControllerIdentifyReply& reply) {
    std::lock_guard<std::mutex> guard(lock_);
    identifyReply_ = reply;
}

void FakeLink::setControllerInfo(const ControllerInfoReply& reply) {
    std::lock_guard<std::mutex> guard(lock_);
    infoReply_ = reply;
}

void FakeLink::setSpeedStatus(std::uint32_t status) {
    std::lock_guard<std::mutex> guard(lock_);
    speedStatus_ = status;
}

std::vector<FakeLink::Command> FakeLink::commands() const {
    std::lock_guard<std::mutex> guard(lock_);
    return commands_;
}

std::vector<FakeLink::Fetch> FakeLink::fetches() const {
    std::lock_guard<std::mutex> guard(lock_);
    return fetches_;
}

FakeLink::Command FakeLink::lastCommand() const {
    std::lock_guard<std::mutex> guard(lock_);
    return commands_.empty() ? Command{} : commands_.back();
}

std::size_t FakeLink::commandCount() const {
    std::lock_guard<std::mutex> guard(lock_);
    return commands_.size();
}

std::vector<eNetSpeed> FakeLink::speedRequests() const {
    std::lock_guard<std::mutex> guard(lock_);
    return speedRequests_;
}

int FakeLink::idleRequests() const {
    std::lock_guard<std::mutex> guard(lock_);
    return idleRequests_;
}

int FakeLink::identifyRequests() const {
    std::lock_guard<std::mutex> guard(lock_);
    return identifyRequests_;
}

int FakeLink::infoRequests() const {
    std::lock_guard<std::mutex> guard(lock_);
    return infoRequests_;
}

void FakeLink::clearRecords() {
    std::lock_guard<std::mutex> guard(lock_);
    commands_.clear();
    fetches_.clear();
    speedRequests_.clear();
    idleRequests_ = identifyRequests_ = infoRequests_ = 0;
}

bool FakeLink::waitForCommands(std::size_t count, std::chrono::milliseconds bound) const {
    std::unique_lock<std::mutex> guard(lock_);
    return changed_.wait_for(guard, bound, [&] { return commands_.size() >= count; });
}

bool FakeLink::waitForFetches(std::size_t count, std::chrono::milliseconds bound) const {
    std::unique_lock<std::mutex> guard(lock_);
    return changed_.wait_for(guard, bound, [&] { return fetches_.size() >= count; });
}

void FakeLink::sendCommand(NetworkConfiguration* config, ModuleCommand* command) {
    FakeLink* fake = find(config);
    Command record;
    record.Type = command->Type;
    record.Length = command->Length;
    record.ReplyLength = command->ReplyLength;
    if (command->Data != nullptr && command->Length > 0) {
        record.Data.assign(command->Data, command->Data + command->Length);
    }
    record.At = Clock::now();
    {
        std::lock_guard<std::mutex> guard(fake->lock_);
        fake->commands_.push_back(std::move(record));
    }
    fake->changed_.notify_all();
}

ModuleReply FakeLink::getReply(NetworkConfiguration* config, unsigned char echo, bool longReply) {
    FakeLink* fake = find(config);
    Fetch fetch;
    fetch.Echo = echo;
    fetch.LongReply = longReply;
    fetch.At = Clock::now();
    Reply scripted{255, {}};
    {
        std::unique_lock<std::mutex> guard(fake->lock_);
        fetch.CommandsBefore = fake->commands_.size();
        fake->fetches_.push_back(fetch);
        if (!fake->script_.empty()) {
            scripted = std::move(fake->script_.front());
            fake->script_.pop_front();
        } else if (fake->responder_) {
            // Called outside the lock so that a responder may script or inspect.
            const Responder responder = fake->responder_;
            const std::optional<Command> last =
                fake->commands_.empty() ? std::nullopt : std::optional<Command>(fake->commands_.back());
            guard.unlock();
            scripted = responder(last ? &*last : nullptr, fetch);
        }
    }
    fake->changed_.notify_all();

    ModuleReply reply;
    reply.Status = scripted.Status;
    reply.Length = static_cast<std::uint32_t>(scripted.Data.size());
    if (!scripted.Data.empty()) {
        reply.Data = new unsigned char[scripted.Data.size()];
        std::copy(scripted.Data.begin(), scripted.Data.end(), reply.Data);
    }
    return reply;
}

ControllerIdentifyReply FakeLink::identify(NetworkConfiguration* config) {
    FakeLink* fake = find(config);
    std::lock_guard<std::mutex> guard(fake->lock_);
    ++fake->identifyRequests_;
    return fake->identifyReply_;
}

ControllerInfoReply FakeLink::getInfo(NetworkConfiguration* config) {
    FakeLink* fake = find(config);
    std::lock_guard<std::mutex> guard(fake->lock_);
    ++fake->infoRequests_;
    return fake->infoReply_;
}

std::uint32_t FakeLink::setSpeed(NetworkConfiguration* config, eNetSpeed speed) {
    FakeLink* fake = find(config);
    std::lock_guard<std::mutex> guard(fake->lock_);
    fake->speedRequests_.push_back(speed);
    return fake->speedStatus_;
}

std::uint32_t FakeLink::setIdle(NetworkConfiguration* config) {
    FakeLink* fake = find(config);
    std::lock_guard<std::mutex> guard(fake->lock_);
    ++fake->idleRequests_;
    return 0;
}

}  // namespace KavroLibrary
