// kavro-demo: the library's main job on the built-in simulated bus, with no
// hardware and nothing to set up. It starts simulated controllers in this
// process (an Ethernet one on a free loopback address, a serial one on a
// pseudo-terminal, a USB one behind the stand-in libftd2xx.so), lists the
// first two in a controller configuration file under a private HOME, and then
// does what an application does: find the networks, connect them, add the
// modules of each bus by identity and read them.
#include <dlfcn.h>
#include <stdlib.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <KavroLibrary.h>

#include "TextTable.h"
#include "core/KavroSim.h"
#include "usb/KavroSimUsb.h"

namespace {

using namespace KavroLibrary;
using Clock = std::chrono::steady_clock;

// The simulated bus. The Ethernet and serial controllers run here on their
// own threads; the stand-in D2XX library takes the usb one.
const char* const kScenario = R"(
controller ethernet auto identity=ETHSIM0001 type=ETH2 description="Bench ETHIM"
module probe   GP02000001 range=2  signal=sine:1,0.6,4
module probe   GP05000002 range=5  resolution=16 signal=constant:2.5
module probe   GP10000003 range=10 signal=ramp:0,10,20
module encoder LE00000004 cpu=1000 signal=ramp:0,50,30
module dio2    DO00000005 signal=constant:5
module wcm     WC00000007 scan=2
tool 1 WHT_M name="Bore gauge" identity=WHTM000001 battery=87 enter=0.1 ch1=sine:12.002,0.003,5 text1="Bore A" ch2=sine:11.998,0.002,7 text2="Bore B" ch3=constant:12 text3="Bore C"
tool 2 WHT   name="Calliper" identity=WHT0000002 battery=64 ch1=ramp:0,150,30 text1="Length"
tool 3 WMM_A name="Micrometer" identity=WMMA000003 battery=12 connection=notconnected ch1=constant:25.4

controller serial identity=SERSIM0001 description="Bench RS232"
module probe   GP02000011 range=2 generation=2 signal=constant:1.25
module probe   GP05000012 range=5 generation=1 format=old signal=sine:2.5,1,10

controller usb identity=USBSIM0001 description="Bench USBIM"
module probe   GP01000021 range=1 signal=noise:0.5,0.002,42
module probe   GP02000022 range=2 resolution=18 signal=sine:1,0.25,6
module encoder-input DE00000023 signal=ramp:0,360,12
)";

constexpr int kReadingRounds = 3;
constexpr auto kBetweenRounds = std::chrono::milliseconds(250);

