// An air gauge module: a probe that reads an air pressure and can turn it
// into a size between two masters.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

// An air gauge module: pressure or size output between two masters.
class KavroModuleAGM : public KavroModule {
public:
    // Made by the network when an air gauge joins it.
    KavroModuleAGM(NetworkConfiguration* config, int address);
    ~KavroModuleAGM() override;

    // Pressure output has no size offset; size output starts at the smaller
    // master reading less the end band. Every setter below re-applies it.
    bool OutputReadingAsPressure() const { return outputReadingAsPressure_; }
    // Chooses pressure output (true) or size output.
    void setOutputReadingAsPressure(bool pressure);
    // The smaller master's reading in units.
    double MasterMinReadingInUOM() const { return masterMinReadingInUOM_; }
    // Sets the smaller master's reading in units.
    void setMasterMinReadingInUOM(double reading);
    // The larger master's reading in units.
    double MasterMaxReadingInUOM() const { return masterMaxReadingInUOM_; }
    // Sets the larger master's reading in units.
    void setMasterMaxReadingInUOM(double reading);
    // Width of the band kept beyond the masters, in microns; not negative.
    double EndBandSizeMicrons() const { return endBandSizeMicrons_; }
    // Sets the width of the band beyond the masters, in microns.
    void setEndBandSizeMicrons(double microns);
    // What the gauge measures.
    eAGM_MeasurementMode MeasurementMode() const { return measurementMode_; }
    // Chooses what the gauge measures.
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
