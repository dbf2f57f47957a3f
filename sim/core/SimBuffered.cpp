#include "core/SimBuffered.h"

#include <algorithm>
#include <stdexcept>

#include "core/SimModule.h"

namespace kavrosim {

namespace {

const std::uint8_t kBufferFull = 0x16;
const std::uint8_t kReadBufferNotValid = 0x17;
const std::uint8_t kEmptyAndStopped = 0x1B;
const std::uint8_t kArgumentNotValid = 0x3F;
const std::uint8_t kModeNotValid = 0x40;
const std::uint8_t kDelayNotValid = 0x41;
const std::uint8_t kSyncRunning = 0x43;
const std::uint8_t kSampleRunning = 0x51;

const unsigned kSyncMode = 11;
const unsigned kSampleMode = 21;
const unsigned kNormalMode = 0;
const unsigned kMasterMode = 75;
const unsigned kMasterRole = 5;
const unsigned kTxSampleMode = 77;
const unsigned kShortestInterval = 40;  // timing units

const std::uint16_t kBelowRangeWord = 0x8000;
const std::uint16_t kAboveRangeWord = 0xFFFF;

Bytes refuse(std::uint8_t errorByte) { return Bytes{'!', errorByte}; }
Bytes accepted() { return Bytes{'V', 0}; }

}  // namespace

bool bufferedCapable(const SimModule& module) {
    const SimKind kind = module.kind();
    return module.generation() >= 3 &&
           (kind == SimKind::DigitalProbe || kind == SimKind::Diom || kind == SimKind::Dio2);
}

bool bufferedMasterCapable(const SimModule& module) {
    return module.generation() >= 3 && (module.kind() == SimKind::EncoderInput || module.kind() == SimKind::Dio2);
}

void SimBuffered::setCapacity(std::size_t readings) {
    if (readings == 0 || readings > 1000000) {
        throw std::invalid_argument("a buffer holds from 1 to 1000000 readings");
    }
    capacity_ = readings;
}

void SimBuffered::drop() {
    words_.clear();
    fullPending_ = false;
}

std::optional<Bytes> SimBuffered::setMode(SimModule& module, unsigned mode, unsigned argument, Clock::time_point now) {
    switch (mode) {
        case kSyncMode:
        case kSampleMode:
            if (!bufferedCapable(module) || module.resolutionBits() != 14) return refuse(kModeNotValid);
            if (state_ == State::Buffering) return refuse(mode_ == Mode::Sync ? kSyncRunning : kSampleRunning);
            if (mode == kSyncMode && argument < kShortestInterval) return refuse(kDelayNotValid);
            drop();
            if (mode == kSyncMode) {
                mode_ = Mode::Sync;
                state_ = State::Armed;  // until control action 1
                otus_ = static_cast<int>(argument);
            } else {
                mode_ = Mode::Sample;
                state_ = State::Buffering;  // every trigger from now on
            }
            return accepted();
        case kTxSampleMode:
            if (!bufferedMasterCapable(module)) return refuse(kModeNotValid);
            txSample_ = static_cast<std::int16_t>(argument & 0xFFFF);
            return accepted();
        case kMasterMode:
            if (!bufferedMasterCapable(module)) return refuse(kModeNotValid);
            if (argument != kMasterRole) return refuse(kArgumentNotValid);
            master_ = true;
            masterStart_ = now;
            ticksIssued_ = 0;
            return accepted();
        case kNormalMode:
            master_ = false;
            mode_ = Mode::Normal;
            state_ = State::Idle;
            drop();
            return accepted();
        default:
            return std::nullopt;
    }
}

void SimBuffered::control(SimModule& module, int action, Clock::time_point now) {
    if (mode_ == Mode::Sync && state_ == State::Buffering) catchUpSync(module, now);
    switch (action) {
        case 0:
            mode_ = Mode::Normal;
            state_ = State::Idle;
            drop();
            break;
        case 1:
            if (mode_ == Mode::Sync && state_ == State::Armed) {
                state_ = State::Buffering;
                syncStart_ = now;
                syncTaken_ = 0;
            }
            break;
        case 2:
            if (state_ == State::Armed || state_ == State::Buffering) state_ = State::Stopped;
            break;
        case 3:
            if (mode_ == Mode::Sample && state_ == State::Buffering) take(module, now);
            break;
        default:
            break;
    }
}

void SimBuffered::take(SimModule& module, Clock::time_point at) {
    if (words_.size() >= capacity_) {
        fullPending_ = true;  // the reading is lost
        return;
    }
    const SimReading reading = module.read(at);
    if (reading.range == SimReading::Range::Under) {
        words_.push_back(kBelowRangeWord);
    } else if (reading.range == SimReading::Range::Over) {
        words_.push_back(kAboveRangeWord);
    } else {
        words_.push_back(static_cast<std::uint16_t>(static_cast<unsigned long long>(reading.counts) & 0xFFFF));
    }
}

void SimBuffered::catchUpSync(SimModule& module, Clock::time_point until) {
    if (until < syncStart_) return;
    // A reading at the start and one every interval after it.
    const auto interval = kTimingUnit * otus_;
    const long long owed = (until - syncStart_) / interval + 1;
    for (; syncTaken_ < owed; ++syncTaken_) {
        if (words_.size() >= capacity_) {
            fullPending_ = true;
            syncTaken_ = owed;
            break;
        }
        take(module, syncStart_ + interval * syncTaken_);
    }
}

Bytes SimBuffered::readOut(SimModule& module, Clock::time_point now) {
    if (mode_ == Mode::Normal) return refuse(kReadBufferNotValid);
    if (mode_ == Mode::Sync && state_ == State::Buffering) catchUpSync(module, now);
    if (fullPending_) {
        fullPending_ = false;
        return refuse(kBufferFull);
    }
    if (words_.empty() && state_ == State::Stopped) return refuse(kEmptyAndStopped);
    const std::size_t count = std::min(words_.size(), kMostWordsPerReply);
    Bytes reply{'Q', static_cast<std::uint8_t>(count)};
    for (std::size_t i = 0; i < count; ++i) {
        putLe16(reply, words_.front());
        words_.pop_front();
    }
    putLe16(reply, complementSum16(reply, 0, reply.size()));
    return reply;
}

void SimBuffered::reset() {
    mode_ = Mode::Normal;
    state_ = State::Idle;
    drop();
    master_ = false;
}

void SimBuffered::advance(std::vector<SimModule>& modules, Clock::time_point now) {
    for (SimModule& module : modules) {
        SimBuffered& self = module.buffered();
        if (self.mode_ == Mode::Sync && self.state_ == State::Buffering) self.catchUpSync(module, now);
    }
    for (SimModule& master : modules) {
        SimBuffered& pacer = master.buffered();
        if (!pacer.master_ || pacer.txSample_ <= 0 || now < pacer.masterStart_) continue;
        const auto step = kTimingUnit * (kUnitsPerMasterStep * pacer.txSample_);
        const long long due = (now - pacer.masterStart_) / step;
        for (; pacer.ticksIssued_ < due; ++pacer.ticksIssued_) {
            const Clock::time_point tick = pacer.masterStart_ + step * (pacer.ticksIssued_ + 1);
            bool anyRoom = false;
            for (SimModule& module : modules) {
                SimBuffered& sampler = module.buffered();
                if (&module == &master || sampler.mode_ != Mode::Sample || sampler.state_ != State::Buffering) {
                    continue;
                }
                anyRoom = anyRoom || sampler.words_.size() < sampler.capacity_;
                sampler.take(module, tick);
            }
            // Once every buffer is full (and marked so) the ticks left change nothing.
            if (!anyRoom) {
                pacer.ticksIssued_ = due;
                break;
            }
        }
    }
}

}  // namespace kavrosim
