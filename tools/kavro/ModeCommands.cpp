// diff and buffered: the modules measure on their own for a while and the
// host collects afterwards.
#include <chrono>
#include <cmath>
#include <functional>

#include "Tool.h"

namespace kavro_tool {

using namespace KavroLibrary;

namespace {

// Runs `stop` on every network started so far when a later start (or
// anything before the planned stop) fails: no network is left measuring.
class StopOnFailure {
public:
    explicit StopOnFailure(std::function<void(KavroNetwork&)> stop) : stop_(std::move(stop)) {}
    ~StopOnFailure() {
        for (KavroNetwork* network : started_) {
            try {
                stop_(*network);
            } catch (...) {
                // The network is being given up; the first error is the one reported.
            }
        }
    }
    void started(KavroNetwork* network) { started_.push_back(network); }
    void done() { started_.clear(); }

private:
    std::function<void(KavroNetwork&)> stop_;
    std::vector<KavroNetwork*> started_;
};

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

// Index of each network among the tool's, for its label.
std::size_t indexOf(const Tool& tool, const KavroNetwork* network) {
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        if (tool.networks[i] == network) return i;
    }
    return 0;
}

void waitWithProgress(const char* mode, double duration) {
    progress(std::string(mode) + ": measuring for " + std::to_string(duration) + " s");
    pause(duration);
    progressDone();
}

}  // namespace

int diffCommand(Tool& tool, double duration) {
    tool.findModules();
    StopOnFailure guard([](KavroNetwork& network) { network.Difference()->Stop(); });
    std::vector<KavroNetwork*> running;
    for (KavroNetwork* network : tool.networks) {
        int enabled = 0;
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            if (!module.DifferenceModeCapable() || !fourteenBit(module)) continue;
            module.Difference()->setEnabled(true);
            ++enabled;
        }
        if (enabled == 0) {
            std::fprintf(stderr, "kavro: %s has no module for difference mode; left out\n",
                         network->Description().c_str());
            continue;
        }
        network->Difference()->Start();
        guard.started(network);
        running.push_back(network);
    }
    if (running.empty()) {
        std::fprintf(stderr, "kavro: no module takes difference mode\n");
        return kDeviceError;
    }
    waitWithProgress("diff", duration);
    guard.done();
    for (KavroNetwork* network : running) network->Difference()->Stop();

    RecordWriter writer(tool.out, tool.format, {"min", "max"});
    int failures = 0;
    const std::string stamp = timeStamp();
    for (KavroNetwork* network : running) {
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            const ModuleDifference* result = module.Difference();
            if (result == nullptr || !result->Enabled()) continue;
            Record record{stamp, tool.label(indexOf(tool, network)), module.Address(), module.ModuleID(),
                          result->Diff(), module.UnitsOfMeasure(), statusText(result->Error()),
                          {result->Min(), result->Max()}};
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
    StopOnFailure guard([](KavroNetwork& network) { network.Buffered()->Stop(); });
    std::vector<KavroNetwork*> running;
    for (KavroNetwork* network : tool.networks) {
        int enabled = 0;
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            if (!module.BufferedCapable() || !fourteenBit(module)) continue;
            ModuleBuffered& buffered = *module.Buffered();
            buffered.setMode(eBufferedMode::Sync);  // every module reads at the same instants
            buffered.setReadingInterval(microseconds);
            buffered.setEnabled(true);
            ++enabled;
        }
        if (enabled == 0) {
            std::fprintf(stderr, "kavro: %s has no module for buffered mode; left out\n",
                         network->Description().c_str());
            continue;
        }
        network->Buffered()->Start();
        guard.started(network);
        running.push_back(network);
    }
    if (running.empty()) {
        std::fprintf(stderr, "kavro: no module takes buffered mode\n");
        return kDeviceError;
    }
    const auto start = std::chrono::system_clock::now();
    waitWithProgress("buffered", duration);
    guard.done();
    for (KavroNetwork* network : running) network->Buffered()->Stop();  // stops and empties each module

    // Each reading's time is the start plus its place times the interval
    // the module really used (rounded to its timing units).
    RecordWriter writer(tool.out, tool.format);
    int failures = 0;
    for (KavroNetwork* network : running) {
        for (int m = 0; m < network->ModuleCount(); ++m) {
            KavroModule& module = *network->GetModule(static_cast<unsigned>(m));
            const ModuleBuffered* buffered = module.Buffered();
            if (buffered == nullptr || !buffered->Enabled()) continue;
            for (int i = 0; i < buffered->BufferedDataLength(); ++i) {
                const sReadingItem item = buffered->GetBufferedItem(i);
                const auto when =
                    start + std::chrono::microseconds(static_cast<long long>(i) * buffered->ReadingInterval());
                if (item.error != eKavroErrors::NoError) ++failures;
                writer.write({timeStamp(std::chrono::time_point_cast<std::chrono::system_clock::duration>(when)),
                              tool.label(indexOf(tool, network)), module.Address(), module.ModuleID(), item.value,
                              module.UnitsOfMeasure(), statusText(item.error), {}});
            }
        }
    }
    writer.flush();
    return failures > 0 ? kDeviceError : kSuccess;
}

}  // namespace kavro_tool
