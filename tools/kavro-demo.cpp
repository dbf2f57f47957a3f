// The library's main job on the built-in default: the library's identity and
// a few error texts, then difference and buffered runs on a simulated bus.
#include <KavroLibrary.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

#include "core/ErrorDictionary.h"
#include "core/KavroSim.h"

namespace {

using namespace KavroLibrary;

// Two probes on a simulated Ethernet controller: one swings between 0.6 and
// 1.4 mm, the other is stepped by hand between sample triggers.
void modesOnSimulatedBus() {
    using namespace kavrosim;
    SimControllerConfig config = SimControllerConfig::ethernet("ETHDEMO001");
    config.speeds = {SimSpeed::Low};
    SimController controller(config);
    SimModule swinging = SimModule::digitalProbe("GPDEMO0001", 2.0);
    swinging.setGeneration(2);  // counts and sums its readings
    swinging.setSignal(SimSignal::sine(1.0, 0.4, 0.2));
    controller.addModule(swinging);
    controller.addModule(SimModule::digitalProbe("GPDEMO0002", 2.0));
    SimEthernetFace face(controller);
    face.start();

    KavroNetworkETHIM network(0, "Demo", face.address());
    network.Connect();
    if (!network.IsConnected()) {
        std::cout << "  the simulated controller did not answer\n";
        return;
    }
    network.AddModule("GPDEMO0001", "Swinging");
    network.AddModule("GPDEMO0002", "Stepping");
    std::cout << network.Description() << " on " << face.address() << "\n";

    ModuleDifference* difference = network.GetModule(0)->Difference();
    difference->setEnabled(true);
    network.Difference()->Start();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    do {
        difference->ReadDifference();  // interim results, until a few periods are in
    } while (difference->ReadingCount() < 500 && std::chrono::steady_clock::now() < deadline);
    network.Difference()->Stop();
    std::cout << "Difference run of " << difference->ReadingCount() << " readings: min " << difference->Min()
              << " mm, max " << difference->Max() << " mm, difference " << difference->Diff() << " mm, mean "
              << difference->Sum() / difference->ReadingCount() << " mm\n";
    difference->setEnabled(false);

    ModuleBuffered* buffered = network.GetModule(1)->Buffered();
    buffered->setMode(eBufferedMode::Sample);
    buffered->setEnabled(true);
    network.Buffered()->Start();
    for (double value : {0.5, 1.25, 2.5}) {
        controller.setSignal("GPDEMO0002", SimSignal::constant(value));
        const auto before = controller.requestCount();
        network.Buffered()->Sample();
        controller.waitForRequestCount(before + 1, std::chrono::seconds(2));
    }
    network.Buffered()->Stop();
    int length = 0;
    sReadingItem* items = buffered->GetBufferedDataArray(length);
    std::cout << "Buffered sample run:";
    for (int i = 0; i < length; ++i) {
        std::cout << " " << items[i].value << " mm";
        if (items[i].error != eKavroErrors::NoError) std::cout << " (" << eKavroErrors_ToString(items[i].error) << ")";
    }
    std::cout << "\n";
    std::free(items);
    network.Disconnect();
}

}  // namespace

int main() {
    // The library reads its texts from the fixed installed path; a source
    // checkout that is not installed uses the copy beside the sources.
    if (GetErrorDescriptionInternal(0) == "Unknown Error") {
        loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    }
    std::cout << "KavroLibrary error texts\n";
    for (auto code : {eKavroErrors::NoError, eKavroErrors::Timeout, eKavroErrors::UnderRange, eKavroErrors::OverRange,
                      eKavroErrors::BUFFER_FULL}) {
        std::cout << "  " << static_cast<int>(code) << " " << eKavroErrors_ToString(code) << ": "
                  << GetErrorDescriptionInternal(static_cast<int>(code)) << "\n";
    }
    try {
        modesOnSimulatedBus();
    } catch (const std::exception& error) {
        std::cout << "Modes on the simulated bus failed: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
