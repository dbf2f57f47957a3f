#include "core/SimController.h"

#include <algorithm>
#include <stdexcept>

namespace kavrosim {

namespace {

// Set-speed status for a speed the controller does not offer.
const std::uint8_t kSpeedRefused = 1;
const std::uint8_t kNoAnswer = 255;

SimControllerConfig validated(SimControllerConfig config) {
    config.validate();
    return config;
}

}  // namespace

SimController::SimController(SimControllerConfig config) : config_(validated(std::move(config))) {}

SimModule& SimController::existing(const std::string& identity) {
    SimModule* module = bus_.find(identity);
    if (module == nullptr) throw std::invalid_argument("no module " + identity + " on the bus");
    return *module;
}

void SimController::addModule(SimModule module) {
    std::lock_guard<std::mutex> lock(mutex_);
    bus_.add(std::move(module));
}

void SimController::hotPlug(SimModule module) {
    std::lock_guard<std::mutex> lock(mutex_);
    module.setAddress(bus_.nextFreeAddress());
    module.setSpeed(SimSpeed::Low);
    bus_.add(std::move(module));
}

bool SimController::removeModule(const std::string& identity) {
    std::lock_guard<std::mutex> lock(mutex_);
    return bus_.remove(identity);
}

void SimController::replaceModule(const std::string& identity, SimModule replacement) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!bus_.replace(identity, std::move(replacement))) {
        throw std::invalid_argument("no module " + identity + " on the bus");
    }
}

void SimController::clearModules() {
    std::lock_guard<std::mutex> lock(mutex_);
    bus_.clear();
}

std::vector<SimModule> SimController::modules() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return bus_.modules();
}

std::optional<SimModule> SimController::module(const std::string& identity) const {
    std::lock_guard<std::mutex> lock(mutex_);
    const SimModule* found = bus_.find(identity);
    if (found == nullptr) return std::nullopt;
    return *found;
}

void SimController::updateModule(const std::string& identity, const std::function<void(SimModule&)>& change) {
    std::lock_guard<std::mutex> lock(mutex_);
    SimModule& module = existing(identity);
    SimModule changed = module;
    change(changed);
    if (changed.identity() != identity) throw std::invalid_argument("a module's identity cannot change");
    changed.validate();
    module = std::move(changed);
}

void SimController::setSignal(const std::string& identity, SimSignal signal) {
    std::lock_guard<std::mutex> lock(mutex_);
    existing(identity).setSignal(std::move(signal));
}

void SimController::announce(const std::string& identity) {
    std::lock_guard<std::mutex> lock(mutex_);
    existing(identity).setAnnouncing(true);
}

SimSpeed SimController::busSpeed() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return speed_;
}

bool SimController::streaming() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return stream_.running();
}

std::int64_t SimController::setsStreamed() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return stream_.setsSent();
}

void SimController::injectFault(const SimFault& fault) {
    std::lock_guard<std::mutex> lock(mutex_);
    faults_.add(fault);
}

void SimController::clearFaults() {
    std::lock_guard<std::mutex> lock(mutex_);
    faults_.clear();
}

std::size_t SimController::pendingFaults() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return faults_.size();
}

std::vector<SimRequest> SimController::requestLog() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return std::vector<SimRequest>(log_.begin(), log_.end());
}

void SimController::clearRequestLog() {
    std::lock_guard<std::mutex> lock(mutex_);
    log_.clear();
}

void SimController::setRequestLogLimit(std::size_t entries) {
    std::lock_guard<std::mutex> lock(mutex_);
    logLimit_ = entries;
    while (log_.size() > logLimit_) log_.pop_front();
}

std::uint64_t SimController::requestCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return requestCount_;
}

bool SimController::waitForRequestCount(std::uint64_t count, std::chrono::milliseconds bound) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return logged_.wait_for(lock, bound, [&] { return requestCount_ >= count; });
}

void SimController::setObserver(Observer observer) {
    std::lock_guard<std::mutex> lock(mutex_);
    observer_ = std::move(observer);
}

SimAnswer SimController::handle(SimRequest request) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (request.received == Clock::time_point{}) request.received = Clock::now();
    ++requestCount_;
    if (logLimit_ > 0) {
        log_.push_back(request);
        while (log_.size() > logLimit_) log_.pop_front();
    }
    logged_.notify_all();
    SimAnswer result = respond(request);
    if (observer_) observer_(request, result);
    return result;
}

SimAnswer SimController::respond(const SimRequest& request) {
    const std::optional<SimFault> fault = faults_.take(request);
    SimAnswer result;
    if (fault && fault->kind == SimFaultKind::CloseConnection) {
        result.action = SimAnswer::Action::Close;
        return result;
    }
    if (request.kind == SimRequestKind::DynamicStart || request.kind == SimRequestKind::DynamicRead ||
        request.kind == SimRequestKind::DynamicStop) {
        result = answerDynamic(request, fault);
    } else {
        result = request.kind == SimRequestKind::ModuleCommand ? answerModuleCommand(request, fault)
                                                               : answerControllerRequest(request, fault);
    }
    if (fault) {
        switch (fault->kind) {
            case SimFaultKind::DropReply:
                result.action = SimAnswer::Action::Silent;
                break;
            case SimFaultKind::Delay:
                result.delay += std::chrono::milliseconds(fault->value);
                break;
            case SimFaultKind::CutFrame:
                result.cutAt = static_cast<std::size_t>(fault->value);
                break;
            default:
                break;
        }
    }
    return result;
}

