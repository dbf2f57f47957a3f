// Dynamic runs end to end over the simulated USB and Ethernet controllers:
// known signals come back as the expected readings, a run stops on request,
// ends when its link is lost, and lets go when its network is destroyed.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "ConfigurationHome.h"
#include "LinkRig.h"
#include "ModeTestRig.h"
#include "UsbStandIn.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

const double kLevels[] = {0.5, 1.0, 1.5, 2.0};  // mm, one per probe

std::vector<SimModule> fourProbes() {
    std::vector<SimModule> probes;
    for (int i = 0; i < 4; ++i) {
        probes.push_back(modeProbe("GPDYN0000" + std::to_string(i), 5, 3, SimSignal::constant(kLevels[i])));
    }
    return probes;
}

// A streaming controller with four probes standing still at known levels,
// all four added to the network at the High speed.
struct StreamRig : LinkRig {
    explicit StreamRig(LinkKind link) : LinkRig(link, fourProbes(), std::chrono::milliseconds(1000)) {
        for (int i = 0; i < 4; ++i) network->AddModule("GPDYN0000" + std::to_string(i), "");
        network->setNetSpeed(eNetSpeed::High);
    }

    // Prepares and starts a run of `sets` reading sets (0: until stopped).
    KavroDynamic& start(int sets) {
        KavroDynamic& dynamic = *network->Dynamic();
        dynamic.setNumberOfModules(4);
        dynamic.setDynamicRate(eDynamicRate::Rate4K);
        dynamic.setCollectionSize(sets);
        dynamic.setEnabled(true);
        dynamic.Prepare();
        dynamic.StartDynamic();
        return dynamic;
    }
    bool complete() const { return network->Dynamic()->DynamicState() == eDynamicState::Complete; }
    // Control action 21 (leave dynamic mode) went out since the log was cleared.
    bool modulesLeftDynamicMode() const {
        for (const SimRequest& request : controller().requestLog()) {
            if (request.kind == SimRequestKind::ModuleCommand && request.code() == 'W' && request.command.size() > 2 &&
                request.command[2] == 21) {
                return true;
            }
        }
        return false;
    }
};

class DynamicEndToEnd : public ::testing::TestWithParam<LinkKind> {};

std::string nameOf(const ::testing::TestParamInfo<LinkKind>& info) { return linkName(info.param); }

}  // namespace

// The whole collection arrives in module order, readable while it arrives.
TEST_P(DynamicEndToEnd, KnownSignalsComeBackAsTheirReadings) {
    StreamRig rig(GetParam());
    ASSERT_TRUE(rig.network->IsConnected());
    rig.controller().clearRequestLog();
    KavroDynamic& dynamic = rig.start(800);
    KavroDynamicData* data = dynamic.DynamicData();
    std::atomic<bool> reading{true};
    std::thread reader([&] {
        while (reading) {
            const int count = data->ReadingCount();
            if (count > 0) data->GetItem(3, count - 1);
        }
    });
    const bool ended = waitFor([&] { return rig.complete(); }, std::chrono::seconds(20));
    reading = false;
    reader.join();
    ASSERT_TRUE(ended);
    dynamic.StopDynamic();

    ASSERT_EQ(800, data->ReadingCount());
    EXPECT_EQ(0, data->CollectionStatus());
    for (int set : {0, 399, 799}) {
        for (int module = 0; module < 4; ++module) {
            const sReadingItem item = data->GetItem(module, set);
            EXPECT_EQ(eKavroErrors::NoError, item.error);
            EXPECT_NEAR(kLevels[module], item.value, 0.001) << "module " << module << " set " << set;
        }
    }
    const sDynamicHealth health = dynamic.Health();
    EXPECT_FALSE(health.DataLost);
    EXPECT_EQ(800u, health.ReadingSets);
    EXPECT_EQ(OperationIdle, rig.network->Configuration()->ActiveOperation);
    EXPECT_TRUE(rig.modulesLeftDynamicMode());
    // The network is free: an ordinary reading and a second run work.
    EXPECT_NEAR(kLevels[0], rig.network->GetModule(0)->ReadingInUnits(), 0.001);
    rig.start(100);
    ASSERT_TRUE(waitFor([&] { return rig.complete(); }, std::chrono::seconds(20)));
    EXPECT_EQ(100, data->ReadingCount());
}

TEST_P(DynamicEndToEnd, ARunUntilStoppedStopsOnRequest) {
    StreamRig rig(GetParam());
    KavroDynamic& dynamic = rig.start(0);
    ASSERT_TRUE(waitFor([&] { return dynamic.DynamicData()->ReadingCount() >= 200; }, std::chrono::seconds(20)));
    dynamic.StopDynamic();
    EXPECT_TRUE(rig.complete());
    EXPECT_EQ(0, dynamic.DynamicData()->CollectionStatus());
    EXPECT_FALSE(dynamic.Health().DataLost);
    EXPECT_EQ(OperationIdle, rig.network->Configuration()->ActiveOperation);
}

