// kavro-sim: serves the controllers and modules of a scenario file over
// loopback TCP and pseudo-terminals, so that an application can be
// developed and tried without the hardware.
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <string>

#include "core/KavroSim.h"

namespace {

const char* const kUsage = R"(Usage: kavro-sim [--scenario FILE] [--trace] [--help]

Starts the simulated controllers of a scenario, prints where each one
listens (Ethernet: address and port 10001; wireless: address and port;
serial: the pseudo-terminal to open as the RS-232 line) and the modules on
its bus, and serves them until interrupted (Ctrl+C, SIGINT, SIGTERM or
SIGHUP). USB controllers are served inside the application's own process by
the stand-in libftd2xx.so, which reads the same file when
KAVRO_SIM_USB_SCENARIO names it.

  --scenario FILE   the scenario to run (default: the shipped default.scn,
                    here %DEFAULT%)
  --trace           print every request a controller receives and its answer
  --help            this text

)";

bool readable(const std::string& path) { return access(path.c_str(), R_OK) == 0; }

// The folder this program was started from, so that an installation moved
// to another prefix (or unpacked anywhere) still finds its own scenarios.
std::string programFolder() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : self.parent_path().string();
}

std::string defaultScenario() {
    // Installed: beside the program's prefix. Built: the source tree's copy.
    const std::string folder = programFolder();
    const std::string installed = folder.empty() ? "" : folder + "/" KAVRO_SIM_SCENARIO_FROM_PROGRAM "/default.scn";
    for (const std::string& path : {installed, std::string(KAVRO_SIM_SCENARIO_SOURCE)}) {
        if (!path.empty() && readable(path)) return std::filesystem::path(path).lexically_normal().string();
    }
    return installed.empty() ? std::string(KAVRO_SIM_SCENARIO_SOURCE) : installed;
}

std::string usage() {
    std::string text = kUsage;
    text.replace(text.find("%DEFAULT%"), std::strlen("%DEFAULT%"), defaultScenario());
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    std::string scenarioPath;
    bool trace = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << usage() << kavrosim::scenarioFormatHelp();
            return 0;
        }
        if (arg == "--trace") {
            trace = true;
        } else if (arg == "--scenario" && i + 1 < argc) {
            scenarioPath = argv[++i];
        } else if (arg.rfind("--scenario=", 0) == 0) {
            scenarioPath = arg.substr(std::strlen("--scenario="));
        } else {
            std::cerr << "kavro-sim: unknown argument '" << arg << "'\nTry 'kavro-sim --help'.\n";
            return 2;
        }
    }
    if (scenarioPath.empty()) scenarioPath = defaultScenario();

    // The faces' threads inherit this mask, so the signals reach only the
    // sigwait below.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    std::mutex printing;  // outlives the session whose threads print
    try {
        kavrosim::SimSession session(kavrosim::loadScenario(scenarioPath));
        for (std::size_t i = 0; i < session.size(); ++i) {
            kavrosim::SimController& controller = session.controller(i);
            controller.setRequestLogLimit(1000);
            if (!trace) continue;
            const std::string name = controller.config().identity;
            controller.setObserver(
                [&printing, name](const kavrosim::SimRequest& request, const kavrosim::SimAnswer& answer) {
                    std::lock_guard<std::mutex> lock(printing);
                    std::cout << name << "  " << request.describe() << "  ->  " << answer.describe() << std::endl;
                });
        }
        session.start();
        std::cout << "kavro-sim: scenario " << scenarioPath << "\n" << session.describe();
        if (session.usbControllersLeftOut() > 0) {
            std::cout << "USB controllers (" << session.usbControllersLeftOut()
                      << ") are not served here: the application loads the stand-in libftd2xx.so\n"
                      << "  with KAVRO_SIM_USB_SCENARIO=" << scenarioPath << "\n";
        }
        std::cout << "Running; Ctrl+C stops.\n" << std::flush;
        int received = 0;
        sigwait(&stopSignals, &received);
        std::cout << "kavro-sim: stopping on " << strsignal(received) << "\n" << std::flush;
        session.stop();
    } catch (const std::exception& error) {
        std::cerr << "kavro-sim: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
