// A digital gauging probe: a module with an averaging and a resolution.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "KavroModule.h"

namespace KavroLibrary {

// A digital gauging probe.
class KavroModuleDP : public KavroModule {
public:
    // Made by the network when a probe joins it.
    KavroModuleDP(NetworkConfiguration* config, int address);
    ~KavroModuleDP() override;

    // The averagings this probe offers.
    std::vector<eAveraging> AvailableAveragings() const { return averagings_; }
    // The resolutions this probe offers.
    std::vector<eResolution> AvailableResolutions() const { return resolutions_; }
    // Whether the probe offers this averaging.
    bool isAverageAvailable(eAveraging averaging) const;
    // Whether the probe offers this resolution.
    bool isResolutionAvailable(eResolution resolution) const;

    // How many readings the probe averages into one.
    eAveraging Averaging() const { return averaging_; }
    // Reads the averaging the probe powered up with (16 when it cannot tell).
    void readDefaultAveraging();
    // Sets the averaging; throws when the probe refuses it.
    void setAveraging(eAveraging averaging);
    // The probe's resolution.
    eResolution Resolution() const;
    // Sets the resolution; throws when the probe refuses it.
    void setResolution(eResolution resolution);

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eAveraging averaging_ = eAveraging::average16;
};

}  // namespace KavroLibrary