// Destroying the network mid-run ends the run and its threads first.
TEST_P(DynamicEndToEnd, ANetworkDestroyedMidRunLetsGo) {
    StreamRig rig(GetParam());
    KavroDynamic& dynamic = rig.start(0);
    ASSERT_TRUE(waitFor([&] { return dynamic.DynamicData()->ReadingCount() > 0; }, std::chrono::seconds(20)));
    rig.network.reset();
}

// A damaged packet is asked for again at no cost; a link lost mid-run ends
// the run with an error well within the link's time-out.
TEST_P(DynamicEndToEnd, DamagedPacketsAreAskedAgainAndALostLinkEndsTheRun) {
    StreamRig rig(GetParam());
    rig.controller().injectFault(SimFault::corruptCrc().after(1));
    KavroDynamic& dynamic = rig.start(2000);
    ASSERT_TRUE(waitFor([&] { return rig.complete(); }, std::chrono::seconds(20)));
    EXPECT_EQ(2000, dynamic.DynamicData()->ReadingCount());
    EXPECT_EQ(0, dynamic.DynamicData()->CollectionStatus());
    EXPECT_EQ(1u, dynamic.Health().PacketsAskedAgain);
    EXPECT_FALSE(dynamic.Health().DataLost);

    // USB loses a whole transfer, Ethernet its connection.
    rig.controller().injectFault(SimFault::closeConnection().on(SimRequestKind::DynamicRead).after(2));
    const auto began = std::chrono::steady_clock::now();
    rig.start(0);
    ASSERT_TRUE(waitFor([&] { return rig.complete(); }, std::chrono::seconds(20)));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(6));
    EXPECT_EQ(255, dynamic.DynamicData()->CollectionStatus());
    EXPECT_TRUE(dynamic.Health().DataLost);
    EXPECT_EQ(OperationIdle, rig.network->Configuration()->ActiveOperation);
}

INSTANTIATE_TEST_SUITE_P(BothLinks, DynamicEndToEnd, ::testing::Values(LinkKind::Usb, LinkKind::Ethernet), nameOf);

namespace {

std::mutex allLock;
std::condition_variable allDone;
int allCalls = 0;
void allComplete() {
    {
        std::lock_guard<std::mutex> guard(allLock);
        ++allCalls;
    }
    allDone.notify_all();
}

void prepareFourProbes(KavroNetwork& network, int sets) {
    for (int i = 0; i < 4; ++i) network.AddModule("GPDYN0000" + std::to_string(i), "");
    network.setNetSpeed(eNetSpeed::High);
    KavroDynamic& dynamic = *network.Dynamic();
    dynamic.setNumberOfModules(4);
    dynamic.setCollectionSize(sets);
    dynamic.setEnabled(true);
    dynamic.Prepare();
}

}  // namespace

// One start and one callback for a USB and an Ethernet network; a network
// that cannot start stops the ones already streaming.
TEST(DynamicOnEveryNetwork, OneCallbackWhenAllAreDoneOrNoneStreams) {
    std::string probes;
    for (int i = 0; i < 4; ++i) {
        probes += "module probe GPDYN0000" + std::to_string(i) + " range=5 signal=constant:" + std::to_string(kLevels[i]) + "\n";
    }
    UsbStandIn usb("controller usb identity=USBALL0001 firmware=150\n" + probes);
    SimControllerConfig config = SimControllerConfig::ethernet("ETHALL0001");
    config.typeCode = "ETH2";
    SimController ethernet(config);
    for (const SimModule& probe : fourProbes()) ethernet.addModule(probe);
    SimEthernetFace face(ethernet);
    face.start();
    ConfigurationHome home;
    home.writeUserFile(ConfigurationHome::settings("    <network controllertype=\"ETHIM\"><networkname>Line</networkname><address>" +
                                                   face.location() + "</address></network>\n"));
    {
        KavroServer server;
        KavroNetworks& networks = *server.Networks();
        networks.FindNetworks();
        ASSERT_EQ(2u, networks.Count());
        networks.ConnectAll();
        for (unsigned n = 0; n < 2; ++n) prepareFourProbes(*networks.Network(n), 1000);

        allCalls = 0;
        server.StartAllDynamic(&allComplete);
        {
            std::unique_lock<std::mutex> guard(allLock);
            ASSERT_TRUE(allDone.wait_for(guard, std::chrono::seconds(20), [] { return allCalls > 0; }));
        }
        for (unsigned n = 0; n < 2; ++n) {
            KavroDynamicData& data = *networks.Network(n)->Dynamic()->DynamicData();
            EXPECT_EQ(1000, data.ReadingCount()) << "network " << n;
            EXPECT_NEAR(kLevels[3], data.GetItem(3, 999).value, 0.001);
        }
        EXPECT_FALSE(server.DynamicInProgress());

        // The second network is not prepared: the first stops again.
        networks.Network(0)->Dynamic()->setCollectionSize(0);
        networks.Network(0)->Dynamic()->Prepare();
        EXPECT_THROW(server.StartAllDynamic(&allComplete), std::runtime_error);
        EXPECT_EQ(eDynamicState::Complete, networks.Network(0)->Dynamic()->DynamicState());
        EXPECT_FALSE(server.DynamicInProgress());
    }
    face.stop();
}
