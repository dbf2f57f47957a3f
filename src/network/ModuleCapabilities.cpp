// The capability rules for a freshly created module, and the air gauge's
// size offset.
#include <algorithm>

#include "KavroModuleAGM.h"
#include "KavroModuleAIM.h"
#include "KavroModuleDIM.h"
#include "KavroModuleDIOM.h"
#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroModuleEncoder.h"
#include "KavroNetwork.h"
#include "KavroNumberText.h"
#include "ModuleDifference.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

template <typename Class>
bool is(const KavroModule* module) {
    return dynamic_cast<const Class*>(module) != nullptr;
}

// Resolution and averaging settings came with the information text of the
// newer format; a module decoded from its type alone has neither.
bool decodedFromOldFormat(const KavroReadType& readType) {
    if (readType.Legacy || readType.InfoError != 0) return true;
    const std::string& text = readType.InfoText;
    if (text.size() < 2) return true;
    try {
        return KavroNumberStrToInt(text.substr(text.size() - 2)) < 1;
    } catch (const std::exception&) {
        return true;
    }
}

// Probes keep the word-sized tracking of the first kind up to the second
// generation; third-generation probes and encoders track full readings.
eDifferenceMode differenceModeFor(const KavroModule* module, int generation) {
    if (is<KavroModuleDP>(module)) return generation == 3 ? eDifferenceMode::Mode2 : eDifferenceMode::Mode1;
    if (is<KavroModuleEncoder>(module) && generation == 3) return eDifferenceMode::Mode2;
    return eDifferenceMode::ModeNone;
}

}  // namespace

void KavroNetwork::setModuleCapabilities(KavroModule* module) {
    const int generation = static_cast<int>(module->KavroGeneration());
    const eModuleType type = module->ModuleType();

    module->hotSwapCapable_ = false;
    module->readburstCapable_ = false;
    module->bufferedCapable_ = false;
    module->dynamicCapable_ = false;
    module->dynamic2Capable_ = false;
    if (generation == 1 || generation == 2) {
        module->dynamicCapable_ = is<KavroModuleDP>(module) || is<KavroModuleAIM>(module) ||
                                  is<KavroModuleDIOM>(module) || is<KavroModuleEIM>(module);
        module->speeds_.push_back(eNetSpeed::Low);
        module->speeds_.push_back(eNetSpeed::High);
    } else if (generation == 3) {
        module->dynamic2Capable_ = true;
        module->dynamicCapable_ = !is<KavroModuleDIM>(module);
        module->bufferedCapable_ = is<KavroModuleDP>(module) || is<KavroModuleDIOMBase>(module);
        module->readburstCapable_ = true;
        module->hotSwapCapable_ = module->DeviceType().find("504217-1") == std::string::npos;
        module->speeds_.push_back(eNetSpeed::Low);
        module->speeds_.push_back(eNetSpeed::High);
        module->speeds_.push_back(eNetSpeed::UltraHigh);
    } else {
        module->speeds_.push_back(eNetSpeed::Low);
    }

    const bool master = generation == 3 && (type == eModuleType::EIM || type == eModuleType::DIO2);
    module->bufferedMasterCapable_ = master;
    module->dynamicMasterCapable_ = master;

    if (!decodedFromOldFormat(*module->ReadType())) {
        for (eResolution resolution : {eResolution::res14Bit, eResolution::res16Bit, eResolution::res18Bit}) {
            module->resolutions_.push_back(resolution);
        }
        for (eAveraging averaging : {eAveraging::average1, eAveraging::average2, eAveraging::average4,
                                     eAveraging::average8, eAveraging::average16, eAveraging::average32,
                                     eAveraging::average64, eAveraging::average128, eAveraging::average256}) {
            module->averagings_.push_back(averaging);
        }
    }

    // First- and second-generation DIOMs do not know the status query.
    module->getStatusCapable_ = !(type == eModuleType::DIOM && generation <= 2);
    module->Difference()->mode_ = differenceModeFor(module, generation);
}

void KavroNetwork::agm_init(KavroModuleAGM* module) {
    KavroReadType* readType = module->ReadType();
    if (module->OutputReadingAsPressure()) {
        readType->SizeOffset = 0.0;
    } else {
        readType->SizeOffset = std::min(module->MasterMinReadingInUOM(), module->MasterMaxReadingInUOM()) -
                               module->EndBandSizeMicrons() / 1000.0;
    }
}

}  // namespace KavroLibrary
