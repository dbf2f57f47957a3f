#include "links/NetworkConfiguration.h"

#include <algorithm>
#include <utility>

namespace KavroLibrary {

NetworkConfiguration::NetworkConfiguration(int networkNumber, std::string networkName)
    : NetworkNumber(networkNumber), NetworkName(std::move(networkName)) {}

NetworkConfiguration::~NetworkConfiguration() {
    // Blocks still queued from a run belong to the record.
    std::lock_guard<std::mutex> guard(QueueLock);
    for (unsigned char* block : DynamicQueue) delete[] block;
    DynamicQueue.clear();
    if (ReadThread.joinable()) ReadThread.detach();
    if (DecodeThread.joinable()) DecodeThread.detach();
}

void NetworkConfiguration::offerSpeed(eNetSpeed speed) {
    if (std::find(ControllerSpeeds.begin(), ControllerSpeeds.end(), speed) == ControllerSpeeds.end()) {
        ControllerSpeeds.push_back(speed);
    }
}

}  // namespace KavroLibrary
