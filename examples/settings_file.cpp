// Settings files: a network's name, bus speed and modules with their
// settings saved to one XML file, and set up again from it on a fresh
// network object. Uses two probes of kavro-sim's default scenario.
//
//   example-settings_file FILE [controller address]      (default 127.0.0.1)
#include <KavroLibrary.h>

#include <iostream>
#include <string>

using namespace KavroLibrary;

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: example-settings_file FILE [controller address]\n";
        return 2;
    }
    const std::string file = argv[1];
    const std::string address = argc > 2 ? argv[2] : "127.0.0.1";
    try {
        {
            KavroNetworkETHIM network(0, "Bench", address);
            network.Connect();
            if (!network.IsConnected()) {
                std::cerr << "No controller answers at " << address
                          << ": start kavro-sim first (build/sim/kavro-sim).\n";
                return 1;
            }
            network.AddModule("GP02000001", "Bore top");
            network.AddModule("GP05000002", "Bore bottom");
            dynamic_cast<KavroModuleDP&>(*network.GetModule(1)).setAveraging(eAveraging::average4);
            network.Save(file);
            std::cout << "saved " << network.ModuleCount() << " modules to " << file << "\n";
        }
        // Another day, another program: the same bench from the file.
        KavroNetworkETHIM network(0, "", address);
        network.Connect();
        network.Load(file);
        for (int m = 0; m < network.ModuleCount(); ++m) {
            KavroModule* module = network.GetModule(static_cast<unsigned>(m));
            std::cout << module->Address() << "  " << module->ModuleID() << "  \"" << module->ModuleName() << "\"";
            if (auto* probe = dynamic_cast<KavroModuleDP*>(module)) {
                std::cout << "  averaging " << eAveraging_ToString(probe->Averaging());
            }
            std::cout << "\n";
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
