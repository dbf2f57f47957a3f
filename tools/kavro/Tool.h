// The state one run of the tool shares between its commands: the chosen
// networks, where records go, and whether the user asked it to stop.
#pragma once

#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <KavroLibrary.h>

#include "NetworkChoice.h"
#include "Records.h"
#include "SimulatedBus.h"

namespace kavro_tool {

// Sleeps up to `seconds`, in short steps so that Ctrl+C ends it at once.
void pause(double seconds);

// Documented exit codes (kavro.1).
enum ExitCode : int { kSuccess = 0, kDeviceError = 1, kBadUsage = 2, kNoNetwork = 3 };

// Set by SIGINT and SIGTERM: long runs end cleanly and say so.
extern std::atomic<bool> stopRequested;

// What `kavro wireless` is asked to do: list the hand tools (always), read
// their channels, show their settings, set one, or send a raw command.
struct WirelessRequest {
    bool read = false;
    bool settings = false;
    int tool = 0;                  // slot, 1 to 6; 0: every tool
    std::vector<std::string> set;  // NAME=VALUE
    std::string command;
};

struct Tool {
    Format format = Format::Table;
    std::FILE* out = stdout;
    std::string find = "ping";  // how modules are found: ping, hotswap, notify, none, or a settings file
    double wait = 0;            // seconds to wait for modules that announce themselves

    std::unique_ptr<SimulatedBus> sim;
    KavroLibrary::KavroServer server;
    std::vector<std::unique_ptr<KavroLibrary::KavroNetwork>> owned;
    std::vector<KavroLibrary::KavroNetwork*> networks;  // connected, in order

    // Connects the chosen networks (all found when none is chosen); false
    // with one line on standard error when none answers.
    bool connect(const std::vector<NetworkChoice>& choices);
    // Finds each network's modules as `find` says.
    void findModules();
    std::string label(std::size_t index) const { return networkLabel(*networks[index], static_cast<int>(index)); }
    std::string label(const KavroLibrary::KavroNetwork* network) const;
    // A record of `module` on `network` without its time, value and status:
    // filled once, then reused for each of the module's readings.
    Record recordFor(const KavroLibrary::KavroNetwork* network, const KavroLibrary::KavroModule& module) const;
};

int scanCommand(Tool& tool);
int infoCommand(Tool& tool);
int readCommand(Tool& tool, int count, double interval, bool watch, bool burst);
int streamCommand(Tool& tool, const std::string& rate, long count, double duration, int modules, bool benchmark);
int diffCommand(Tool& tool, double duration);
int bufferedCommand(Tool& tool, double interval, double duration);
int wirelessCommand(Tool& tool, const WirelessRequest& request);
int speedCommand(Tool& tool, const std::string& speed);
int saveCommand(Tool& tool, const std::string& file);
int loadCommand(Tool& tool, const std::string& file);
int errorCommand(const std::string& code);

// Rows as the chosen format wants them: a table, CSV, or JSON lines.
void emitRows(Tool& tool, const std::vector<std::string>& heading, const std::vector<std::vector<std::string>>& rows);

// "ok" or the error's name.
std::string statusText(KavroLibrary::eKavroErrors error);

}  // namespace kavro_tool
