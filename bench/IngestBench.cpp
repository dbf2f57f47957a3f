// Taking in a dynamic stream: the library against a bare client that reads
// the same stream from the same simulated controller, unthrottled, and
// throws it away, in the same run. Also the library's share of a core at the
// real rate (8 probes at 4 kHz, the controller in a separate kavro-sim), its
// share with no run, memory per stored reading set, and eight networks
// streaming at once.
//
//   kavro-bench-ingest [SETS]            (reading sets per ingest run, 1000000)
//   kavro-bench-ingest --soak MINUTES    (both links at 4 kHz; scripts/soak)
#include <arpa/inet.h>
#include <dlfcn.h>
#include <malloc.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "KavroDynamic.h"
#include "KavroDynamicData.h"
#include "KavroNetworkETHIM.h"
#include "KavroNetworkUSBIM.h"
#include "core/KavroSim.h"
#include "links/DynamicPacket.h"
#include "links/FtdiApi.h"
#include "links/NetworkConfiguration.h"
#include "usb/KavroSimUsb.h"

using namespace KavroLibrary;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kModules = 8;

std::string probeLines(const std::string& prefix) {
    std::string lines;
    for (int i = 0; i < kModules; ++i) {
        lines += "module probe " + prefix + std::to_string(i) + " range=5 signal=sine:2.5,1," + std::to_string(i + 1) +
                 "\n";
    }
    return lines;
}

std::string identity(const std::string& prefix, int i) { return prefix + std::to_string(i); }

// Puts the eight probes on a controller made in this process.
void addProbes(kavrosim::SimController& controller, const std::string& prefix) {
    std::istringstream text("controller ethernet auto\n" + probeLines(prefix));
    const kavrosim::SimScenario scenario = kavrosim::parseScenario(text, "bench");
    for (const kavrosim::SimModule& module : scenario.controllers[0].modules) controller.addModule(module);
}

// Adds the eight probes, goes to High and prepares a run of `sets` sets.
void prepare(KavroNetwork& network, const std::string& prefix, int sets) {
    if (network.ModuleCount() == 0) {
        for (int i = 0; i < kModules; ++i) network.AddModule(identity(prefix, i), "");
        network.setNetSpeed(eNetSpeed::High);
    }
    KavroDynamic& dynamic = *network.Dynamic();
    dynamic.setNumberOfModules(kModules);
    dynamic.setDynamicRate(eDynamicRate::Rate4K);
    dynamic.setCollectionSize(sets);
    dynamic.setEnabled(true);
    dynamic.Prepare();
}

std::mutex runLock;
std::condition_variable runEnded;
bool runComplete = false;
void onRunComplete(int) {
    {
        std::lock_guard<std::mutex> guard(runLock);
        runComplete = true;
    }
    runEnded.notify_all();
}

