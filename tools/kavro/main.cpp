// kavro: the command line to the library. Data on standard output,
// diagnostics on standard error, documented exit codes (kavro.1).
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Tool.h"

using namespace kavro_tool;

namespace {

void onSignal(int) { stopRequested = true; }

struct Choices {
    std::vector<std::string> ethernet, serial, usb, wireless;
    bool sim = false;
    std::string scenario;
};

std::vector<NetworkChoice> networkChoices(const Choices& given, Tool& tool) {
    std::vector<NetworkChoice> choices;
    if (given.sim) {
        tool.sim = std::make_unique<SimulatedBus>(given.scenario);
        choices = tool.sim->networks();
    }
    for (const std::string& a : given.ethernet) choices.push_back(parseChoice(NetworkChoice::Kind::Ethernet, a));
    for (const std::string& s : given.serial) choices.push_back(parseChoice(NetworkChoice::Kind::Serial, s));
    for (const std::string& u : given.usb) choices.push_back(parseChoice(NetworkChoice::Kind::Usb, u));
    for (const std::string& w : given.wireless) choices.push_back(parseChoice(NetworkChoice::Kind::Wireless, w));
    return choices;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"kavro: find, read and stream the measurement modules of Kavro networks"};
    app.set_version_flag("--version", std::string("kavro ") + KAVRO_TOOL_VERSION);
    app.require_subcommand(1);
    app.fallthrough();  // the common options may follow the command too

    Choices given;
    std::string format = "table";
    std::string output;
    Tool tool;
    app.add_option("--ethernet", given.ethernet, "an Ethernet interface module's IPv4 address")->type_name("ADDRESS");
    app.add_option("--serial", given.serial, "a serial interface module's line, with its baud rate")
        ->type_name("PATH[:BAUD]");
    app.add_option("--usb", given.usb, "a USB interface module by its device index or controller identity")
        ->type_name("INDEX|IDENTITY");
    app.add_option("--wireless", given.wireless, "a wireless interface module")->type_name("ADDRESS[:CHANNEL]");
    auto* sim = app.add_option("--sim", given.scenario,
                               "the simulated bus in this process (a scenario file, or the default scenario)")
                    ->type_name("[SCENARIO]")
                    ->expected(0, 1);
    app.add_option("--format", format, "output for people or programs")->check(CLI::IsMember({"table", "csv", "json"}));
    app.add_option("--output", output, "write data to FILE instead of standard output")->type_name("FILE");
    app.add_option("--find", tool.find,
                   "how modules are found: ping, hotswap, notify (with --wait), none, or a settings FILE to load")
        ->capture_default_str();
    app.add_option("--wait", tool.wait, "seconds to wait for modules announcing themselves (--find notify)");

    auto* scan = app.add_subcommand("scan", "list the networks: controller, type, firmware, module limit, speeds");
    auto* info = app.add_subcommand("info", "list each network's modules and what they can do");

    int count = 1;
    double interval = 0.5;
    bool watch = false, burst = false;
    auto* read = app.add_subcommand("read", "read every module, once or repeatedly");
    read->add_option("--count", count, "rounds of readings")->check(CLI::PositiveNumber);
    read->add_option("--interval", interval, "seconds between rounds")->check(CLI::NonNegativeNumber);
    read->add_flag("--watch", watch, "read until Ctrl+C, refreshing in place on a terminal");
    read->add_flag("--burst", burst, "read each network's modules together (read burst)");

    std::string rate = "4k";
    long sets = 0;
    double duration = 1.0;
    int modules = 0;
    bool benchmark = false;
    auto* stream = app.add_subcommand("stream", "stream the leading modules in dynamic mode");
    stream->add_option("--rate", rate, "1k, 2k, 4k, or an interval such as 500us")->capture_default_str();
    auto* countOption = stream->add_option("--count", sets, "reading sets to collect")->check(CLI::PositiveNumber);
    stream->add_option("--duration", duration, "seconds to collect (default 1)")
        ->check(CLI::PositiveNumber)
        ->excludes(countOption);
    stream->add_option("--modules", modules, "how many leading modules stream (default: all that can)");
    stream->add_flag("--benchmark", benchmark, "store nothing, print nothing: measure the link");

