#include "usb/SimUsbDevice.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <iostream>

#include "core/SimStreamFraming.h"

namespace kavrosim {

namespace {

// The controller's serial port before the channel goes to MPSSE.
constexpr ULONG kControllerBaudRate = 460800;
constexpr ULONG kHighestBaudRate = 12000000;

bool knownBitMode(UCHAR mode) {
    return mode == 0 || mode == 0x01 || mode == 0x02 || mode == 0x04 || mode == 0x08 || mode == 0x10 || mode == 0x20 ||
           mode == 0x40;
}

}  // namespace

SimUsbDevice::SimUsbDevice(SimUsbDeviceInfo info, std::shared_ptr<SimController> controller)
    : info_(std::move(info)), controller_(std::move(controller)) {
    if (controller_) port_ = std::make_unique<SimUsbBlockPort>(*controller_);
}

DWORD SimUsbDevice::listedFlags() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return info_.flags | (open_ ? kFtFlagOpened : 0);
}

bool SimUsbDevice::isOpen() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return open_;
}

UCHAR SimUsbDevice::bitMode() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return bitMode_;
}

ULONG SimUsbDevice::baudRate() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return baudRate_;
}

void SimUsbDevice::powerOn() {
    bitMode_ = kFtBitModeReset;
    baudRate_ = 9600;
    wordLength_ = 8;
    stopBits_ = 0;
    parity_ = 0;
    engine_.reset();
    if (port_) port_->reset();
    serialPending_.clear();
    toHost_.clear();
}

FT_STATUS SimUsbDevice::open() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (open_ || (info_.flags & kFtFlagOpened) != 0) return kFtDeviceNotOpened;
    powerOn();
    readTimeoutMs_ = 0;
    open_ = true;
    return kFtOk;
}

FT_STATUS SimUsbDevice::close() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    open_ = false;
    toHost_.clear();
    arrived_.notify_all();
    return kFtOk;
}

FT_STATUS SimUsbDevice::reset() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    powerOn();
    return kFtOk;
}

FT_STATUS SimUsbDevice::setBitMode(UCHAR /*mask*/, UCHAR mode) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    if (!knownBitMode(mode)) return kFtInvalidParameter;
    // Every mode change starts the engine and the controller's port afresh.
    bitMode_ = mode;
    engine_.reset();
    if (port_) port_->reset();
    serialPending_.clear();
    return kFtOk;
}

FT_STATUS SimUsbDevice::setBaudRate(ULONG baudRate) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    if (baudRate == 0 || baudRate > kHighestBaudRate) return kFtInvalidBaudRate;
    baudRate_ = baudRate;
    return kFtOk;
}

FT_STATUS SimUsbDevice::setDataCharacteristics(UCHAR wordLength, UCHAR stopBits, UCHAR parity) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    if ((wordLength != 7 && wordLength != 8) || (stopBits != 0 && stopBits != 2) || parity > 4) {
        return kFtInvalidParameter;
    }
    wordLength_ = wordLength;
    stopBits_ = stopBits;
    parity_ = parity;
    return kFtOk;
}

FT_STATUS SimUsbDevice::setFlowControl(USHORT flowControl) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    if (flowControl != 0x0000 && flowControl != 0x0100 && flowControl != 0x0200 && flowControl != 0x0400) {
        return kFtInvalidParameter;
    }
    return kFtOk;
}

FT_STATUS SimUsbDevice::setTimeouts(ULONG readMs, ULONG /*writeMs*/) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    readTimeoutMs_ = readMs;
    return kFtOk;
}

FT_STATUS SimUsbDevice::purge(ULONG mask) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!open_) return kFtInvalidHandle;
    if ((mask & ~(kFtPurgeRx | kFtPurgeTx)) != 0) return kFtInvalidParameter;
    if ((mask & kFtPurgeRx) != 0) toHost_.clear();
    if ((mask & kFtPurgeTx) != 0) {
        engine_.dropPending();
        serialPending_.clear();
    }
    return kFtOk;
}

void SimUsbDevice::limitReadWait(std::optional<std::chrono::milliseconds> limit) {
    std::lock_guard<std::mutex> lock(mutex_);
    readLimit_ = limit;
}

DWORD SimUsbDevice::readyBytes(Clock::time_point now) const {
    DWORD count = 0;
    for (const SimTimedBytes& chunk : toHost_) {
        if (chunk.ready > now) break;
        count += static_cast<DWORD>(chunk.bytes.size());
    }
    return count;
}

