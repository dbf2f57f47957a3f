// How the notification thread tells the application thread that it has
// finished. The network and the thread share it, so the thread's last touch
// (the signal) never reaches memory the network has already freed.
#pragma once

#include <condition_variable>
#include <mutex>

namespace KavroLibrary {

struct NotificationGate {
    std::mutex lock;
    std::condition_variable ended;
};

}  // namespace KavroLibrary
