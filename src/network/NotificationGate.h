// How the notification thread tells the application thread that it has
// finished, and the thread itself, joined by whoever waits for its end (the
// next BeginNotifying, CancelNotifying, Disconnect, the destructor). The
// network and the thread share it, so the thread's last touch (the signal)
// never reaches memory the network has already freed.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace KavroLibrary {

struct NotificationGate {
    std::mutex lock;
    std::condition_variable ended;
    std::mutex joinLock;  // taken to start or join `thread`
    std::thread thread;
};

}  // namespace KavroLibrary
