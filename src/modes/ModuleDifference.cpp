#include "ModuleDifference.h"

#include <stdexcept>

#include "KavroModule.h"
#include "KavroModuleDP.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

ModuleDifference::ModuleDifference(KavroModule* module) : module_(module) {}

void ModuleDifference::setEnabled(bool enabled) {
    if (!enabled) {
        enabled_ = false;
        return;
    }
    if (module_->Configuration()->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot change module enable state during an kavro operation");
    }
    if (mode_ == eDifferenceMode::ModeNone) throw std::runtime_error("Module is not difference mode capable.");
    const auto* probe = dynamic_cast<const KavroModuleDP*>(module_);
    if (probe != nullptr && probe->Resolution() != eResolution::res14Bit) {
        throw std::runtime_error("Module must be set to 14bit resolution for difference mode.");
    }
    enabled_ = true;
}

}  // namespace KavroLibrary
