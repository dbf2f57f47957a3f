#include "NetworkDifference.h"

#include "KavroNetwork.h"
#include "ModuleDifference.h"

namespace KavroLibrary {

NetworkDifference::NetworkDifference(KavroNetwork* network) : network_(network) {}

int NetworkDifference::Count() const {
    int count = 0;
    for (int index = 0; index < network_->ModuleCount(); ++index) {
        if (network_->GetModule(static_cast<unsigned int>(index))->Difference()->Enabled()) ++count;
    }
    return count;
}

}  // namespace KavroLibrary