// HOME pointed at a private temporary folder, removed with everything in it.
class PrivateHome {
public:
    PrivateHome() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kavro-demo-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
        path_ = pattern;
        if (const char* home = std::getenv("HOME")) saved_ = home;
        setenv("HOME", path_.c_str(), 1);
    }
    ~PrivateHome() {
        if (saved_) {
            setenv("HOME", saved_->c_str(), 1);
        } else {
            unsetenv("HOME");
        }
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    PrivateHome(const PrivateHome&) = delete;
    PrivateHome& operator=(const PrivateHome&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // The per-user controller configuration file.
    void writeConfiguration(const std::string& contents) const {
        const auto file = path_ / ".PellaquinMetrology" / "kavrolibrarysettings.xml";
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << contents;
    }

private:
    std::filesystem::path path_;
    std::optional<std::string> saved_;
};

// The stand-in D2XX library, loaded before the library's first USB use so
// that its own dlopen("libftd2xx.so") finds it; its devices are dropped on
// the way out.
class UsbStandIn {
public:
    explicit UsbStandIn(const char* scenario) {
        library_ = dlopen(KAVRO_SIM_USB_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
        if (library_ == nullptr) throw std::runtime_error(std::string("cannot load the stand-in: ") + dlerror());
        auto load = reinterpret_cast<KavroSimUsbLoadText>(dlsym(library_, "kavro_sim_usb_load_text"));
        clear_ = reinterpret_cast<KavroSimUsbClear>(dlsym(library_, "kavro_sim_usb_clear"));
        if (load == nullptr || clear_ == nullptr || load(scenario) < 1) {
            throw std::runtime_error("the stand-in libftd2xx.so did not take the usb controller");
        }
    }
    ~UsbStandIn() { clear_(); }
    UsbStandIn(const UsbStandIn&) = delete;
    UsbStandIn& operator=(const UsbStandIn&) = delete;

private:
    void* library_ = nullptr;
    KavroSimUsbClear clear_ = nullptr;
};

std::string configurationFile(const std::string& ethernetAddress, const std::string& serialLine) {
    return "<?xml version=\"1.0\"?>\n"
           "<settings>\n"
           "  <networks>\n"
           "    <network controllertype=\"ETHIM\">\n"
           "      <networkname>Bench Ethernet</networkname>\n"
           "      <address>" +
           ethernetAddress +
           "</address>\n"
           "    </network>\n"
           "    <network controllertype=\"RS232IM\">\n"
           "      <networkname>Bench RS232</networkname>\n"
           "      <comport>" +
           serialLine +
           "</comport>\n"
           "      <baud>115200</baud>\n"
           "    </network>\n"
           "  </networks>\n"
           "</settings>\n";
}

std::string seconds(Clock::duration elapsed) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(elapsed).count());
    return text;
}

// As many decimals as the module resolves: one count in units.
std::string formatReading(KavroModule& module) {
    try {
        const double value = module.ReadingInUnits();
        const double countsPerUnit = module.CPUOM();
        int decimals = countsPerUnit > 1 ? static_cast<int>(std::ceil(std::log10(countsPerUnit))) : 0;
        decimals = std::max(0, std::min(decimals, 6));
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        return text;
    } catch (const KavroException& error) {
        return "(" + error.Message + ")";
    } catch (const std::exception& error) {
        return std::string("(") + error.what() + ")";
    }
}

std::string describeNetwork(unsigned index, KavroNetwork& network) {
    const std::string name = network.NetworkName().empty() ? "(found on USB)" : network.NetworkName();
    std::string line = "Network " + std::to_string(index) + ": " + name + "  --  " + network.Description();
    if (!network.IsConnected()) return line + ", not connected\n";
    return line + ", up to " + std::to_string(network.MaximumAllowableNumberOfModules()) + " modules, bus speed " +
           eNetSpeed_ToString(network.NetSpeed()) + "\n";
}

// The other ways a network learns its modules: a module announcing itself
// to the notification, one plugged in that addressed itself, then a
// read-burst of them all and the network saved to a settings file and loaded
// back.
void showModuleLearning(unsigned index, KavroNetwork& network, kavrosim::SimController& controller,
                        const std::filesystem::path& folder) {
    using kavrosim::SimModule;
    using kavrosim::SimSignal;
    std::cout << "\nNetwork " << index << " learns modules the other ways\n";

    SimModule pressed = SimModule::digitalProbe("GP05000006", 5.0);
    pressed.setSignal(SimSignal::constant(-1.0));  // below its range
    pressed.setAnnouncing(true);                   // its button is pressed
    controller.addModule(pressed);
    network.BeginNotifying();
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (network.Notifying() && Clock::now() < deadline) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    network.CancelNotifying();
    std::cout << "  Notification: " << pressed.identity() << " announced itself; the network has "
              << network.ModuleCount() << " modules\n";

    controller.hotPlug(SimModule::linearEncoder("LE00000007"));
    const unsigned asked = network.FindHotswapped();
    std::cout << "  Hot-swap search (" << asked << " identify commands): the network has " << network.ModuleCount()
              << " modules\n";

    int count = 0;
    network.Readburst(count);
    std::cout << "  Read-burst of " << count << " modules\n";
    TextTable burst({{"Addr", TextTable::Align::Right}, {"Identity"}, {"Units"}, {"Reading", TextTable::Align::Right}});
    for (int m = 0; m < count; ++m) {
        KavroModule& module = *network.GetModule(static_cast<unsigned>(m));
        const int error = module.LastReadburst_Error();
        std::string reading;
        try {
            char text[64];
            std::snprintf(text, sizeof text, "%.4f", module.LastReadburst_InUnitsOfMeasure());
            reading = text;
            if (error != 0) reading = "(" + KavroServer().GetErrorDescription(error) + ")";
        } catch (const std::exception& failure) {
            reading = std::string("(") + failure.what() + ")";
        }
        burst.addRow({std::to_string(module.Address()), module.ModuleID(),
                      module.UnitsOfMeasure().empty() ? "-" : module.UnitsOfMeasure(), reading});
    }
    std::cout << burst.render("    ");

    const std::string file = (folder / "bench-ethernet.xml").string();
    network.Save(file);
    network.Load(file);
    std::cout << "  Saved to a settings file and loaded back: " << network.ModuleCount() << " modules\n";
}

