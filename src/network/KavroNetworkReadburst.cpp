// Reading every leading read-burst capable module in one exchange.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "links/NetworkConfiguration.h"
#include "readings/KavroReadType.h"

namespace KavroLibrary {

namespace {

constexpr int kGroupBytes = 4;
// A module's refusal code is this bit-or its error byte.
constexpr int kModuleReplyCode = 0x2100;

// Bytes 0 to 2 of a group: a 23-bit two's complement number, bit 22 the sign.
int burstCounts(const unsigned char* group) {
    const int raw = group[0] | (group[1] << 8) | ((group[2] & 0x7F) << 16);
    return (raw & 0x400000) != 0 ? raw - 0x800000 : raw;
}

}  // namespace

eKavroErrors KavroNetwork::Readburst(int& count) {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro.");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Cannot readburst whilst performing an Kavro operation.");
    }
    const std::vector<KavroModule*> modules = moduleSnapshot();
    count = 0;
    if (modules.empty()) return eKavroErrors::NoError;
    for (KavroModule* module : modules) module->setLastReadburst(false, 255, 0, 0.0);
    for (KavroModule* module : modules) {
        if (!module->ReadburstCapable()) break;
        ++count;
    }
    if (count == 0) return eKavroErrors::NoError;

    const KavroReadburstResult reply = KavroCommands::Readburst(config_.get(), count);
    const std::unique_ptr<unsigned char[]> data(reply.Data);
    if (reply.LinkStatus != 0) {
        for (int i = 0; i < count; ++i) {
            modules[static_cast<std::size_t>(i)]->setLastReadburst(true, static_cast<int>(reply.LinkStatus), 0, 0.0);
        }
        return static_cast<eKavroErrors>(reply.LinkStatus);
    }

    // A reply with fewer groups than asked for leaves the rest without a result.
    const int groups = std::min(count, reply.DataLength / kGroupBytes);
    for (int i = 0; i < groups; ++i) {
        KavroModule* module = modules[static_cast<std::size_t>(i)];
        const unsigned char* group = data.get() + i * kGroupBytes;
        const int status = group[3];
        const int error = status == 0 ? 0 : (status | kModuleReplyCode);
        KavroReadType* readType = module->ReadType();
        readType->UpdateFullScale();
        int counts = 0;
        if (error == static_cast<int>(eKavroErrors::UnderRange)) {
            counts = 0;
        } else if (error == static_cast<int>(eKavroErrors::OverRange)) {
            counts = readType->FullScale;
        } else {
            counts = burstCounts(group) - module->CountOffset();
        }
        module->setLastReadburst(true, error, counts, readType->ReadDyn(counts));
    }
    return eKavroErrors::NoError;
}

}  // namespace KavroLibrary
