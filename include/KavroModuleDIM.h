// A digital input module.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

// A digital input module.
class KavroModuleDIM : public KavroModule {
public:
    // Made by the network when a digital input module joins it.
    KavroModuleDIM(NetworkConfiguration* config, int address);
    ~KavroModuleDIM() override;

    // When the module takes its reading.
    eDimReadMode ReadMode() const { return readMode_; }
    // Chooses when the module takes its reading.
    void setReadMode(eDimReadMode mode) { readMode_ = mode; }
    // Asks the module again who it is (its scale follows what is plugged in).
    void UpdateInfo();

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eDimReadMode readMode_ = eDimReadMode::ReadContinuous;
};

}  // namespace KavroLibrary