    double diffDuration = 1.0;
    auto* diff = app.add_subcommand("diff", "difference mode: each module's smallest and largest reading over a time");
    diff->add_option("--duration", diffDuration, "seconds to measure")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();

    double bufferedInterval = 0.02, bufferedDuration = 1.0;
    auto* buffered = app.add_subcommand("buffered", "buffered mode: the modules store readings together, then report");
    buffered->add_option("--interval", bufferedInterval, "seconds between readings")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    buffered->add_option("--duration", bufferedDuration, "seconds to measure")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();

    WirelessRequest wirelessRequest;
    auto* wireless = app.add_subcommand("wireless", "the hand tools of each wireless concentrator");
    wireless->add_option("--tool", wirelessRequest.tool, "only the tool in this slot")->check(CLI::Range(1, 6));
    auto* wirelessRead = wireless->add_flag("--read", wirelessRequest.read, "read the tools' channels");
    wireless->add_flag("--settings", wirelessRequest.settings, "show the tools' settings")->excludes(wirelessRead);
    wireless->add_option("--set", wirelessRequest.set, "change a setting (with --tool)")->type_name("NAME=VALUE");
    wireless->add_option("--command", wirelessRequest.command, "send a raw command to the tool (with --tool)");

    std::string speed;
    auto* speedCmd = app.add_subcommand("speed", "show the bus speed, or set it");
    speedCmd->add_option("speed", speed, "low, high or ultrahigh")->check(CLI::IsMember({"low", "high", "ultrahigh"}));
    std::string file;
    auto* save = app.add_subcommand("save", "save each network's settings to an XML file");
    save->add_option("file", file)->required();
    auto* load = app.add_subcommand("load", "load a network's settings from an XML file");
    load->add_option("file", file)->required();
    std::string code;
    auto* error = app.add_subcommand("error", "the text of an error code");
    error->add_option("code", code)->required();

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::fprintf(stderr, "kavro: %s (kavro --help)\n", e.what());
        return kBadUsage;
    }
    if (*wireless && (!wirelessRequest.set.empty() || !wirelessRequest.command.empty()) && wirelessRequest.tool == 0) {
        std::fprintf(stderr, "kavro: --set and --command need --tool SLOT (kavro --help)\n");
        return kBadUsage;
    }
    given.sim = sim->count() > 0;
    tool.format = format == "csv" ? Format::Csv : format == "json" ? Format::Json : Format::Table;
    if (*error) return errorCommand(code);

    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_out(nullptr, &std::fclose);
    if (!output.empty()) {
        file_out.reset(std::fopen(output.c_str(), "w"));
        if (!file_out) {
            std::fprintf(stderr, "kavro: cannot write %s\n", output.c_str());
            return kBadUsage;
        }
        tool.out = file_out.get();
    }
    try {
        if (!tool.connect(networkChoices(given, tool))) return kNoNetwork;
        int result = kSuccess;
        if (*scan) result = scanCommand(tool);
        if (*info) result = infoCommand(tool);
        if (*read) result = readCommand(tool, count, interval, watch, burst);
        if (*stream) result = streamCommand(tool, rate, sets, duration, modules, benchmark);
        if (*diff) result = diffCommand(tool, diffDuration);
        if (*buffered) result = bufferedCommand(tool, bufferedInterval, bufferedDuration);
        if (*wireless) result = wirelessCommand(tool, wirelessRequest);
        if (*speedCmd) result = speedCommand(tool, speed);
        if (*save) result = saveCommand(tool, file);
        if (*load) result = loadCommand(tool, file);
        std::fflush(tool.out);
        return result;
    } catch (const std::invalid_argument& e) {
        std::fprintf(stderr, "kavro: %s\n", e.what());
        return kBadUsage;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "kavro: %s\n", e.what());
        return kDeviceError;
    }
}