// Difference and buffered acquisition on the leading probes of a network.
void showAcquisition(unsigned index, KavroNetwork& network) {
    std::vector<KavroModule*> probes;
    for (int m = 0; m < network.ModuleCount() && probes.size() < 3; ++m) {
        KavroModule* module = network.GetModule(static_cast<unsigned>(m));
        if (module->ModuleType() == eModuleType::DP && module->DifferenceModeCapable()) probes.push_back(module);
    }
    if (probes.empty()) return;
    std::cout << "\nNetwork " << index << " acquires on its own\n";

    // Difference and buffered modes run at 14 bit.
    for (KavroModule* probe : probes) {
        if (auto* dp = dynamic_cast<KavroModuleDP*>(probe)) dp->setResolution(eResolution::res14Bit);
        probe->Difference()->setEnabled(true);
    }
    network.Difference()->Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(400));  // the probes track while the host waits
    network.Difference()->Stop();
    std::cout << "  Difference mode over 400 ms: smallest, largest and spread of each probe\n";
    TextTable spread({{"Addr", TextTable::Align::Right},
                      {"Identity"},
                      {"Min", TextTable::Align::Right},
                      {"Max", TextTable::Align::Right},
                      {"Difference", TextTable::Align::Right},
                      {"Status"}});
    for (KavroModule* probe : probes) {
        const ModuleDifference& d = *probe->Difference();
        char min[32], max[32], diff[32];
        std::snprintf(min, sizeof min, "%.4f", d.Min());
        std::snprintf(max, sizeof max, "%.4f", d.Max());
        std::snprintf(diff, sizeof diff, "%.4f", d.Diff());
        const std::string status = d.Error() == eKavroErrors::NoError ? "ok" : eKavroErrors_ToString(d.Error());
        spread.addRow({std::to_string(probe->Address()), probe->ModuleID(), min, max, diff, status});
        probe->Difference()->setEnabled(false);
    }
    std::cout << spread.render("    ");

    for (KavroModule* probe : probes) {
        probe->Buffered()->setMode(eBufferedMode::Sync);
        probe->Buffered()->setReadingInterval(50000);  // one reading every 50 ms, in timing units
        probe->Buffered()->setEnabled(true);
    }
    network.Buffered()->Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the probes fill their buffers
    network.Buffered()->Stop();
    std::cout << "  Buffered mode, one reading every " << probes.front()->Buffered()->ReadingInterval()
              << " us for 300 ms, emptied after the stop\n";
    TextTable held({{"Addr", TextTable::Align::Right},
                    {"Identity"},
                    {"Readings", TextTable::Align::Right},
                    {"First readings (mm)"}});
    for (KavroModule* probe : probes) {
        const ModuleBuffered& b = *probe->Buffered();
        std::string first;
        for (int i = 0; i < b.BufferedDataLength() && i < 4; ++i) {
            char text[32];
            std::snprintf(text, sizeof text, "%s%.4f", i == 0 ? "" : "  ", b.GetBufferedItem(i).value);
            first += text;
        }
        held.addRow(
            {std::to_string(probe->Address()), probe->ModuleID(), std::to_string(b.BufferedDataLength()), first});
        probe->Buffered()->setEnabled(false);
    }
    std::cout << held.render("    ");
}

