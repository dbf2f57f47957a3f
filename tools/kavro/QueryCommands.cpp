// scan, info, speed, save, load and error: what is there and how it is set.
#include <cstdlib>

#include "Tool.h"

namespace kavro_tool {

using namespace KavroLibrary;

namespace {

std::string speeds(const std::vector<eNetSpeed>& list) {
    std::string text;
    for (eNetSpeed speed : list) text += (text.empty() ? "" : " ") + eNetSpeed_ToString(speed);
    return text;
}

std::string yesNo(bool value) { return value ? "yes" : "no"; }

// A module's own settings, as NAME=VALUE words.
std::string settingsText(KavroModule& module) {
    std::string text;
    const auto add = [&text](const std::string& name, const std::string& value) {
        text += (text.empty() ? "" : " ") + name + "=" + value;
    };
    if (auto* probe = dynamic_cast<KavroModuleDP*>(&module)) {
        add("resolution", eResolution_ToString(probe->Resolution()));
        add("averaging", eAveraging_ToString(probe->Averaging()));
    } else if (auto* encoder = dynamic_cast<KavroModuleEncoder*>(&module)) {
        add("direction", eDirection_ToString(encoder->Direction()));
        add("reference", eReferenceMarkMode_ToString(encoder->ReferenceMarkMode()));
    } else if (auto* io = dynamic_cast<KavroModuleDIOMBase*>(&module)) {
        add("pins", std::to_string(io->PinCount()));
        add("debounce", eDiomInputDebounceTime_ToString(io->DebounceTime()));
        add("output", eDIOOutputMode_ToString(io->OutputMode()));
    } else if (auto* gauge = dynamic_cast<KavroModuleAGM*>(&module)) {
        add("mode", eAGM_MeasurementMode_ToString(gauge->MeasurementMode()));
        add("pressure", yesNo(gauge->OutputReadingAsPressure()));
    } else if (auto* input = dynamic_cast<KavroModuleDIM*>(&module)) {
        add("read", eDimReadMode_ToString(input->ReadMode()));
    } else if (auto* laser = dynamic_cast<KavroModuleLT*>(&module)) {
        add("filter", eFilter_ToString(laser->Filter()));
        add("rate", eMeasuringRate_ToString(laser->MeasuringRate()));
    } else if (auto* wcm = dynamic_cast<KavroModuleWCM*>(&module)) {
        add("scan", std::to_string(wcm->ScanDuration()));
    }
    return text;
}

}  // namespace

void emitRows(Tool& tool, const std::vector<std::string>& heading, const std::vector<std::vector<std::string>>& rows) {
    if (tool.format == Format::Table) {
        std::vector<std::vector<std::string>> all{heading};
        all.insert(all.end(), rows.begin(), rows.end());
        printTable(tool.out, all);
        return;
    }
    if (tool.format == Format::Csv) {
        std::string line;
        for (std::size_t i = 0; i < heading.size(); ++i) line += (i ? "," : "") + csvField(heading[i]);
        std::fprintf(tool.out, "%s\n", line.c_str());
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += tool.format == Format::Csv
                        ? (i ? "," : "") + csvField(row[i])
                        : std::string(i ? "," : "{") + jsonText(heading[i]) + ":" + jsonText(row[i]);
        }
        std::fprintf(tool.out, "%s%s\n", line.c_str(), tool.format == Format::Json ? "}" : "");
    }
}

int scanCommand(Tool& tool) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        KavroNetwork& network = *tool.networks[i];
        char firmware[16];
        std::snprintf(firmware, sizeof firmware, "%d.%02d", network.ControllerFirmware() / 100,
                      network.ControllerFirmware() % 100);
        rows.push_back({tool.label(i), network.Description(), network.ControllerID(),
                        eNetworkType_ToString(network.NetworkType()), firmware,
                        std::to_string(network.MaximumAllowableNumberOfModules()), speeds(network.AvailableSpeeds()),
                        yesNo(network.DynamicCapable() || network.Dynamic2Capable())});
    }
    emitRows(tool, {"network", "description", "controller", "type", "firmware", "module_limit", "speeds", "dynamic"},
             rows);
    return kSuccess;
}

int infoCommand(Tool& tool) {
    tool.findModules();
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        KavroNetwork& network = *tool.networks[i];
        for (int m = 0; m < network.ModuleCount(); ++m) {
            KavroModule& module = *network.GetModule(static_cast<unsigned>(m));
            std::string capabilities;
            if (module.DifferenceModeCapable()) capabilities += "difference ";
            if (module.BufferedCapable()) capabilities += "buffered ";
            if (module.DynamicCapable()) capabilities += "dynamic ";
            if (module.ReadburstCapable()) capabilities += "readburst ";
            if (!capabilities.empty()) capabilities.pop_back();
            rows.push_back({tool.label(i), std::to_string(module.Address()), module.ModuleID(),
                            eModuleType_ToString(module.ModuleType()), module.DeviceType(), module.UnitsOfMeasure(),
                            eGeneration_ToString(module.KavroGeneration()), module.Version(), capabilities,
                            settingsText(module)});
        }
    }
    emitRows(tool,
             {"network", "address", "identity", "kind", "description", "units", "generation", "firmware",
              "capabilities", "settings"},
             rows);
    return kSuccess;
}

int speedCommand(Tool& tool, const std::string& speed) {
    if (!speed.empty()) {
        const eNetSpeed wanted = speed == "low"    ? eNetSpeed::Low
                                 : speed == "high" ? eNetSpeed::High
                                                   : eNetSpeed::UltraHigh;
        for (KavroNetwork* network : tool.networks) {
            if (!network->SpeedAvailable(wanted)) {
                std::fprintf(stderr, "kavro: %s does not offer the speed %s\n", network->Description().c_str(),
                             speed.c_str());
                return kDeviceError;
            }
            network->setNetSpeed(wanted);
        }
    }
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        rows.push_back({tool.label(i), eNetSpeed_ToString(tool.networks[i]->NetSpeed()),
                        speeds(tool.networks[i]->AvailableSpeeds())});
    }
    emitRows(tool, {"network", "speed", "available"}, rows);
    return kSuccess;
}

int saveCommand(Tool& tool, const std::string& file) {
    tool.findModules();
    // One network a file: more networks take the file name with their index.
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        const std::string path = tool.networks.size() == 1 ? file : file + "." + std::to_string(i);
        tool.networks[i]->Save(path);
        std::fprintf(stderr, "kavro: %s saved to %s\n", tool.networks[i]->Description().c_str(), path.c_str());
    }
    return kSuccess;
}

int loadCommand(Tool& tool, const std::string& file) {
    for (KavroNetwork* network : tool.networks) {
        network->Load(file);
        std::fprintf(stderr, "kavro: %s loaded from %s, %d modules\n", network->Description().c_str(), file.c_str(),
                     network->ModuleCount());
    }
    return kSuccess;
}

int errorCommand(const std::string& code) {
    char* end = nullptr;
    const long value = std::strtol(code.c_str(), &end, 0);
    if (code.empty() || *end != '\0') {
        std::fprintf(stderr, "kavro: '%s' is not an error code (decimal, or hexadecimal with 0x)\n", code.c_str());
        return kBadUsage;
    }
    KavroServer server;
    std::printf("%ld (0x%lX) %s: %s\n", value, value, eKavroErrors_ToString(static_cast<eKavroErrors>(value)).c_str(),
                server.GetErrorDescription(static_cast<int>(value)).c_str());
    return kSuccess;
}

}  // namespace kavro_tool
