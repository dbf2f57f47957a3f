// The result of a module's status query.
#pragma once

#include <string>

namespace KavroLibrary {

class KavroModule;

// A module's status word and last error.
class KavroModuleStatus {
public:
    // Made with its module; reached through KavroModule::ModuleStatus().
    explicit KavroModuleStatus(KavroModule* module);

    // Asks the module for its status word and error; throws when the module
    // cannot answer the query or the command fails.
    void UpdateStatus();
    // The module's status word, as last asked.
    int Status() const { return status_; }
    // The module's last error (an eKavroErrors value).
    int ErrorCode() const { return errorCode_; }
    // The dictionary text of ErrorCode().
    std::string ErrorString() const;

private:
    // A read stores its error here; the probe starts with its own status.
    friend class KavroModule;
    friend class KavroModuleDP;

    KavroModule* module_;  // not owned
    int status_ = 0;
    int errorCode_ = 0;
};

}  // namespace KavroLibrary