// A dynamic run: the controller samples the leading probes itself at 4 kHz
// and streams them; half a second's worth, then what arrived.
void showStreaming(unsigned index, KavroNetwork& network) {
    int probes = 0;
    while (probes < network.ModuleCount() && probes < 8) {
        KavroModule* module = network.GetModule(static_cast<unsigned>(probes));
        if (module->ModuleType() != eModuleType::DP || !module->DynamicCapable()) break;
        ++probes;
    }
    if (probes == 0 || !network.DynamicCapable() || !network.SpeedAvailable(eNetSpeed::High)) return;
    const eNetSpeed before = network.NetSpeed();
    network.setNetSpeed(eNetSpeed::High);  // 1, 2 and 4 kHz run at the High bus speed
    KavroDynamic& dynamic = *network.Dynamic();
    dynamic.setNumberOfModules(probes);
    dynamic.setDynamicRate(eDynamicRate::Rate4K);
    dynamic.setCollectionSize(2000);
    dynamic.setEnabled(true);
    dynamic.Prepare();
    const auto start = std::chrono::steady_clock::now();
    dynamic.StartDynamic();
    while (dynamic.DynamicState() != eDynamicState::Complete &&
           std::chrono::steady_clock::now() - start < std::chrono::seconds(10)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // the library's threads do the work
    }
    dynamic.StopDynamic();
    const KavroDynamicData& data = *dynamic.DynamicData();
    const sDynamicHealth health = dynamic.Health();
    std::cout << "\nNetwork " << index << " streams " << probes << " probes at 4 kHz (dynamic mode)\n"
              << "  " << data.ReadingCount() << " reading sets in "
              << std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count()
              << " ms, " << health.Packets << " packets, " << health.PacketsAskedAgain << " asked again, "
              << (health.DataLost ? "readings lost" : "nothing lost") << "\n";
    TextTable sets({{"Set", TextTable::Align::Right}, {"Readings (mm)"}});
    for (int set = 0; set < data.ReadingCount() && set < 4; ++set) {
        std::string values;
        for (int module = 0; module < data.ModuleCount(); ++module) {
            char text[32];
            std::snprintf(text, sizeof text, "%s%.4f", module == 0 ? "" : "  ", data.GetItem(module, set).value);
            values += text;
        }
        sets.addRow({std::to_string(set), values});
    }
    std::cout << sets.render("    ");
    dynamic.setEnabled(false);
    network.setNetSpeed(before);
}

