// The object an application creates first: the library's identity, error
// texts, the collection of networks, and dynamic collection on all networks
// at once.
#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <string>

namespace KavroLibrary {

class KavroNetworks;

// The application's entry object: the library's identity, error texts and the networks.
class KavroServer {
public:
    KavroServer();
    ~KavroServer();
    KavroServer(const KavroServer&) = delete;
    KavroServer& operator=(const KavroServer&) = delete;

    // The library's part number.
    std::string LibraryPartNumber() const;
    // The library's version ("V 1.7").
    std::string LibraryVersion() const;
    std::string LibraryBuildDate() const;  // day/month/year

    // The dictionary text of an error code; "Unknown Error" when it has none.
    std::string GetErrorDescription(int code) const;

    // The collection of networks; call FindNetworks() on it to fill it.
    KavroNetworks* Networks() const;

    // True while a connected network's dynamic collection is reading or
    // processing.
    bool DynamicInProgress() const;

    // Starts the prepared dynamic run of every network; all or none.
    void StartAllDynamic();
    // Starts dynamic on every network and calls `callback` once, on a worker
    // thread, when no network is reading or processing any more.
    void StartAllDynamic(void (*callback)());
    // Stops every network's dynamic run.
    void StopAllDynamic();

private:
    friend void WaitForDynamicThreadProcess(KavroServer* server, void (*callback)());
    // Ends every run and the watcher (which then calls its callback): the
    // networks are about to go.
    void endWatch() noexcept;

    std::atomic<void (*)()> callback_{nullptr};
    std::unique_ptr<KavroNetworks> networks_;
    std::thread watcher_;
    std::atomic<bool> cancelWatch_{false};
};

// The body of the watcher thread of StartAllDynamic(callback).
void WaitForDynamicThreadProcess(KavroServer* server, void (*callback)());

}  // namespace KavroLibrary
