// Buffered mode: the probes store a reading every 20 ms in their own memory,
// together, and the host empties them after the stop. Runs on the first two
// probes of kavro-sim's default scenario.
//
//   example-buffered_mode [controller address]      (default 127.0.0.1)
#include <KavroLibrary.h>

#include <chrono>
#include <iomanip>
#include <iostream>
#include <string>
#include <thread>

using namespace KavroLibrary;

int main(int argc, char** argv) {
    const std::string address = argc > 1 ? argv[1] : "127.0.0.1";
    KavroNetworkETHIM network(0, "Bench", address);
    network.Connect();
    if (!network.IsConnected()) {
        std::cerr << "No controller answers at " << address << ": start kavro-sim first (build/sim/kavro-sim).\n";
        return 1;
    }
    try {
        for (const char* identity : {"GP02000001", "GP05000002"}) {
            network.AddModule(identity, "");
            KavroModule* probe = network.GetModuleByID(identity);
            if (auto* dp = dynamic_cast<KavroModuleDP*>(probe)) dp->setResolution(eResolution::res14Bit);
            ModuleBuffered* buffered = probe->Buffered();
            buffered->setMode(eBufferedMode::Sync);  // every probe reads at the same instants
            buffered->setReadingInterval(20000);     // microseconds, rounded to the module's timing units
            buffered->setEnabled(true);
        }
        network.Buffered()->Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the probes fill their memories
        network.Buffered()->Stop();                                   // stops them and empties each one

        std::cout << std::fixed << std::setprecision(4);
        for (int m = 0; m < network.ModuleCount(); ++m) {
            KavroModule* probe = network.GetModule(static_cast<unsigned>(m));
            const ModuleBuffered* buffered = probe->Buffered();
            std::cout << probe->ModuleID() << "  " << buffered->BufferedDataLength() << " readings every "
                      << buffered->ReadingInterval() << " us:";
            for (int i = 0; i < buffered->BufferedDataLength() && i < 4; ++i) {
                std::cout << "  " << buffered->GetBufferedItem(i).value;
            }
            std::cout << " mm\n";
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
