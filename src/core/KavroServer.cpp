#include "KavroServer.h"

#include <thread>

#include "KavroDynamic.h"
#include "KavroNetwork.h"
#include "KavroNetworks.h"
#include "core/ErrorDictionary.h"
#include "core/Diagnostics.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

namespace {

bool busy(eDynamicState state) { return state == eDynamicState::Reading || state == eDynamicState::Processing; }

// Wakes a watcher waiting on any network; the lock makes sure it is either
// waiting already or will see the flag.
void wakeWatcher(KavroNetworks& networks) {
    for (unsigned int i = 0; i < networks.Count(); ++i) {
        NetworkConfiguration* config = networks.Network(i)->Configuration();
        { std::lock_guard<std::mutex> run(config->RunLock); }
        config->RunSignal.notify_all();
    }
}

}  // namespace

KavroServer::KavroServer() : networks_(std::make_unique<KavroNetworks>()) {
    networks_->beforeClear_ = [this] { endWatch(); };
}

KavroServer::~KavroServer() {
    endWatch();
    networks_->beforeClear_ = nullptr;
    networks_.reset();
}

std::string KavroServer::LibraryPartNumber() const { return "837205"; }
std::string KavroServer::LibraryVersion() const { return "V 1.7"; }
std::string KavroServer::LibraryBuildDate() const { return "30/08/2022"; }

std::string KavroServer::GetErrorDescription(int code) const { return GetErrorDescriptionInternal(code); }

KavroNetworks* KavroServer::Networks() const { return networks_.get(); }

bool KavroServer::DynamicInProgress() const {
    for (unsigned int i = 0; i < networks_->Count(); ++i) {
        KavroNetwork* network = networks_->Network(i);
        if (network->IsConnected() && busy(network->Dynamic()->DynamicState())) return true;
    }
    return false;
}

void KavroServer::StartAllDynamic() {
    const unsigned int count = networks_->Count();
    for (unsigned int i = 0; i < count; ++i) {
        try {
            networks_->Network(i)->Dynamic()->StartDynamic();
        } catch (...) {
            // All or none: the networks already streaming stop, or they would
            // stream with no one waiting for them.
            for (unsigned int j = 0; j < i; ++j) {
                try {
                    networks_->Network(j)->Dynamic()->StopDynamic();
                } catch (...) {
                }
            }
            throw;
        }
    }
}

void KavroServer::StartAllDynamic(void (*callback)()) {
    // The watcher of an earlier start has seen its runs end, or is told to now.
    cancelWatch_ = true;
    wakeWatcher(*networks_);
    if (watcher_.joinable()) watcher_.join();
    cancelWatch_ = false;
    callback_ = callback;
    StartAllDynamic();
    watcher_ = std::thread(WaitForDynamicThreadProcess, this, callback);
}

void KavroServer::StopAllDynamic() {
    for (unsigned int i = 0; i < networks_->Count(); ++i) networks_->Network(i)->Dynamic()->StopDynamic();
}

void KavroServer::endWatch() noexcept {
    if (!watcher_.joinable()) return;
    // The runs end first, so that the watcher sees them end and calls back.
    for (unsigned int i = 0; i < networks_->Count(); ++i) {
        try {
            networks_->Network(i)->Dynamic()->StopDynamic();
        } catch (...) {
        }
    }
    cancelWatch_ = true;
    wakeWatcher(*networks_);
    try {
        watcher_.join();
    } catch (...) {
    }
}

void WaitForDynamicThreadProcess(KavroServer* server, void (*callback)()) {
    // Waits on each network in turn until its run has left Reading; a run
    // that ends wakes it, and so does the server when it lets go.
    KavroNetworks* networks = server->Networks();
    for (unsigned int i = 0; i < networks->Count() && !server->cancelWatch_; ++i) {
        NetworkConfiguration* config = networks->Network(i)->Configuration();
        std::unique_lock<std::mutex> run(config->RunLock);
        config->RunSignal.wait(run, [&] {
            return server->cancelWatch_ || !busy(networks->Network(i)->Dynamic()->DynamicState());
        });
    }
    if (callback == nullptr) return;
    try {
        callback();
    } catch (const std::exception& error) {
        diagnostic("The dynamic collection's callback failed: ", error.what());
    } catch (...) {
        diagnostic("The dynamic collection's callback failed");
    }
}

}  // namespace KavroLibrary