// Reading sets a second the library takes in, start to complete.
double libraryRate(KavroNetwork& network, const std::string& prefix, int sets) {
    prepare(network, prefix, sets);
    KavroDynamic& dynamic = *network.Dynamic();
    runComplete = false;
    const auto start = Clock::now();
    dynamic.StartDynamic(&onRunComplete);
    {
        std::unique_lock<std::mutex> guard(runLock);
        runEnded.wait(guard, [] { return runComplete; });
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    dynamic.StopDynamic();
    if (dynamic.DynamicData()->ReadingCount() != sets || dynamic.Health().DataLost) {
        throw std::runtime_error("the library's run lost readings");
    }
    return sets / seconds;
}

sDynamicMode benchMode(int sets) {
    sDynamicMode mode;
    mode.Collection = sets;
    mode.Modules = kModules;
    return mode;
}

// The bare client's loop over any transfer: numbered requests, whole packets,
// only the set count and the end status looked at.
template <typename Exchange>
double bareLoop(Exchange exchange, int sets) {
    std::vector<std::uint8_t> packet(kDynamicPacketSize);
    std::uint8_t counter = 0;
    long long received = 0;
    const auto start = Clock::now();
    for (;;) {
        counter = static_cast<std::uint8_t>((counter + 1) & 7);
        if (!exchange(dynamicReadBlock(kDynamicChecking, static_cast<std::uint8_t>(counter * 8)), packet.data())) {
            throw std::runtime_error("the bare client lost its link");
        }
        received += packet[12] | (packet[13] << 8);
        if (packet[2] != 0) break;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (received != sets) throw std::runtime_error("the bare client lost readings");
    return sets / seconds;
}

bool gather(int fd, std::uint8_t* into, std::size_t count) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t n = recv(fd, into + done, count - done, 0);
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

double bareEthernetRate(const std::string& address, int sets) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(10001);
    inet_pton(AF_INET, address.c_str(), &peer.sin_addr);
    if (connect(fd, reinterpret_cast<sockaddr*>(&peer), sizeof peer) != 0) throw std::runtime_error("no controller");
    auto request = [fd](const DynamicBlock& block, std::uint8_t* answer, std::size_t count) {
        std::uint8_t out[21] = {0x30};
        std::copy(block.begin(), block.end(), out + 1);
        return send(fd, out, sizeof out, MSG_NOSIGNAL) == static_cast<ssize_t>(sizeof out) && gather(fd, answer, count);
    };
    std::uint8_t status[4];
    if (!request(dynamicStartBlock(benchMode(sets)), status, sizeof status)) throw std::runtime_error("no start");
    const double rate =
        bareLoop([&](const DynamicBlock& block, std::uint8_t* packet) { return request(block, packet, kDynamicPacketSize); },
                 sets);
    request(dynamicStopBlock(), status, sizeof status);
    close(fd);
    return rate;
}

// The bare USB client uses the handle the library opened and set up.
double bareUsbRate(NetworkConfiguration* config, int sets) {
    FtdiApi& api = ftdiTable();
    auto transfer = [&](const DynamicBlock& block, const std::vector<std::uint8_t>& reads, std::uint8_t* answer,
                        DWORD count) {
        std::vector<std::uint8_t> out{0x88, 0x10, 0x13, 0x00};
        out.insert(out.end(), block.begin(), block.end());
        out.insert(out.end(), reads.begin(), reads.end());
        DWORD done = 0;
        api.Write(config->FtdiHandle, out.data(), static_cast<DWORD>(out.size()), &done);
        api.Read(config->FtdiHandle, answer, count, &done);
        return done == count;
    };
    std::uint8_t block[20];
    transfer(dynamicStartBlock(benchMode(sets)), {0x88, 0x24, 0x13, 0x00, 0x87}, block, 20);
    const std::vector<std::uint8_t> packetReads{0x87, 0x88, 0x24, 0x13, 0x00, 0x88, 0x24, 0xEB, 0x0F, 0x87};
    const double rate = bareLoop(
        [&](const DynamicBlock& request, std::uint8_t* packet) {
            return transfer(request, packetReads, packet, kDynamicPacketSize);
        },
        sets);
    transfer(dynamicStopBlock(), {0x88, 0x24, 0x13, 0x00}, block, 20);
    return rate;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void ingestEthernet(int sets) {
    kavrosim::SimControllerConfig config = kavrosim::SimControllerConfig::ethernet("ETHBENCH01");
    config.typeCode = "ETH2";
    config.unthrottled = true;
    // Two controllers alike: a controller serves one connection at a time.
    kavrosim::SimController controller(config), bareController(config);
    addProbes(controller, "GPETHB000");
    addProbes(bareController, "GPETHB000");
    // The bare client's modules stream readings too, as if it had set them up.
    for (int i = 0; i < kModules; ++i) {
        bareController.updateModule(identity("GPETHB000", i), [i](kavrosim::SimModule& module) {
            module.setAddress(i + 1);
            module.setDynamicMode(true);
        });
    }
    kavrosim::SimEthernetFace face(controller), bareFace(bareController);
    face.start();
    bareFace.start();
    KavroNetworkETHIM network(0, "bench", face.location());
    network.Connect();
    std::vector<double> library, bare;
    for (int round = 0; round < 5; ++round) {
        library.push_back(libraryRate(network, "GPETHB000", sets));
        bare.push_back(bareEthernetRate(bareFace.location(), sets));
    }
    std::printf("Ethernet  %12.0f  %12.0f  %6.2f\n", median(library), median(bare), median(library) / median(bare));
    network.Disconnect();
    face.stop();
    bareFace.stop();
}

void ingestUsb(int sets) {
    void* standIn = dlopen(KAVRO_SIM_USB_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
    if (standIn == nullptr) throw std::runtime_error("cannot load the stand-in D2XX library");
    auto load = reinterpret_cast<KavroSimUsbLoadText>(dlsym(standIn, "kavro_sim_usb_load_text"));
    const std::string scenario = "controller usb identity=USBBENCH01 firmware=150 stream=unthrottled\n" + probeLines("GPUSBB000");
    if (load(scenario.c_str()) < 1) {
        auto error = reinterpret_cast<KavroSimUsbError>(dlsym(standIn, "kavro_sim_usb_error"));
        throw std::runtime_error(std::string("the stand-in did not take the scenario: ") + error());
    }
    KavroNetworkUSBIM network(0, 0);
    network.Connect();
    if (!network.IsConnected()) throw std::runtime_error("the USB network did not connect");
    std::vector<double> library, bare;
    auto controllerOf = reinterpret_cast<KavroSimUsbController>(dlsym(standIn, "kavro_sim_usb_controller"));
    auto& controller = *static_cast<kavrosim::SimController*>(controllerOf(0));
    for (int round = 0; round < 5; ++round) {
        library.push_back(libraryRate(network, "GPUSBB000", sets));
        // The library's run took the modules out of dynamic mode; the bare
        // client's stream must carry readings too.
        for (int i = 0; i < kModules; ++i) {
            controller.updateModule(identity("GPUSBB000", i), [](kavrosim::SimModule& module) { module.setDynamicMode(true); });
        }
        bare.push_back(bareUsbRate(network.Configuration(), sets));
    }
    std::printf("USB       %12.0f  %12.0f  %6.2f\n", median(library), median(bare), median(library) / median(bare));
    network.Disconnect();
}

double processCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// kavro-sim in a child process, so that this process holds only the library.
struct SimProcess {
    explicit SimProcess(const std::string& scenarioText) {
        char path[] = "/tmp/kavro-bench-XXXXXX";
        const int fd = mkstemp(path);
        file = path;
        const ssize_t written = write(fd, scenarioText.data(), scenarioText.size());
        close(fd);
        if (written != static_cast<ssize_t>(scenarioText.size())) throw std::runtime_error("cannot write the scenario");
        pid = fork();
        if (pid == 0) {
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, 1);
            execl(KAVRO_SIM_PROGRAM, KAVRO_SIM_PROGRAM, "--scenario", file.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ~SimProcess() {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        unlink(file.c_str());
    }
    std::string file;
    pid_t pid = -1;
};

std::unique_ptr<KavroNetworkETHIM> connectWhenUp(const std::string& address) {
    for (int attempt = 0; attempt < 50; ++attempt) {
        auto network = std::make_unique<KavroNetworkETHIM>(0, "bench", address);
        network->Connect();
        if (network->IsConnected()) return network;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));  // kavro-sim is starting
    }
    throw std::runtime_error("kavro-sim did not come up at " + address);
}

void realRateCpu() {
    const std::string address = "127.0.0.77";
    SimProcess sim("controller ethernet " + address + " identity=ETHCPU0001 type=ETH2\n" + probeLines("GPCPUB000"));
    auto network = connectWhenUp(address);
    prepare(*network, "GPCPUB000", 0);
    // Idle: connected, nothing running.
    double cpu = processCpuSeconds();
    auto start = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(3));
    double idle = (processCpuSeconds() - cpu) / std::chrono::duration<double>(Clock::now() - start).count();
    // Streaming at 4 kHz.
    network->Dynamic()->StartDynamic();
    std::this_thread::sleep_for(std::chrono::seconds(1));  // past the start
    cpu = processCpuSeconds();
    start = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(10));
    const double streaming = (processCpuSeconds() - cpu) / std::chrono::duration<double>(Clock::now() - start).count();
    network->Dynamic()->StopDynamic();
    const sDynamicHealth health = network->Dynamic()->Health();
    std::printf("8 probes at 4 kHz over Ethernet: %.2f %% of a core streaming, %.3f %% idle; %llu sets, %s\n",
                streaming * 100, idle * 100, static_cast<unsigned long long>(health.ReadingSets),
                health.DataLost ? "readings lost" : "nothing lost");
}

void memoryPerSet(int sets) {
    kavrosim::SimControllerConfig config = kavrosim::SimControllerConfig::ethernet("ETHMEMB001");
    config.typeCode = "ETH2";
    config.unthrottled = true;
    kavrosim::SimController controller(config);
    addProbes(controller, "GPMEMB000");
    kavrosim::SimEthernetFace face(controller);
    face.start();
    KavroNetworkETHIM network(0, "bench", face.location());
    network.Connect();
    libraryRate(network, "GPMEMB000", 1000);  // the first run's one-off allocations
    const std::size_t before = mallinfo2().uordblks;
    libraryRate(network, "GPMEMB000", sets);
    const std::size_t after = mallinfo2().uordblks;
    std::printf("memory per stored set of %d modules over %d sets: %.1f bytes (bound %d)\n", kModules, sets,
                static_cast<double>(after - before) / sets, 8 * kModules + 40);
    network.Disconnect();
    face.stop();
}

void eightNetworks() {
    std::string scenario;
    for (int n = 0; n < 8; ++n) {
        scenario += "controller ethernet 127.0.0." + std::to_string(80 + n) + " identity=ETHMANY00" + std::to_string(n) + " type=ETH2\n" +
                    probeLines("GPMANY" + std::to_string(n) + "00");
    }
    SimProcess sim(scenario);
    std::vector<std::unique_ptr<KavroNetworkETHIM>> networks;
    for (int n = 0; n < 8; ++n) {
        networks.push_back(connectWhenUp("127.0.0." + std::to_string(80 + n)));
        prepare(*networks.back(), "GPMANY" + std::to_string(n) + "00", 4000 * 10);
    }
    for (auto& network : networks) network->Dynamic()->StartDynamic();
    int complete = 0;
    unsigned long long lost = 0, sets = 0, again = 0;
    for (auto& network : networks) {
        while (network->Dynamic()->DynamicState() != eDynamicState::Complete) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        network->Dynamic()->StopDynamic();
        const sDynamicHealth health = network->Dynamic()->Health();
        complete += network->Dynamic()->DynamicData()->CollectionStatus() == 0 && !health.DataLost ? 1 : 0;
        lost += health.ReadingSetsLost;
        sets += health.ReadingSets;
        again += health.PacketsAskedAgain;
    }
    std::printf("8 networks of 8 probes at 4 kHz for 10 s at once: %d of 8 complete, %llu sets, %llu lost, %llu asked again\n",
                complete, sets, lost, again);
}

}  // namespace

