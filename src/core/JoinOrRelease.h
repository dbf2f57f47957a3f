// Ending a library thread from the thread that owns it: joined, or let go
// when the call comes from the thread itself (a callback of its own), which
// then ends on its own with what it holds.
#pragma once

#include <system_error>
#include <thread>

namespace KavroLibrary {

inline void joinOrRelease(std::thread& thread) noexcept {
    if (!thread.joinable()) return;
    try {
        if (thread.get_id() == std::this_thread::get_id()) {
            thread.detach();
        } else {
            thread.join();
        }
    } catch (const std::system_error&) {
        // Neither can fail for a joinable thread of another id.
    }
}

}  // namespace KavroLibrary
