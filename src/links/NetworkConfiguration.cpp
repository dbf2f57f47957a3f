#include "links/NetworkConfiguration.h"

#include <algorithm>
#include <utility>

#include "links/DynamicStream.h"

namespace KavroLibrary {

NetworkConfiguration::NetworkConfiguration(int networkNumber, std::string networkName)
    : NetworkNumber(networkNumber), NetworkName(std::move(networkName)) {}

NetworkConfiguration::~NetworkConfiguration() {
    // A run's threads use the record to their last act.
    DynamicStopRequest = true;
    JoinDynamicThreads(this);
    // Blocks still queued from a run belong to the record.
    std::lock_guard<std::mutex> guard(QueueLock);
    for (unsigned char* block : DynamicQueue) delete[] block;
    DynamicQueue.clear();
}

void NetworkConfiguration::offerSpeed(eNetSpeed speed) {
    if (std::find(ControllerSpeeds.begin(), ControllerSpeeds.end(), speed) == ControllerSpeeds.end()) {
        ControllerSpeeds.push_back(speed);
    }
}

}  // namespace KavroLibrary
