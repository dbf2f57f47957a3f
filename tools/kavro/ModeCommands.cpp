// diff and buffered: the modules measure on their own for a while and the
// host collects afterwards.
#include <chrono>
#include <cmath>
#include <functional>
#include <map>

#include "Tool.h"

namespace kavro_tool {

using namespace KavroLibrary;

namespace {

// Difference and buffered mode take probes at 14 bit only; a probe that
// cannot be set so is left out, with one line on standard error.
bool fourteenBit(KavroModule& module) {
    auto* probe = dynamic_cast<KavroModuleDP*>(&module);
    if (probe == nullptr || probe->Resolution() == eResolution::res14Bit) return true;
    try {
        probe->setResolution(eResolution::res14Bit);
        return true;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kavro: %s left out: %s\n", module.ModuleID().c_str(), error.what());
        return false;
    }
}

// One mode on every network with a module that takes it: `enable` sets a
// module up (false: not this one), then each network starts, the run lasts
// `duration` (Ctrl+C ends it early) and each network stops. A failure to
// start stops the networks already started. Returns the networks that ran,
// none (with one line on standard error) when no module took the mode.
struct Mode {
    const char* name;
    std::function<bool(KavroModule&)> enable;
    std::function<void(KavroNetwork&)> start, stop;
};

std::vector<KavroNetwork*> measure(Tool& tool, const Mode& mode, double duration) {
    std::vector<KavroNetwork*> running;
    try {
        for (KavroNetwork* network : tool.networks) {
            int enabled = 0;
            for (int m = 0; m < network->ModuleCount(); ++m) {
                if (mode.enable(*network->GetModule(static_cast<unsigned>(m)))) ++enabled;
            }
            if (enabled == 0) {
                std::fprintf(stderr, "kavro: %s has no module for %s mode; left out\n", network->Description().c_str(),
                             mode.name);
                continue;
            }
            mode.start(*network);
            running.push_back(network);
        }
    } catch (...) {
        for (KavroNetwork* network : running) {
            try {
                mode.stop(*network);
            } catch (...) {
                // The first error is the one reported.
            }
        }
        throw;
    }
    if (running.empty()) {
        std::fprintf(stderr, "kavro: no module takes %s mode\n", mode.name);
        return running;
    }
    progress(std::string(mode.name) + ": measuring for " + std::to_string(duration) + " s");
    pause(duration);
    progressDone();
    for (KavroNetwork* network : running) mode.stop(*network);
    return running;
}

}  // namespace

int diffCommand(Tool& tool, double duration) {
    tool.findModules();
    const Mode difference{"difference",
                          [](KavroModule& module) {
                              if (!module.DifferenceModeCapable() || !fourteenBit(module)) return false;
                              module.Difference()->setEnabled(true);
                              return true;
                          },
                          [](KavroNetwork& network) { network.Difference()->Start(); },
                          [](KavroNetwork& network) { network.Difference()->Stop(); }};
    const std::vector<KavroNetwork*> running = measure(tool, difference, duration);
    if (running.empty()) return kDeviceError;

    RecordWriter writer(tool.out, tool.format, {"min", "max"});
    int failures = 0;
    const std::string stamp = timeStamp();
    for (KavroNetwork* network : running) {
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            const ModuleDifference* result = module.Difference();
            if (result == nullptr || !result->Enabled()) continue;
            Record record = tool.recordFor(network, module);
            record.time = stamp;
            record.value = result->Diff();
            record.status = statusText(result->Error());
            record.extra = {result->Min(), result->Max()};
            if (result->Error() != eKavroErrors::NoError) ++failures;
            writer.write(record);
        }
    }
    writer.flush();
    return failures > 0 ? kDeviceError : kSuccess;
}

int bufferedCommand(Tool& tool, double interval, double duration) {
    tool.findModules();
    const int microseconds = static_cast<int>(std::lround(interval * 1e6));
    std::map<KavroNetwork*, std::chrono::system_clock::time_point> started;  // each network's first reading
    const Mode mode{"buffered",
                    [microseconds](KavroModule& module) {
                        if (!module.BufferedCapable() || !fourteenBit(module)) return false;
                        ModuleBuffered& settings = *module.Buffered();
                        settings.setMode(eBufferedMode::Sync);  // every module reads at the same instants
                        settings.setReadingInterval(microseconds);
                        settings.setEnabled(true);
                        return true;
                    },
                    [&started](KavroNetwork& network) {
                        network.Buffered()->Start();
                        started[&network] = std::chrono::system_clock::now();
                    },
                    // Stopping empties each module.
                    [](KavroNetwork& network) { network.Buffered()->Stop(); }};
    const std::vector<KavroNetwork*> running = measure(tool, mode, duration);
    if (running.empty()) return kDeviceError;

    // Each reading's time is the start plus its place times the interval
    // the module really used (rounded to its timing units).
    RecordWriter writer(tool.out, tool.format);
    int failures = 0;
    for (KavroNetwork* network : running) {
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            const ModuleBuffered* buffered = module.Buffered();
            if (buffered == nullptr || !buffered->Enabled()) continue;
            Record record = tool.recordFor(network, module);
            for (int i = 0; i < buffered->BufferedDataLength(); ++i) {
                const sReadingItem item = buffered->GetBufferedItem(i);
                const auto when = started[network] +
                                  std::chrono::microseconds(static_cast<long long>(i) * buffered->ReadingInterval());
                if (item.error != eKavroErrors::NoError) ++failures;
                record.time = timeStamp(std::chrono::time_point_cast<std::chrono::system_clock::duration>(when));
                record.value = item.value;
                record.status = statusText(item.error);
                writer.write(record);
            }
        }
    }
    writer.flush();
    return failures > 0 ? kDeviceError : kSuccess;
}

}  // namespace kavro_tool
