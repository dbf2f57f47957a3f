#include "network/ModuleFactory.h"

#include "KavroModuleAGM.h"
#include "KavroModuleAIM.h"
#include "KavroModuleDIM.h"
#include "KavroModuleDIOM.h"
#include "KavroModuleDIOM2.h"
#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroModuleLE.h"
#include "KavroModuleLEIM.h"
#include "KavroModuleLT.h"
#include "KavroModuleLTA.h"
#include "KavroModuleLTH.h"
#include "KavroModuleWCM.h"

namespace KavroLibrary {

std::unique_ptr<KavroModule> CreateModule(eModuleType type, NetworkConfiguration* config, int address) {
    switch (type) {
        case eModuleType::DP:
            return std::make_unique<KavroModuleDP>(config, address);
        case eModuleType::AIM:
            return std::make_unique<KavroModuleAIM>(config, address);
        case eModuleType::LE:
            return std::make_unique<KavroModuleLE>(config, address);
        case eModuleType::EIM:
            return std::make_unique<KavroModuleEIM>(config, address);
        case eModuleType::LEIM:
            return std::make_unique<KavroModuleLEIM>(config, address);
        case eModuleType::DIOM:
            return std::make_unique<KavroModuleDIOM>(config, address);
        case eModuleType::DIM:
            return std::make_unique<KavroModuleDIM>(config, address);
        case eModuleType::LTH:
            return std::make_unique<KavroModuleLTH>(config, address);
        case eModuleType::LT:
            return std::make_unique<KavroModuleLT>(config, address);
        case eModuleType::WCM:
            return std::make_unique<KavroModuleWCM>(config, address);
        case eModuleType::DIO2:
            return std::make_unique<KavroModuleDIOM2>(config, address);
        case eModuleType::AGM:
            return std::make_unique<KavroModuleAGM>(config, address);
        case eModuleType::LTA:
            return std::make_unique<KavroModuleLTA>(config, address);
        default:
            return std::make_unique<KavroModule>(config, address);
    }
}

}  // namespace KavroLibrary
