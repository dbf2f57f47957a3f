// Finds the networks listed in the controller configuration files and the
// USB interface modules plugged in, connects them, and lists each network
// with the modules its bus holds. The library's diagnostic lines (a
// controller that does not answer, no D2XX library) are routed through the
// application, here to standard output with a prefix.
//
//   example-find_networks
//
// List a controller in ~/.PellaquinMetrology/kavrolibrarysettings.xml:
//   <settings><networks>
//     <network controllertype="ETHIM"><networkname>Bench</networkname><address>127.0.0.1</address></network>
//   </networks></settings>
#include <KavroLibrary.h>

#include <iostream>
#include <string>

using namespace KavroLibrary;

int main() {
    setDiagnosticHandler([](const std::string& line) { std::cout << "library: " << line << "\n"; });
    try {
        KavroServer server;
        KavroNetworks* networks = server.Networks();
        networks->FindNetworks();
        std::cout << networks->Count() << " network(s) found\n";
        networks->ConnectAll();
        for (unsigned i = 0; i < networks->Count(); ++i) {
            KavroNetwork* network = networks->Network(i);
            std::cout << "network " << i << "  " << eNetworkType_ToString(network->NetworkType()) << "  \""
                      << network->NetworkName() << "\"  " << (network->IsConnected() ? "connected" : "not connected")
                      << "\n";
            if (!network->IsConnected()) continue;
            // Every module that takes the next address in turn joins the list.
            const int added = network->Ping();
            for (int m = 0; m < added; ++m) {
                KavroModule* module = network->GetModule(static_cast<unsigned>(m));
                std::cout << "  " << module->Address() << "  " << module->ModuleID() << "  "
                          << eModuleType_ToString(module->ModuleType()) << "\n";
            }
        }
        networks->DisconnectAll();
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
