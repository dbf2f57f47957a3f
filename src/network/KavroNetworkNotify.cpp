// Notification: a background thread asks the bus, again and again, whether a
// module announces itself, and adds the first one that does.
#include <chrono>
#include <exception>
#include <stdexcept>
#include <thread>

#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "core/Diagnostics.h"
#include "core/JoinOrRelease.h"
#include "links/NetworkConfiguration.h"
#include "network/NotificationGate.h"

namespace KavroLibrary {

namespace {

// How long a cancelling caller waits at most before it looks at the
// operation again; the thread's signal ends the wait at once.
constexpr std::chrono::milliseconds kCancelPoll{100};

bool isNotificationCode(int operation) { return operation == OperationNotifying || operation == OperationNotifyEnding; }

// Joins an ended notification thread (on the thread itself, a callback of
// its own addition, it is let go: it holds the gate it touches last).
void joinNotificationThread(NotificationGate& gate) {
    std::lock_guard<std::mutex> guard(gate.joinLock);
    joinOrRelease(gate.thread);
}

}  // namespace

void KavroNetwork::BeginNotifying() {
    // A notification still ending uses the link until it is done; one that
    // ended on its own is joined.
    if (config_->ActiveOperation != OperationNotifying) waitForNotificationEnd();
    // Not connected: the speed change below says so.
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Network must be connected and idle before commencing an Kavro Identify");
    }
    const eNetSpeed restoreSpeed = config_->NetSpeed;
    setNetSpeed(eNetSpeed::Low);
    config_->ActiveOperation = OperationNotifying;
    std::lock_guard<std::mutex> guard(notificationGate_->joinLock);
    try {
        notificationGate_->thread = std::thread(&KavroNetwork::NotifyProcess, this, restoreSpeed);
    } catch (...) {
        config_->ActiveOperation = OperationIdle;
        throw;
    }
}

void KavroNetwork::NotifyProcess(eNetSpeed restoreSpeed) {
    // Held to the end: the network may be gone once the operation is idle.
    const std::shared_ptr<NotificationGate> gate = notificationGate_;
    try {
        while (config_->ActiveOperation == OperationNotifying && config_->Connected) {
            const KavroIdentityResult reply = KavroCommands::KavroNotify(config_.get());
            if (reply.LinkStatus == 0) {
                AddModuleInternal(reply.IdentityText(), "");
                break;
            }
            // Nobody announced within the controller's listening time: ask again.
            if (reply.LinkStatus != static_cast<std::uint32_t>(eKavroErrors::Timeout)) break;
        }
    } catch (const std::exception& error) {
        // A refused addition (module limit, duplicate identity) ends this
        // notification; it must not end the application.
        diagnostic("Notification ended: ", error.what());
    }

    config_->ActiveOperation = OperationNotifyEnding;
    try {
        if (config_->Connected && SpeedAvailable(restoreSpeed)) applyNetSpeed(restoreSpeed, true);
    } catch (const std::exception& error) {
        diagnostic("Notification could not restore the network speed: ", error.what());
    }

    // The last touch of the network: a waiting caller may destroy it as
    // soon as it sees the operation idle.
    std::lock_guard<std::mutex> guard(gate->lock);
    config_->ActiveOperation = OperationIdle;
    gate->ended.notify_all();
}

bool KavroNetwork::Notifying() const { return config_->Connected && isNotificationCode(config_->ActiveOperation); }

void KavroNetwork::CancelNotifying() {
    int running = OperationNotifying;
    config_->ActiveOperation.compare_exchange_strong(running, OperationNotifyEnding);
    waitForNotificationEnd();
}

void KavroNetwork::waitForNotificationEnd() {
    {
        std::unique_lock<std::mutex> guard(notificationGate_->lock);
        while (isNotificationCode(config_->ActiveOperation)) {
            notificationGate_->ended.wait_for(guard, kCancelPoll);
        }
    }
    joinNotificationThread(*notificationGate_);
}

}  // namespace KavroLibrary