// A wireless concentrator's hand tools: its slots, the channels of its first
// multi-channel tool read together, and one of that tool's settings changed.
void showWireless(KavroNetwork& network) {
    KavroModuleWCM* wcm = nullptr;
    for (int m = 0; m < network.ModuleCount() && wcm == nullptr; ++m)
        wcm = dynamic_cast<KavroModuleWCM*>(network.GetModule(static_cast<unsigned>(m)));
    if (wcm == nullptr) return;
    std::cout << "\n  Wireless concentrator " << wcm->ModuleID() << " (scan " << wcm->ScanDuration() << " s)\n";
    TextTable slots({{"Slot", TextTable::Align::Right},
                     {"Type"},
                     {"Identity"},
                     {"Name"},
                     {"Link"},
                     {"Battery", TextTable::Align::Right},
                     {"Channels", TextTable::Align::Right}});
    WCM_Device* multi = nullptr;
    for (int i = 0; i < wcm->Devices()->DeviceCount(); ++i) {
        WCM_Device* device = wcm->Devices()->GetDevice(i);
        if (device->DeviceType() == eWCM_DeviceType::None) continue;
        const eWCM_DeviceStatus link = device->ConnectionStatus();
        if (multi == nullptr && device->DeviceType() == eWCM_DeviceType::WHT_M && link == eWCM_DeviceStatus::Connected)
            multi = device;
        slots.addRow({std::to_string(i + 1), eWCM_DeviceType_ToString(device->DeviceType()), device->KavroIdentity(),
                      device->DeviceName(), eWCM_DeviceStatus_ToString(link), std::to_string(device->BatteryStatus()),
                      std::to_string(device->NumChannels())});
    }
    std::cout << slots.render("    ");
    if (multi == nullptr) return;

    const KavroChannelReadings readings = multi->ReadAllChannels();
    std::cout << "  " << multi->DeviceName() << ": its channels read together\n";
    TextTable channels({{"Channel", TextTable::Align::Right}, {"Text"}, {"mm", TextTable::Align::Right}});
    for (int i = 0; i < readings.ReadingCount(); ++i) {
        char value[32];
        std::snprintf(value, sizeof value, "%.4f", readings[i].Value);
        channels.addRow({std::to_string(readings[i].Channel), multi->GetChannelData(readings[i].Channel - 1).Text,
                         readings[i].Error == eKavroErrors::NoError ? value : "error"});
    }
    std::cout << channels.render("    ");

    auto* settings = dynamic_cast<WCM_DeviceSettings_WHTM*>(multi->Settings());
    const int before = settings->OffTime();
    settings->setOffTime(before + 5);
    std::cout << "  Its off time, through configuration mode: " << before << " -> " << settings->OffTime()
              << " minutes\n";
}

