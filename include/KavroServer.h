// The object an application creates first: the library's identity, error
// texts, the collection of networks, and dynamic collection on all networks
// at once.
#pragma once

#include <memory>
#include <string>

namespace KavroLibrary {

class KavroNetworks;

class KavroServer {
public:
    KavroServer();
    ~KavroServer();
    KavroServer(const KavroServer&) = delete;
    KavroServer& operator=(const KavroServer&) = delete;

    std::string LibraryPartNumber() const;
    std::string LibraryVersion() const;
    std::string LibraryBuildDate() const;  // day/month/year

    // The dictionary text of an error code; "Unknown Error" when it has none.
    std::string GetErrorDescription(int code) const;

    // The collection of networks; call FindNetworks() on it to fill it.
    KavroNetworks* Networks() const;

    // True while a connected network's dynamic collection is reading or
    // processing.
    bool DynamicInProgress() const;

    void StartAllDynamic();
    // Starts dynamic on every network and calls `callback` once, on a worker
    // thread, when no network is reading or processing any more.
    void StartAllDynamic(void (*callback)());
    void StopAllDynamic();

private:
    void (*callback_)() = nullptr;
    std::unique_ptr<KavroNetworks> networks_;
};

// The body of the watcher thread of StartAllDynamic(callback).
void WaitForDynamicThreadProcess(KavroServer* server, void (*callback)());

}  // namespace KavroLibrary