std::optional<SimUsbDevice::Clock::time_point> SimUsbDevice::nextArrival(Clock::time_point now) const {
    for (const SimTimedBytes& chunk : toHost_) {
        if (chunk.ready > now) return chunk.ready;
    }
    return std::nullopt;
}

DWORD SimUsbDevice::queued() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return readyBytes(Clock::now());
}

void SimUsbDevice::deliver(SimTimedBytes bytes) {
    // Bytes reach the host in the order they were clocked in.
    if (!toHost_.empty()) bytes.ready = std::max(bytes.ready, toHost_.back().ready);
    toHost_.push_back(std::move(bytes));
    arrived_.notify_all();
}

void SimUsbDevice::serialWrite(const std::uint8_t* bytes, DWORD count) {
    if (!controller_) return;
    if (baudRate_ != kControllerBaudRate || wordLength_ != 8 || stopBits_ != 0 || parity_ != 0) {
        // At another speed or framing the controller hears only noise.
        SimRequest noise;
        noise.raw.assign(bytes, bytes + count);
        controller_->handle(noise);
        return;
    }
    serialPending_.insert(serialPending_.end(), bytes, bytes + count);
    while (!serialPending_.empty()) {
        SimParsed parsed = parseStreamRequest(SimStreamDialect::Serial, serialPending_.data(), serialPending_.size());
        if (parsed.result == SimParsed::Result::Incomplete) return;
        serialPending_.erase(serialPending_.begin(),
                             serialPending_.begin() + static_cast<std::ptrdiff_t>(parsed.consumed));
        // The serial port only tells what the controller is.
        SimRequest request = std::move(parsed.request);
        if (request.kind != SimRequestKind::GetInfo) request.kind = SimRequestKind::Unknown;
        const SimAnswer answer = controller_->handle(request);
        Bytes frame = frameStreamAnswer(SimStreamDialect::Serial, request, answer);
        if (!frame.empty()) deliver({std::move(frame), Clock::now() + answer.delay});
    }
}

void SimUsbDevice::mpsseWrite(const std::uint8_t* bytes, DWORD count) {
    std::vector<SimTimedBytes> toHost;
    engine_.run(bytes, count, port_.get(), toHost);
    for (SimTimedBytes& chunk : toHost) deliver(std::move(chunk));
}

FT_STATUS SimUsbDevice::write(const std::uint8_t* bytes, DWORD count, DWORD* written) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (written != nullptr) *written = 0;
    if (!open_) return kFtInvalidHandle;
    try {
        if (bitMode_ == kFtBitModeReset) {
            serialWrite(bytes, count);
        } else if (bitMode_ == kFtBitModeMpsse) {
            mpsseWrite(bytes, count);
        }
        // The other bit modes drive pins the controller does not watch.
    } catch (const std::exception& error) {
        std::cerr << "kavro-sim usb: " << info_.description << ": " << error.what() << "\n";
        return kFtIoError;
    }
    if (written != nullptr) *written = count;
    return kFtOk;
}

FT_STATUS SimUsbDevice::read(std::uint8_t* bytes, DWORD count, DWORD* got) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (got != nullptr) *got = 0;
    if (!open_) return kFtInvalidHandle;
    std::optional<std::chrono::milliseconds> wait;
    if (readTimeoutMs_ > 0) wait = std::chrono::milliseconds(readTimeoutMs_);
    if (readLimit_) wait = wait ? std::min(*wait, *readLimit_) : *readLimit_;
    const auto start = Clock::now();
    for (;;) {
        const auto now = Clock::now();
        if (!open_ || readyBytes(now) >= count) break;
        const auto next = nextArrival(now);
        if (!wait) {
            if (!next) break;
            arrived_.wait_until(lock, *next);
            continue;
        }
        const auto deadline = start + *wait;
        if (now >= deadline) break;
        arrived_.wait_until(lock, next ? std::min(*next, deadline) : deadline);
    }
    DWORD copied = 0;
    const auto now = Clock::now();
    while (copied < count && !toHost_.empty() && toHost_.front().ready <= now) {
        Bytes& chunk = toHost_.front().bytes;
        const std::size_t take = std::min<std::size_t>(count - copied, chunk.size());
        std::memcpy(bytes + copied, chunk.data(), take);
        copied += static_cast<DWORD>(take);
        chunk.erase(chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(take));
        if (chunk.empty()) toHost_.pop_front();
    }
    if (got != nullptr) *got = copied;
    return kFtOk;
}

}  // namespace kavrosim
