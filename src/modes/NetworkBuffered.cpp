#include "NetworkBuffered.h"

#include <stdexcept>

#include "KavroNetwork.h"
#include "ModuleBuffered.h"

namespace KavroLibrary {

NetworkBuffered::NetworkBuffered(KavroNetwork* network) : network_(network) {}

int NetworkBuffered::EnabledCount() const {
    int count = 0;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        if (network_->GetModule(static_cast<unsigned int>(index))->Buffered()->Enabled()) ++count;
    }
    return count;
}

void NetworkBuffered::setMasterIndex(int index) {
    if (index < -1 || index >= network_->ModuleCount()) return;
    if (index == -1) {
        masterIndex_ = -1;
        return;
    }
    if (index == 0) throw std::runtime_error("Buffered master must be at the end of a buffered collection");
    if (!network_->GetModule(static_cast<unsigned int>(index))->BufferedMasterCapable()) {
        throw std::runtime_error("Specified module is not capable of being a buffered master");
    }
    masterIndex_ = index;
}

}  // namespace KavroLibrary
