// What the linear encoder and the encoder input modules share: counting
// direction, preset, reference-mark mode and the action taken at the mark.
#pragma once

#include <map>
#include <string>

#include "KavroModule.h"

namespace KavroLibrary {

class KavroModuleEncoder : public KavroModule {
public:
    KavroModuleEncoder(NetworkConfiguration* config, int address);
    ~KavroModuleEncoder() override;

    eDirection Direction() const { return direction_; }
    // Reverses the module's counting direction when it differs.
    void setDirection(eDirection direction);
    // The last preset, in units of measure.
    double Preset() const { return preset_; }
    // Makes the module's present position read as `units`.
    void setPreset(double units);
    eReferenceMarkMode ReferenceMarkMode() const { return referenceMarkMode_; }
    void setReferenceMarkMode(eReferenceMarkMode mode) { referenceMarkMode_ = mode; }
    eRefAction RefAction() const { return refAction_; }
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
