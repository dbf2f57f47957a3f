// A digital gauging probe: a module with an averaging and a resolution.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleDP : public KavroModule {
public:
    KavroModuleDP(NetworkConfiguration* config, int address);
    ~KavroModuleDP() override;

    std::vector<eAveraging> AvailableAveragings() const { return averagings_; }
    std::vector<eResolution> AvailableResolutions() const { return resolutions_; }
    bool isAverageAvailable(eAveraging averaging) const;
    bool isResolutionAvailable(eResolution resolution) const;

    eAveraging Averaging() const { return averaging_; }
    // Reads the averaging the probe powered up with (16 when it cannot tell).
    void readDefaultAveraging();
    void setAveraging(eAveraging averaging);
    eResolution Resolution() const;
    void setResolution(eResolution resolution);

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eAveraging averaging_ = eAveraging::average16;
};

}  // namespace KavroLibrary
