// Finding modules the network does not know yet: those that took the next
// free address by themselves (hot-swap) and the unaddressed ones (ping).
#include <stdexcept>

#include "KavroNetwork.h"
#include "commands/KavroCommands.h"
#include "core/ProtocolSleep.h"
#include "links/NetworkConfiguration.h"
#include "network/BusSpeedGuard.h"

namespace KavroLibrary {

namespace {

constexpr int kPingSlots = 32;
// The bus cannot hold more, whatever limit the controller reports.
constexpr int kBusModuleLimit = 200;
// Per slot: give up after this many bad answers or this many silences.
constexpr int kPingErrorLimit = 30;
constexpr int kPingTimeoutLimit = 2;

// Pauses between ping attempts: after a silence, after a failed exchange,
// and after a bad or unusable answer (what a set-address takes).
constexpr long kAfterSilenceMs = 30;
constexpr long kAfterFailureMs = 100;
constexpr long kAfterBadAnswerMs = 70;

// The identity bytes, each a signed byte, summed and cut to 16 bits; with
// the checksum they make 0xFFFF. Colliding answers never do.
bool pingChecksumHolds(const KavroPingResult& reply) {
    const std::string identity = reply.IdentityText();
    if (identity.size() != 10) return false;
    int sum = 0;
    for (const char c : identity) sum += static_cast<signed char>(c);
    return (static_cast<unsigned>(sum) & 0xFFFFu) + reply.Checksum == 0xFFFFu;
}

}  // namespace

unsigned int KavroNetwork::FindHotswapped() {
    if (!config_->Connected) throw std::runtime_error("Not connected to Kavro");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Network must be idle before commencing an identify operation.");
    }
    BusSpeedGuard speed(*this);
    unsigned int attempts = 0;
    const int limit = MaximumAllowableNumberOfModules();
    for (int attempt = 0; attempt < limit; ++attempt) {
        const KavroIdentifyResult reply = KavroCommands::KavroIdentify(config_.get(), ModuleCount() + 1);
        ++attempts;
        if (reply.LinkStatus != 0 || reply.Echo != 'I') break;
        AddModuleInternal(reply.IdentityText(), "");
    }
    speed.restore();
    return attempts;
}

int KavroNetwork::Ping() {
    if (!config_->Connected) throw std::runtime_error("Network not connected.");
    if (config_->ActiveOperation != OperationIdle) {
        throw std::runtime_error("Network busy. Network must not be performing an operation during a ping.");
    }
    const int countBefore = ModuleCount();
    BusSpeedGuard speed(*this);

    for (int slot = 0; slot < kPingSlots && ModuleCount() < kBusModuleLimit; ++slot) {
        int errors = 0;
        int timeouts = 0;
        while (errors < kPingErrorLimit && timeouts < kPingTimeoutLimit && ModuleCount() < kBusModuleLimit) {
            const KavroPingResult reply = KavroCommands::Ping(config_.get(), static_cast<unsigned char>(slot));
            if (reply.LinkStatus == static_cast<std::uint32_t>(eKavroErrors::Timeout)) {
                protocolSleepMs(kAfterSilenceMs);
                ++timeouts;
                continue;
            }
            if (reply.LinkStatus != 0) {
                protocolSleepMs(kAfterFailureMs);
                ++errors;
                continue;
            }
            const std::string identity = reply.IdentityText();
            if (!pingChecksumHolds(reply) || GetModuleByID(identity) != nullptr) {
                protocolSleepMs(kAfterBadAnswerMs);
                ++errors;
                continue;
            }
            if (ModuleCount() >= MaximumAllowableNumberOfModules()) throw std::runtime_error("Module Limit Reached");

            const KavroValueResult addressed = KavroCommands::KavroSetAddr(config_.get(), identity, ModuleCount() + 1);
            protocolSleepMs(kAfterBadAnswerMs);
            if (addressed.LinkStatus != 0) {
                protocolSleepMs(kAfterBadAnswerMs);
                ++errors;
                continue;
            }
            AddModuleInternal(identity, "");
        }
    }
    speed.restore();
    return ModuleCount() - countBefore;
}

}  // namespace KavroLibrary
