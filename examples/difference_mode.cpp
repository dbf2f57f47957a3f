// Difference mode: the probes track their smallest and largest reading on
// their own while the host does something else, and the spread is read out
// at the stop. Runs on the first three probes of kavro-sim's default scenario.
//
//   example-difference_mode [controller address]      (default 127.0.0.1)
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
        for (const char* identity : {"GP02000001", "GP05000002", "GP10000003"}) {
            network.AddModule(identity, "");
            KavroModule* probe = network.GetModuleByID(identity);
            // Difference mode takes probes at 14 bit.
            if (auto* dp = dynamic_cast<KavroModuleDP*>(probe)) dp->setResolution(eResolution::res14Bit);
            probe->Difference()->setEnabled(true);
        }
        network.Difference()->Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(500));  // the part turns under the probes
        network.Difference()->Stop();

        std::cout << std::fixed << std::setprecision(4);
        for (int m = 0; m < network.ModuleCount(); ++m) {
            KavroModule* probe = network.GetModule(static_cast<unsigned>(m));
            const ModuleDifference* result = probe->Difference();
            std::cout << probe->ModuleID() << "  min " << result->Min() << "  max " << result->Max() << "  spread "
                      << result->Diff() << " mm  " << eKavroErrors_ToString(result->Error()) << "\n";
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
