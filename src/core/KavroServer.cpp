#include "KavroServer.h"

#include <thread>

#include "KavroDynamic.h"
#include "KavroNetwork.h"
#include "KavroNetworks.h"
#include "core/ErrorDictionary.h"
#include "core/ProtocolSleep.h"

namespace KavroLibrary {

namespace {

bool busy(eDynamicState state) { return state == eDynamicState::Reading || state == eDynamicState::Processing; }

}  // namespace

KavroServer::KavroServer() : networks_(std::make_unique<KavroNetworks>()) {}

KavroServer::~KavroServer() = default;

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
    for (unsigned int i = 0; i < networks_->Count(); ++i) networks_->Network(i)->Dynamic()->StartDynamic();
}

void KavroServer::StartAllDynamic(void (*callback)()) {
    callback_ = callback;
    StartAllDynamic();
    std::thread(WaitForDynamicThreadProcess, this, callback).detach();
}

void KavroServer::StopAllDynamic() {
    for (unsigned int i = 0; i < networks_->Count(); ++i) networks_->Network(i)->Dynamic()->StopDynamic();
}

void WaitForDynamicThreadProcess(KavroServer* server, void (*callback)()) {
    for (;;) {
        protocolSleepMs(50);
        bool anyBusy = false;
        KavroNetworks* networks = server->Networks();
        for (unsigned int i = 0; i < networks->Count(); ++i) {
            if (busy(networks->Network(i)->Dynamic()->DynamicState())) anyBusy = true;
        }
        if (!anyBusy) break;
    }
    if (callback != nullptr) callback();
}

}  // namespace KavroLibrary
