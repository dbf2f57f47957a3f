// What the linear encoder and the encoder input modules share: counting
// direction, preset, reference-mark mode and the action taken at the mark.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

// What the encoder modules share: direction, preset and reference mark.
class KavroModuleEncoder : public KavroModule {
public:
    // Made with the module of one of the derived classes.
    KavroModuleEncoder(NetworkConfiguration* config, int address);
    ~KavroModuleEncoder() override;

    // The counting direction.
    eDirection Direction() const { return direction_; }
    // Reverses the module's counting direction when it differs.
    void setDirection(eDirection direction);
    // The last preset, in units of measure.
    double Preset() const { return preset_; }
    // Makes the module's present position read as `units`.
    void setPreset(double units);
    // What the module does with its reference mark.
    eReferenceMarkMode ReferenceMarkMode() const { return referenceMarkMode_; }
    // Sets what the module does with its reference mark.
    void setReferenceMarkMode(eReferenceMarkMode mode) { referenceMarkMode_ = mode; }
    // What happens when the reference mark is passed.
    eRefAction RefAction() const { return refAction_; }
    // Sets what happens when the reference mark is passed.
    void setRefAction(eRefAction action) { refAction_ = action; }

    void LoadXML(std::map<std::string, std::string> settings) override;
    void SaveXML() override;

protected:
    eDirection direction_ = eDirection::Normal;
    double preset_ = 0.0;
    eReferenceMarkMode referenceMarkMode_ = eReferenceMarkMode::None;
    eRefAction refAction_ = eRefAction::None;
};

}  // namespace KavroLibrary
