// One tolerance limit of a single-channel hand tool: its value in the tool's
// units and whether the tool checks it.
#pragma once

#include <string>

namespace KavroLibrary {

class WCM_DeviceSettings_WHT;

// One tolerance limit of a single-channel hand tool: its value and whether it counts.
class WHT_Limit {
public:
    // `name` is the limit's word in the tool's commands: "LOWER", "UPPER",
    // "WARNLOWER" or "WARNUPPER".
    WHT_Limit(WCM_DeviceSettings_WHT* settings, std::string name);

    // The limit's word in the tool's commands.
    const std::string& Name() const { return name_; }
    // The limit's value, read from the tool.
    double Value();
    // Sets the limit's value.
    void setValue(double value);
    // Whether the limit counts, read from the tool.
    bool Enabled();
    // Makes the limit count or not.
    void setEnabled(bool enabled);

private:
    WCM_DeviceSettings_WHT* settings_;  // not owned
    std::string name_;
};

}  // namespace KavroLibrary
