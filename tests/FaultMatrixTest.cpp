// Every fault the bus can throw at every operation on every wired link: the
// caller gets the documented error within the link's time-out, nothing
// crashes or leaks, and the next operation on the same network works.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <tuple>

#include "LinkRig.h"
#include "ModeTestRig.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

enum class Operation { Read, Readburst, SetMode, AddModule };

struct FaultCase {
    const char* name;
    SimFault fault;
    std::uint32_t error;  // what reaches the caller
};

const char kFirst[] = "GPMATRIX01";
const char kSecond[] = "GPMATRIX02";

std::uint8_t commandOf(Operation operation) {
    switch (operation) {
        case Operation::Read:
            return 'L';
        case Operation::Readburst:
            return 'T';
        case Operation::SetMode:
            return 'V';
        case Operation::AddModule:
            return 'S';
    }
    return 0;
}

// Runs the operation; the error it reports (0: done).
std::uint32_t run(LinkRig& rig, Operation operation) {
    KavroNetwork& network = *rig.network;
    try {
        switch (operation) {
            case Operation::Read:
                network.GetModule(0)->ReadingInCounts();
                return 0;
            case Operation::Readburst: {
                int count = 0;
                const eKavroErrors error = network.Readburst(count);
                // A reply without readings fails no exchange but leaves the
                // modules without a result.
                if (error != eKavroErrors::NoError) return static_cast<std::uint32_t>(error);
                return static_cast<std::uint32_t>(network.GetModule(0)->LastReadburst_Error());
            }
            case Operation::SetMode: {
                auto* probe = dynamic_cast<KavroModuleDP*>(network.GetModule(0));
                const eAveraging before = probe->Averaging();
                const eAveraging next = before == eAveraging::average4 ? eAveraging::average8 : eAveraging::average4;
                try {
                    probe->setAveraging(next);
                } catch (const KavroException&) {
                    if (probe->Averaging() != before) return 1;  // a failed change must not be cached
                    throw;
                }
                return probe->Averaging() == next ? 0 : 1;
            }
            case Operation::AddModule:
                if (network.ModuleCount() > 1) network.DeleteModule(kSecond);
                network.AddModule(kSecond, "");
                return 0;
        }
    } catch (const KavroException& error) {
        return static_cast<std::uint32_t>(error.ErrorCode);
    } catch (const std::exception&) {
        return 255;  // the addition's own message carries no code
    }
    return 1;
}

using MatrixCell = std::tuple<LinkKind, Operation>;

class FaultMatrix : public ::testing::TestWithParam<MatrixCell> {};

std::string cellName(const ::testing::TestParamInfo<MatrixCell>& cell) {
    static const char* const operations[] = {"Read", "Readburst", "SetMode", "AddModule"};
    return linkName(std::get<0>(cell.param)) + operations[static_cast<int>(std::get<1>(cell.param))];
}

}  // namespace

TEST_P(FaultMatrix, TheCallerGetsTheErrorInTimeAndTheNetworkGoesOn) {
    const auto [kind, operation] = GetParam();
    LinkRig rig(
        kind, {modeProbe(kFirst, 2, 3, SimSignal::constant(0.5)), modeProbe(kSecond, 2, 3, SimSignal::constant(1.0))});
    ASSERT_TRUE(rig.network->IsConnected());
    rig.network->AddModule(kFirst, "");
    ASSERT_EQ(0u, run(rig, operation)) << "without a fault";

    // The link's own time-out, and what a late answer may add to it.
    const auto timeout = kind == LinkKind::Ethernet ? std::chrono::milliseconds(1500)
                         : kind == LinkKind::Serial ? std::chrono::milliseconds(1000)
                                                    : std::chrono::milliseconds(200);
    const std::uint8_t code = commandOf(operation);
    const FaultCase faults[] = {
        {"dropped", SimFault::dropReply().only(code), 255},
        {"cut short", SimFault::shortReply(1).only(code), 255},
        {"wrong echo", SimFault::wrongEcho().only(code), 255},
        {"refused", SimFault::errorReply(0x05).only(code), 0x2105},
        {"connection lost", SimFault::closeConnection().only(code), 255},
        // Last: its answer is still on its way while the next operation runs,
        // and a fault injected after it could be taken by that answer's request.
        {"late", SimFault::delay(timeout + std::chrono::milliseconds(300)).only(code), 255},
    };
    for (const FaultCase& fault : faults) {
        SCOPED_TRACE(fault.name);
        rig.controller().injectFault(fault.fault);
        const auto start = std::chrono::steady_clock::now();
        const std::uint32_t error = run(rig, operation);
        const auto took = std::chrono::steady_clock::now() - start;
        // An addition reports no code of its own: any failure will do. A
        // set-address answer cut to its echo still addressed the module.
        if (operation == Operation::AddModule) {
            if (std::string(fault.name) != "cut short") {
                EXPECT_NE(0u, error);
                EXPECT_EQ(1, rig.network->ModuleCount()) << "a failed addition is not half done";
            }
        } else {
            EXPECT_EQ(fault.error, error);
        }
        // Operations with several exchanges may meet the time-out a few times
        // (a lost connection costs the reconnect).
        EXPECT_LT(took, 4 * timeout + std::chrono::seconds(5));
        // The late answer, if any, must not answer the next request.
        EXPECT_TRUE(waitFor([&] { return rig.controller().pendingFaults() == 0; }, std::chrono::seconds(5)));
        if (!rig.network->IsConnected()) rig.network->Connect();
        if (rig.network->ModuleCount() == 0) rig.network->AddModule(kFirst, "");
        EXPECT_EQ(0u, run(rig, operation)) << "the next operation";
    }
}

INSTANTIATE_TEST_SUITE_P(AllLinks, FaultMatrix,
                         ::testing::Combine(::testing::Values(LinkKind::Usb, LinkKind::Ethernet, LinkKind::Serial),
                                            ::testing::Values(Operation::Read, Operation::Readburst, Operation::SetMode,
                                                              Operation::AddModule)),
                         cellName);
