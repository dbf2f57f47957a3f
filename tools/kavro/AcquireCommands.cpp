// read and stream: readings as records, once, repeatedly, or streamed.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "Tool.h"

namespace kavro_tool {

using namespace KavroLibrary;
using Clock = std::chrono::steady_clock;

int readCommand(Tool& tool, int count, double interval, bool watch, bool burst) {
    tool.findModules();
    RecordWriter writer(tool.out, tool.format);
    int failures = 0;
    for (int round = 0; (watch || round < count) && !stopRequested; ++round) {
        if (round > 0) pause(interval);
        if (stopRequested) break;
        if (watch && tool.format == Format::Table && tool.out == stdout) std::fprintf(tool.out, "\033[H\033[2J");
        for (std::size_t i = 0; i < tool.networks.size(); ++i) {
            KavroNetwork& network = *tool.networks[i];
            if (burst) {
                int readings = 0;
                network.Readburst(readings);
            }
            for (int m = 0; m < network.ModuleCount(); ++m) {
                KavroModule& module = *network.GetModule(static_cast<unsigned>(m));
                Record record = tool.recordFor(&network, module);
                record.time = timeStamp();
                if (burst) {
                    record.value = module.LastReadburst_InUnitsOfMeasure();
                    record.status = statusText(static_cast<eKavroErrors>(module.LastReadburst_Error()));
                } else {
                    try {
                        record.value = module.ReadingInUnits();
                        record.status = "ok";
                    } catch (const KavroException& error) {
                        record.status = statusText(static_cast<eKavroErrors>(error.ErrorCode));
                    }
                }
                if (record.status != "ok") ++failures;
                writer.write(record);
            }
        }
        writer.flush();
        if (!watch) progress("read " + std::to_string(round + 1) + " of " + std::to_string(count));
    }
    progressDone();
    return failures > 0 ? kDeviceError : kSuccess;
}

int streamCommand(Tool& tool, const std::string& rate, long count, double duration, int modules, bool benchmark) {
    tool.findModules();
    // The rate: 1k, 2k, 4k, or an interval in microseconds ("500us").
    eDynamicRate dynamicRate = eDynamicRate::Rate4K;
    int interval = 0;
    double hertz = 4000;
    if (rate == "1k") {
        dynamicRate = eDynamicRate::Rate1K;
        hertz = 1000;
    } else if (rate == "2k") {
        dynamicRate = eDynamicRate::Rate2K;
        hertz = 2000;
    } else if (rate != "4k") {
        dynamicRate = eDynamicRate::Dynamic2Custom;
        interval = std::atoi(rate.c_str());
        hertz = interval > 0 ? 1e6 / interval : 4000;
    }
    const long sets = count > 0 ? count : static_cast<long>(std::llround(duration * hertz));
    // Only the networks whose controller streams take part.
    std::vector<KavroNetwork*> streaming;
    for (KavroNetwork* network : tool.networks) {
        if (network->DynamicCapable() || network->Dynamic2Capable()) {
            streaming.push_back(network);
        } else {
            std::fprintf(stderr, "kavro: %s does not stream; left out\n", network->Description().c_str());
        }
    }
    if (streaming.empty()) {
        std::fprintf(stderr, "kavro: no network streams\n");
        return kDeviceError;
    }
    tool.networks = streaming;
    // Every network streams its leading dynamic modules.
    for (KavroNetwork* network : tool.networks) {
        int leading = 0;
        while (leading < network->ModuleCount() &&
               network->GetModule(static_cast<unsigned>(leading))->DynamicCapable()) {
            ++leading;
        }
        if (modules > 0) leading = std::min(leading, modules);
        if (leading == 0) {
            std::fprintf(stderr, "kavro: %s has no module that streams\n", network->Description().c_str());
            return kDeviceError;
        }
        if (dynamicRate != eDynamicRate::Dynamic2Custom && network->SpeedAvailable(eNetSpeed::High)) {
            network->setNetSpeed(eNetSpeed::High);  // 1, 2 and 4 kHz run at the High speed
        }
        KavroDynamic& dynamic = *network->Dynamic();
        dynamic.setNumberOfModules(leading);
        dynamic.setDynamicRate(dynamicRate);
        if (interval > 0) dynamic.setDynamicInterval(interval);
        dynamic.setCollectionSize(static_cast<int>(sets));
        dynamic.setEnabled(true);
        dynamic.Prepare();
    }
    const auto start = Clock::now();
    for (KavroNetwork* network : tool.networks) network->Dynamic()->StartDynamic();

    // Records go out while the sets arrive: a stopped run leaves a file
    // complete up to its last record.
    RecordWriter writer(tool.out, tool.format);
    std::vector<int> written(tool.networks.size(), 0);
    // Each streaming module's record, filled once and reused for its readings.
    std::vector<std::vector<Record>> streamed;
    for (KavroNetwork* network : tool.networks) {
        std::vector<Record> records;
        for (int m = 0; m < network->Dynamic()->DynamicData()->ModuleCount(); ++m) {
            records.push_back(tool.recordFor(network, *network->GetModule(static_cast<unsigned>(m))));
        }
        streamed.push_back(std::move(records));
    }
    bool running = true;
    while (running) {
        running = false;
        long total = 0;
        for (std::size_t i = 0; i < tool.networks.size(); ++i) {
            KavroDynamic& dynamic = *tool.networks[i]->Dynamic();
            const eDynamicState state = dynamic.DynamicState();
            if (state == eDynamicState::Reading || state == eDynamicState::Processing) running = true;
            KavroDynamicData& data = *dynamic.DynamicData();
            const int available = data.ReadingCount();
            total += available;
            if (benchmark || available == written[i]) continue;
            const std::string stamp = timeStamp();
            std::vector<Record>& records = streamed[i];
            for (int set = written[i]; set < available; ++set) {
                for (int m = 0; m < data.ModuleCount(); ++m) {
                    const sReadingItem item = data.GetItem(m, set);
                    Record& record = records[static_cast<std::size_t>(m)];
                    record.time = stamp;
                    record.value = item.value;
                    record.status = statusText(item.error);
                    writer.write(record);
                }
            }
            written[i] = available;
            writer.flush();
        }
        if (stopRequested) {
            for (KavroNetwork* network : tool.networks) network->Dynamic()->StopDynamic();
        }
        progress("stream: " + std::to_string(total) + " reading sets");
        if (running) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    progressDone();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    int result = kSuccess;
    for (std::size_t i = 0; i < tool.networks.size(); ++i) {
        KavroDynamic& dynamic = *tool.networks[i]->Dynamic();
        dynamic.StopDynamic();
        const sDynamicHealth health = dynamic.Health();
        const int status = dynamic.DynamicData()->CollectionStatus();
        if (status != 0 || health.DataLost) result = kDeviceError;
        std::fprintf(stderr,
                     "kavro: %s: %llu reading sets in %.2f s (%.0f a second), %llu packets, %llu asked again, "
                     "%llu sets lost%s%s\n",
                     tool.label(i).c_str(), static_cast<unsigned long long>(health.ReadingSets), seconds,
                     health.ReadingSets / std::max(seconds, 1e-9), static_cast<unsigned long long>(health.Packets),
                     static_cast<unsigned long long>(health.PacketsAskedAgain),
                     static_cast<unsigned long long>(health.ReadingSetsLost), health.DataLost ? ", DATA LOST" : "",
                     status != 0 ? (", ended with " + std::to_string(status)).c_str() : "");
    }
    return result;
}

}  // namespace kavro_tool
