#include "usb/SimUsbBlockPort.h"

#include <algorithm>

#include "usb/SimUsbFraming.h"

namespace kavrosim {

void SimUsbBlockPort::reset() {
    inbound_.clear();
    answer_.clear();
    answerRead_ = 0;
}

void SimUsbBlockPort::clockedOut(const std::uint8_t* bytes, std::size_t count) {
    inbound_.insert(inbound_.end(), bytes, bytes + count);
    for (;;) {
        const std::size_t size = usbRequestSize(inbound_.data(), inbound_.size());
        if (size == 0) return;
        const SimRequest request = decodeUsbRequest(inbound_.data(), size);
        inbound_.erase(inbound_.begin(), inbound_.begin() + static_cast<std::ptrdiff_t>(size));
        const SimAnswer answer = controller_.handle(request);
        answer_ = frameUsbAnswer(request, answer);
        answerRead_ = 0;
        answerReady_ = std::chrono::steady_clock::now() + answer.delay;
    }
}

SimTimedBytes SimUsbBlockPort::clockIn(std::size_t count) {
    SimTimedBytes out;
    out.ready = answerReady_;
    const std::size_t take = std::min(count, answer_.size() - answerRead_);
    const auto from = answer_.begin() + static_cast<std::ptrdiff_t>(answerRead_);
    out.bytes.assign(from, from + static_cast<std::ptrdiff_t>(take));
    answerRead_ += take;
    return out;
}

}  // namespace kavrosim
