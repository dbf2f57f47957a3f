// One tolerance limit of a single-channel hand tool: its value in the tool's
// units and whether the tool checks it.
#pragma once

#include <string>

namespace KavroLibrary {

class WCM_DeviceSettings_WHT;

class WHT_Limit {
public:
    // `name` is the limit's word in the tool's commands: "LOWER", "UPPER",
    // "WARNLOWER" or "WARNUPPER".
    WHT_Limit(WCM_DeviceSettings_WHT* settings, std::string name);

    const std::string& Name() const { return name_; }
    double Value();
    void setValue(double value);
    bool Enabled();
    void setEnabled(bool enabled);

private:
    WCM_DeviceSettings_WHT* settings_;  // not owned
    std::string name_;
};

}  // namespace KavroLibrary
