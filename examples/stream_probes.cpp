// Streams four probes at 4 kHz for one second in dynamic mode and prints how
// many reading sets arrived and the first few in millimetres: over Ethernet
// from kavro-sim's default scenario, and over USB when a USB interface
// module (or the simulator's stand-in D2XX library) is there.
//
//   example-stream_probes [controller address]      (default 127.0.0.1)
//   LD_LIBRARY_PATH=build/sim/usb KAVRO_SIM_USB_SCENARIO=sim/scenarios/default.scn example-stream_probes
#include <KavroLibrary.h>

#include <chrono>
#include <condition_variable>
#include <iomanip>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using namespace KavroLibrary;

namespace {

constexpr int kRateHz = 4000;
constexpr int kProbes = 4;
// The probes of kavro-sim's default scenario (sim/scenarios/default.scn).
const std::vector<std::string> kEthernetProbes = {"GP02000001", "GP05000002", "GP10000003", "GP01000004"};
const std::vector<std::string> kUsbProbes = {"GP02000021", "GP05000022", "GP10000023", "GP01000024"};

// The library calls back from its own thread when a run is complete.
std::mutex runLock;
std::condition_variable runEnded;
std::vector<int> endedNetworks;

void runComplete(int networkNumber) {
    {
        std::lock_guard<std::mutex> guard(runLock);
        endedNetworks.push_back(networkNumber);
    }
    runEnded.notify_all();
}

// One second of readings from the four probes; false when the network could
// not stream them.
bool stream(KavroNetwork& network, const std::string& name, const std::vector<std::string>& probes) {
    for (const std::string& identity : probes) network.AddModule(identity, "");
    network.setNetSpeed(eNetSpeed::High);  // 1, 2 and 4 kHz need the High bus speed
    KavroDynamic* dynamic = network.Dynamic();
    dynamic->setNumberOfModules(kProbes);
    dynamic->setDynamicRate(eDynamicRate::Rate4K);
    dynamic->setCollectionSize(kRateHz);  // one second's worth per probe
    dynamic->setEnabled(true);
    dynamic->Prepare();
    dynamic->StartDynamic(&runComplete);
    {
        std::unique_lock<std::mutex> guard(runLock);
        runEnded.wait_for(guard, std::chrono::seconds(10), [] { return !endedNetworks.empty(); });
        endedNetworks.clear();
    }
    dynamic->StopDynamic();

    KavroDynamicData* data = dynamic->DynamicData();
    const sDynamicHealth health = dynamic->Health();
    std::cout << name << ": " << data->ReadingCount() << " reading sets, status " << data->CollectionStatus()
              << ", " << health.Packets << " packets, " << health.PacketsAskedAgain << " asked again"
              << (health.DataLost ? ", READINGS LOST" : ", nothing lost") << "\n";
    for (int set = 0; set < 3 && set < data->ReadingCount(); ++set) {
        std::cout << "  set " << set << ":";
        for (int module = 0; module < data->ModuleCount(); ++module) {
            std::cout << "  " << std::fixed << std::setprecision(4) << data->GetItem(module, set).value << " mm";
        }
        std::cout << "\n";
    }
    return data->ReadingCount() > 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string address = argc > 1 ? argv[1] : "127.0.0.1";
    int streamed = 0;
    try {
        KavroNetworkETHIM ethernet(0, "Ethernet", address);
        ethernet.Connect();
        if (ethernet.IsConnected()) {
            streamed += stream(ethernet, "Ethernet " + address, kEthernetProbes) ? 1 : 0;
        } else {
            std::cerr << "No controller answers at " << address << ": start kavro-sim first (build/sim/kavro-sim).\n";
        }

        KavroNetworkUSBIM usb(1, 0);  // the first USB interface module
        usb.Connect();
        if (usb.IsConnected()) {
            streamed += stream(usb, "USB", kUsbProbes) ? 1 : 0;
        } else {
            std::cout << "No USB interface module (see the comment at the top for the simulated one).\n";
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return streamed > 0 ? 0 : 1;
}
