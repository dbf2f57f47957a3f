// An air gauge module: a probe that reads an air pressure and can turn it
// into a size between two masters.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleAGM : public KavroModule {
public:
    KavroModuleAGM(NetworkConfiguration* config, int address);
    ~KavroModuleAGM() override;

    // Pressure output has no size offset; size output starts at the smaller
    // master reading less the end band. Every setter below re-applies it.
    bool OutputReadingAsPressure() const { return outputReadingAsPressure_; }
    void setOutputReadingAsPressure(bool pressure);
    double MasterMinReadingInUOM() const { return masterMinReadingInUOM_; }
    void setMasterMinReadingInUOM(double reading);
    double MasterMaxReadingInUOM() const { return masterMaxReadingInUOM_; }
    void setMasterMaxReadingInUOM(double reading);
    // Width of the band kept beyond the masters, in microns; not negative.
    double EndBandSizeMicrons() const { return endBandSizeMicrons_; }
    void setEndBandSizeMicrons(double microns);
    eAGM_MeasurementMode MeasurementMode() const { return measurementMode_; }
    void setMeasurementMode(eAGM_MeasurementMode mode) { measurementMode_ = mode; }
    // Asks the module again who it is and re-applies the size offset.
    void UpdateInfo();

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

private:
    bool outputReadingAsPressure_ = false;
    double masterMinReadingInUOM_ = 0.0;
    double masterMaxReadingInUOM_ = 0.0;
    double endBandSizeMicrons_ = 0.0;
    eAGM_MeasurementMode measurementMode_ = eAGM_MeasurementMode::ZeroToScale;
};

}  // namespace KavroLibrary
