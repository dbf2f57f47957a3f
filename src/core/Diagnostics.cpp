#include "core/Diagnostics.h"

#include <cstdio>
#include <memory>
#include <mutex>

#include "KavroDiagnostics.h"

namespace KavroLibrary {

namespace {

std::mutex& handlerLock() {
    static std::mutex lock;
    return lock;
}

// Shared, so that a line being handled keeps its handler alive while another
// thread replaces it.
std::shared_ptr<const DiagnosticHandler>& currentHandler() {
    static std::shared_ptr<const DiagnosticHandler> handler;
    return handler;
}

}  // namespace

void setDiagnosticHandler(DiagnosticHandler handler) {
    std::shared_ptr<const DiagnosticHandler> next;
    if (handler) next = std::make_shared<const DiagnosticHandler>(std::move(handler));
    std::lock_guard<std::mutex> guard(handlerLock());
    currentHandler().swap(next);
}

void writeDiagnostic(const std::string& line) noexcept {
    std::shared_ptr<const DiagnosticHandler> handler;
    {
        std::lock_guard<std::mutex> guard(handlerLock());
        handler = currentHandler();
    }
    if (handler) {
        try {
            (*handler)(line);
        } catch (...) {
            // An application's handler must not end the library's threads.
        }
        return;
    }
    // The stream's lock keeps lines from several threads whole.
    flockfile(stderr);
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    funlockfile(stderr);
}

}  // namespace KavroLibrary