long residentKiB() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// Both links at the real rate for `minutes`: packets lost and memory beyond
// the stored readings, printed every 30 s.
int soak(double minutes) {
    const std::string address = "127.0.0.78";
    SimProcess sim("controller ethernet " + address + " identity=ETHSOAK001 type=ETH2\n" + probeLines("GPSOAKE00"));
    void* standIn = dlopen(KAVRO_SIM_USB_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
    if (standIn == nullptr) throw std::runtime_error("cannot load the stand-in D2XX library");
    auto load = reinterpret_cast<KavroSimUsbLoadText>(dlsym(standIn, "kavro_sim_usb_load_text"));
    const std::string scenario = "controller usb identity=USBSOAK001 firmware=150\n" + probeLines("GPSOAKU00");
    if (load(scenario.c_str()) < 1) throw std::runtime_error("the stand-in did not take the scenario");
    auto ethernet = connectWhenUp(address);
    KavroNetworkUSBIM usb(1, 0);
    usb.Connect();
    if (!usb.IsConnected()) throw std::runtime_error("the USB network did not connect");
    prepare(*ethernet, "GPSOAKE00", 0);
    prepare(usb, "GPSOAKU00", 0);
    KavroNetwork* networks[] = {ethernet.get(), &usb};
    const long baseKiB = residentKiB();
    for (KavroNetwork* network : networks) network->Dynamic()->StartDynamic();
    const auto start = Clock::now();
    const auto end = start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(minutes * 60));
    bool lost = false;
    std::printf("minutes  link      reading sets  lost  asked again  memory beyond the readings (KiB)\n");
    while (Clock::now() < end) {
        std::this_thread::sleep_until(std::min(end, Clock::now() + std::chrono::seconds(30)));
        const double elapsed = std::chrono::duration<double>(Clock::now() - start).count() / 60;
        long stored = 0;
        for (KavroNetwork* network : networks) stored += network->Dynamic()->Health().ReadingSets * 8 * kModules / 1024;
        for (KavroNetwork* network : networks) {
            const sDynamicHealth health = network->Dynamic()->Health();
            lost = lost || health.DataLost;
            std::printf("%7.1f  %-8s  %12llu  %4llu  %11llu  %ld\n", elapsed, network == &usb ? "USB" : "Ethernet",
                        static_cast<unsigned long long>(health.ReadingSets),
                        static_cast<unsigned long long>(health.ReadingSetsLost),
                        static_cast<unsigned long long>(health.PacketsAskedAgain), residentKiB() - baseKiB - stored);
        }
        std::fflush(stdout);
    }
    for (KavroNetwork* network : networks) network->Dynamic()->StopDynamic();
    std::printf("%s\n", lost ? "READINGS LOST" : "nothing lost");
    return lost ? 1 : 0;
}

int main(int argc, char** argv) {
    if (argc > 2 && std::string(argv[1]) == "--soak") {
        try {
            return soak(std::atof(argv[2]));
        } catch (const std::exception& error) {
            std::fprintf(stderr, "kavro-bench-ingest: %s\n", error.what());
            return 1;
        }
    }
    const int sets = argc > 1 && argv[1][0] != '-' ? std::atoi(argv[1]) : 1000000;
    try {
        std::printf("Ingest, %d probes, %d reading sets a run, median of 5 (reading sets a second)\n", kModules, sets);
        std::printf("link          library   bare client   ratio\n");
        ingestEthernet(sets);
        ingestUsb(sets);
        memoryPerSet(sets);
        realRateCpu();
        eightNetworks();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kavro-bench-ingest: %s\n", error.what());
        return 1;
    }
    return 0;
}
