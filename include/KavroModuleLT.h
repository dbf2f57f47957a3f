// A laser triangulation sensor.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleLT : public KavroModule {
public:
    KavroModuleLT(NetworkConfiguration* config, int address);
    ~KavroModuleLT() override;

    eFilter Filter() const { return filter_; }
    void setFilter(eFilter filter) { filter_ = filter; }
    eMeasuringRate MeasuringRate() const { return measuringRate_; }
    void setMeasuringRate(eMeasuringRate rate) { measuringRate_ = rate; }

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eFilter filter_ = eFilter::Filter20kHz;
    eMeasuringRate measuringRate_ = eMeasuringRate::rateNone;
};

}  // namespace KavroLibrary
