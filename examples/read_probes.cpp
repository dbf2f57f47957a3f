// Reads the four probes of kavro-sim's default scenario over Ethernet and
// prints each reading in millimetres.
//
//   example-read_probes [controller address]      (default 127.0.0.1)
#include <KavroLibrary.h>

#include <iomanip>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    const std::string address = argc > 1 ? argv[1] : "127.0.0.1";
    KavroLibrary::KavroNetworkETHIM network(0, "Bench", address);
    network.Connect();
    if (!network.IsConnected()) {
        std::cerr << "No controller answers at " << address << ": start kavro-sim first (build/sim/kavro-sim).\n";
        return 1;
    }
    try {
        for (const char* identity : {"GP02000001", "GP05000002", "GP10000003", "GP01000004"}) {
            network.AddModule(identity, "");
            const double millimetres = network.GetModuleByID(identity)->ReadingInUnits();
            std::cout << identity << "  " << std::fixed << std::setprecision(4) << millimetres << " mm\n";
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
