#include "KavroModuleStatus.h"

#include <stdexcept>

#include "KavroModule.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"

namespace KavroLibrary {

KavroModuleStatus::KavroModuleStatus(KavroModule* module) : module_(module) {}

void KavroModuleStatus::UpdateStatus() {
    if (!module_->getStatusCapable_) throw std::runtime_error("This module is not GetStatus capable");
    const KavroStatusResult reply = KavroCommands::KavroGetStatus(module_->Configuration(), module_->Address());
    // A reply without a usable answer (ModuleError 255) fails like a lost one;
    // a module error code is part of the answer and is stored.
    const std::uint32_t failure = reply.LinkStatus != 0 ? reply.LinkStatus : (reply.ModuleError == 255 ? 255 : 0);
    if (failure != 0) {
        throw std::runtime_error("Get status error - " + GetErrorDescriptionInternal(static_cast<int>(failure)));
    }
    status_ = reply.StatusWord;
    errorCode_ = static_cast<int>(reply.ModuleError);
}

std::string KavroModuleStatus::ErrorString() const { return GetErrorDescriptionInternal(errorCode_); }

}  // namespace KavroLibrary
