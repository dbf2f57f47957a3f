// The library's main job on the built-in default: the library's identity and
// a few error texts, then a network on the simulated bus learning its modules.
#include <KavroLibrary.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <thread>

#include "core/ErrorDictionary.h"
#include "core/KavroSim.h"

namespace {

using namespace KavroLibrary;

void showErrorTexts() {
    std::cout << "KavroLibrary error texts\n";
    for (auto code : {eKavroErrors::NoError, eKavroErrors::Timeout, eKavroErrors::UnderRange, eKavroErrors::OverRange,
                      eKavroErrors::BUFFER_FULL}) {
        std::cout << "  " << static_cast<int>(code) << " " << eKavroErrors_ToString(code) << ": "
                  << GetErrorDescriptionInternal(static_cast<int>(code)) << "\n";
    }
}

void showModules(KavroNetwork& network) {
    for (int index = 0; index < network.ModuleCount(); ++index) {
        KavroModule* module = network.GetModule(static_cast<unsigned int>(index));
        std::cout << "  " << module->Address() << "  " << module->ModuleID() << "  "
                  << eModuleType_ToString(module->ModuleType()) << "  \"" << module->ModuleName() << "\"\n";
    }
}

// A module announced by its button, one hot-plugged, a read-burst of them
// all, and the network saved and loaded back.
void showDiscovery() {
    using namespace kavrosim;
    SimController controller(SimControllerConfig::ethernet("ETHSIM0001"));
    SimModule first = SimModule::digitalProbe("GP00000001", 2.0);
    first.setSignal(SimSignal::constant(1.25));
    controller.addModule(first);
    SimEthernetFace face(controller);
    face.start();

    KavroNetworkETHIM network(0, "Demo", face.address());
    network.Connect();
    if (!network.IsConnected()) {
        std::cout << "The simulated controller did not answer\n";
        return;
    }
    std::cout << "\n" << network.Description() << " on " << face.address() << "\n";
    network.AddModule("GP00000001", "Added by identity");

    SimModule pressed = SimModule::digitalProbe("GP00000002", 5.0);
    pressed.setSignal(SimSignal::constant(-1.0));  // below its range
    pressed.setAnnouncing(true);
    controller.addModule(pressed);
    network.BeginNotifying();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (network.Notifying() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    network.CancelNotifying();
    std::cout << "After notification: " << network.ModuleCount() << " modules\n";

    controller.hotPlug(SimModule::linearEncoder("LE00000003"));
    std::cout << "Hot-swap search: " << network.FindHotswapped() << " identify commands\n";
    showModules(network);

    int count = 0;
    network.Readburst(count);
    std::cout << "Read-burst of " << count << " modules:\n";
    for (int index = 0; index < count; ++index) {
        KavroModule* module = network.GetModule(static_cast<unsigned int>(index));
        const int error = module->LastReadburst_Error();
        std::cout << "  " << module->ModuleID() << "  " << module->LastReadburst_InUnitsOfMeasure() << " "
                  << module->UnitsOfMeasure() << (error != 0 ? "  (" + GetErrorDescriptionInternal(error) + ")" : "")
                  << "\n";
    }

    const std::filesystem::path file = std::filesystem::temp_directory_path() / "kavro-demo-network.xml";
    network.Save(file.string());
    network.Load(file.string());
    std::cout << "Saved to " << file.string() << " and loaded back: " << network.ModuleCount() << " modules\n";
    std::filesystem::remove(file);
}

}  // namespace

int main() {
    // The library reads its texts from the fixed installed path; a source
    // checkout that is not installed uses the copy beside the sources.
    if (GetErrorDescriptionInternal(0) == "Unknown Error") {
        loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    }
    showErrorTexts();
    try {
        showDiscovery();
    } catch (const std::exception& error) {
        std::cerr << "Demo stopped: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
