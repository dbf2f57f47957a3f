// A laser triangulation sensor.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

// A laser sensor: filter and measuring rate.
class KavroModuleLT : public KavroModule {
public:
    // Made by the network when a laser sensor joins it.
    KavroModuleLT(NetworkConfiguration* config, int address);
    ~KavroModuleLT() override;

    // The sensor's filter.
    eFilter Filter() const { return filter_; }
    // Sets the sensor's filter.
    void setFilter(eFilter filter) { filter_ = filter; }
    // The sensor's measuring rate.
    eMeasuringRate MeasuringRate() const { return measuringRate_; }
    // Sets the sensor's measuring rate.
    void setMeasuringRate(eMeasuringRate rate) { measuringRate_ = rate; }

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    eFilter filter_ = eFilter::Filter20kHz;
    eMeasuringRate measuringRate_ = eMeasuringRate::rateNone;
};

}  // namespace KavroLibrary