SimAnswer SimController::answerModuleCommand(const SimRequest& request, const std::optional<SimFault>& fault) {
    SimAnswer answer;
    const bool broadcast = request.type == 1;
    // A refusal is the module's: it does not carry the command out. A lost
    // broadcast never reaches the bus.
    if (fault && fault->kind == SimFaultKind::ErrorReply) {
        answer.action = broadcast ? SimAnswer::Action::Silent : SimAnswer::Action::Reply;
        answer.data = Bytes{'!', static_cast<std::uint8_t>(fault->value)};
        return answer;
    }
    if (fault && fault->kind == SimFaultKind::DropReply && broadcast) {
        answer.action = SimAnswer::Action::Silent;
        return answer;
    }
    const SimBusReply carried = bus_.carry(request.type, request.command, speed_, Clock::now());
    if (broadcast) {
        answer.action = SimAnswer::Action::Silent;
        return answer;
    }
    answer.delay = carried.wait;
    if (!carried.reply) {
        answer.status = kNoAnswer;
        return answer;
    }
    answer.data = *carried.reply;
    if (fault && fault->kind == SimFaultKind::WrongEcho && !answer.data.empty()) {
        answer.data[0] = answer.data[0] == '?' ? '#' : '?';
    }
    if (fault && fault->kind == SimFaultKind::ShortReply &&
        answer.data.size() > static_cast<std::size_t>(fault->value)) {
        answer.data.resize(static_cast<std::size_t>(fault->value));
    }
    return answer;
}

SimAnswer SimController::answerControllerRequest(const SimRequest& request, const std::optional<SimFault>& fault) {
    SimAnswer answer;
    switch (request.kind) {
        case SimRequestKind::Identify:
            answer.data = config_.identityBytes();
            break;
        case SimRequestKind::GetInfo:
            answer.data = config_.infoBytes();
            break;
        case SimRequestKind::SetSpeed: {
            if (fault && fault->kind == SimFaultKind::ErrorReply) break;  // refused: the speed stays
            const auto speed = speedFromValue(request.speedValue);
            const auto offered = config_.supportedSpeeds();
            if (speed && std::find(offered.begin(), offered.end(), *speed) != offered.end()) {
                speed_ = *speed;
            } else {
                answer.status = kSpeedRefused;
            }
            break;
        }
        case SimRequestKind::Idle:
            break;
        default:
            answer.action = SimAnswer::Action::Silent;
            return answer;
    }
    if (fault && fault->kind == SimFaultKind::ErrorReply) answer.status = static_cast<std::uint8_t>(fault->value);
    if (fault && fault->kind == SimFaultKind::ShortReply) answer.cutAt = static_cast<std::size_t>(fault->value);
    return answer;
}

SimAnswer SimController::answerDynamic(const SimRequest& request, const std::optional<SimFault>& fault) {
    SimAnswer answer;
    // Controllers that do not stream do not know these requests.
    if (!config_.streams() || request.block.size() < 20) {
        answer.action = SimAnswer::Action::Silent;
        return answer;
    }
    const Clock::time_point now = request.received;
    if (request.kind == SimRequestKind::DynamicStart) {
        stream_.start(request.block, speed_, config_.unthrottled, now);
        return answer;
    }
    if (request.kind == SimRequestKind::DynamicStop) {
        stream_.stop(now);
        return answer;
    }
    const bool hit = fault && fault->kind == SimFaultKind::EndStatus;
    if (hit) stream_.abort(static_cast<std::uint8_t>(fault->value));
    const bool empty = fault && fault->kind == SimFaultKind::EmptyPacket;
    const SimDynamicStream::Packet packet =
        empty ? SimDynamicStream::Packet{}
              : stream_.read(request.block, now, [this](int module, Clock::time_point when) -> std::uint32_t {
                    SimModule* found = bus_.atAddress(module + 1, speed_);
                    return found == nullptr ? 0x8000FF : found->dynamicWord(when);
                });
    answer.data = packet.bytes;
    if (empty) {
        // Readings are due but none come: a header that says so, checked.
        answer.data.assign(SimDynamicStream::kPacketSize, 0);
        answer.data[0] = 16;
        answer.data[6] = request.block[4];
        const std::uint16_t crc = SimDynamicStream::crc16(answer.data.data(), 14);
        answer.data[14] = static_cast<std::uint8_t>(crc >> 8);
        answer.data[15] = static_cast<std::uint8_t>(crc & 0xFF);
    } else if (packet.ready > now) {
        answer.delay = std::chrono::duration_cast<std::chrono::milliseconds>(packet.ready - now);
    }
    if (fault && fault->kind == SimFaultKind::CorruptCrc) {
        // The CRC follows the readings; flipping it leaves the packet as it was.
        const std::size_t sets = static_cast<std::size_t>(answer.data[12]) | (answer.data[13] << 8);
        const std::size_t at = 14 + sets * static_cast<std::size_t>(stream_.modules()) * 3;
        if (at + 1 < answer.data.size()) answer.data[at + 1] ^= 0x5A;
    }
    if (fault && fault->kind == SimFaultKind::BadLength) {
        answer.data[12] = 0xFF;
        answer.data[13] = 0xFF;
    }
    return answer;
}

}  // namespace kavrosim