int runDemo() {
    std::istringstream scenarioText(kScenario);
    const kavrosim::SimScenario scenario = kavrosim::parseScenario(scenarioText, "demo scenario");
    // Module identities by controller identity: what each bus holds.
    std::map<std::string, std::vector<std::string>> busModules;
    for (const auto& controller : scenario.controllers) {
        for (const auto& module : controller.modules)
            busModules[controller.config.identity].push_back(module.identity());
    }

    PrivateHome home;
    kavrosim::SimSession session(scenario);
    session.start();
    UsbStandIn usb(kScenario);
    home.writeConfiguration(configurationFile(session.face(0).location(), session.face(1).location()));

    KavroServer server;
    std::cout << "KavroLibrary " << server.LibraryVersion() << " (part " << server.LibraryPartNumber() << ", built "
              << server.LibraryBuildDate() << ") on the built-in simulated bus\n\n"
              << "Simulated controllers\n";
    TextTable controllers({{"Identity"}, {"Type"}, {"Reached over"}, {"Modules", TextTable::Align::Right}});
    for (const auto& controller : scenario.controllers) {
        std::string where = "USB, stand-in libftd2xx.so";
        for (std::size_t i = 0; i < session.size(); ++i) {
            if (session.controller(i).config().identity == controller.config.identity)
                where = session.face(i).describe();
        }
        controllers.addRow(
            {controller.config.identity, controller.config.typeCode, where, std::to_string(controller.modules.size())});
    }
    std::cout << controllers.render() << "\n";

    int failures = 0;
    std::set<std::string> simulatedConnected;
    {
        KavroNetworks& networks = *server.Networks();
        const auto start = Clock::now();
        networks.FindNetworks();
        std::cout << "Found " << networks.Count() << " networks (configuration file, then USB); connecting ...\n";
        networks.ConnectAll();
        std::cout << "Connected in " << seconds(Clock::now() - start) << "\n";

        for (unsigned n = 0; n < networks.Count(); ++n) {
            KavroNetwork& network = *networks.Network(n);
            if (!network.IsConnected()) {
                // A network of this machine's own system-wide file is not
                // the demo's to judge.
                std::cout << "\n" << describeNetwork(n, network);
                continue;
            }
            const auto bus = busModules.find(network.ControllerID());
            if (bus == busModules.end()) continue;
            simulatedConnected.insert(network.ControllerID());
            for (const std::string& identity : bus->second) {
                try {
                    network.AddModule(identity, "");
                } catch (const std::exception& error) {
                    std::cout << "  could not add " << identity << ": " << error.what() << "\n";
                    ++failures;
                }
            }
            // The fastest speed the controller and every module share.
            const std::vector<eNetSpeed> speeds = network.AvailableSpeeds();
            if (!speeds.empty()) network.setNetSpeed(speeds.back());

            std::cout << "\n" << describeNetwork(n, network);
            TextTable modules({{"Addr", TextTable::Align::Right},
                               {"Identity"},
                               {"Kind"},
                               {"Description"},
                               {"Units"},
                               {"Generation"},
                               {"Firmware"}});
            for (int m = 0; m < network.ModuleCount(); ++m) {
                KavroModule& module = *network.GetModule(static_cast<unsigned>(m));
                modules.addRow({std::to_string(module.Address()), module.ModuleID(),
                                eModuleType_ToString(module.ModuleType()), module.DeviceType(),
                                module.UnitsOfMeasure().empty() ? "-" : module.UnitsOfMeasure(),
                                eGeneration_ToString(module.KavroGeneration()), module.Version()});
            }
            std::cout << modules.render();
        }

        // Rows of modules, a column per round of readings.
        std::vector<TextTable::Column> columns{
            {"Net", TextTable::Align::Right}, {"Addr", TextTable::Align::Right}, {"Identity"}, {"Units"}};
        for (int round = 1; round <= kReadingRounds; ++round) {
            columns.push_back({"Round " + std::to_string(round), TextTable::Align::Right});
        }
        std::map<std::pair<unsigned, int>, std::vector<std::string>> readings;
        for (int round = 0; round < kReadingRounds; ++round) {
            if (round > 0) std::this_thread::sleep_for(kBetweenRounds);
            for (unsigned n = 0; n < networks.Count(); ++n) {
                KavroNetwork& network = *networks.Network(n);
                for (int m = 0; m < network.ModuleCount(); ++m) {
                    readings[{n, m}].push_back(formatReading(*network.GetModule(static_cast<unsigned>(m))));
                }
            }
        }
        TextTable table(columns);
        for (const auto& [where, values] : readings) {
            KavroModule& module = *networks.Network(where.first)->GetModule(static_cast<unsigned>(where.second));
            std::vector<std::string> row{std::to_string(where.first), std::to_string(module.Address()),
                                         module.ModuleID(),
                                         module.UnitsOfMeasure().empty() ? "-" : module.UnitsOfMeasure()};
            row.insert(row.end(), values.begin(), values.end());
            table.addRow(row);
        }
        std::cout << "\nReadings, " << kReadingRounds << " rounds "
                  << std::chrono::duration_cast<std::chrono::milliseconds>(kBetweenRounds).count() << " ms apart\n"
                  << table.render();

        for (unsigned n = 0; n < networks.Count(); ++n) {
            KavroNetwork& network = *networks.Network(n);
            if (network.IsConnected() && network.ControllerID() == session.controller(0).config().identity) {
                showModuleLearning(n, network, session.controller(0), home.path());
                showAcquisition(n, network);
                showStreaming(n, network);
                showWireless(network);
            }
        }
        networks.DisconnectAll();
    }
    std::cout << "\nDisconnected.\n";
    for (const auto& [identity, modules] : busModules) {
        if (simulatedConnected.count(identity) == 0) {
            std::cout << "The simulated controller " << identity << " was not found or did not connect.\n";
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}

}  // namespace

int main() {
    try {
        return runDemo();
    } catch (const std::exception& error) {
        std::cerr << "kavro-demo: " << error.what() << "\n";
        return 1;
    }
}
