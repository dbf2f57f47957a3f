// Hot-swap search, ping, remap, clearing the bus and read-burst, against the
// simulated bus.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "SimNetworkRig.h"

using namespace KavroLibrary;
using namespace kavrosim;

namespace {

std::vector<int> pingSlotsAsked(const SimNetworkRig& rig) {
    std::vector<int> slots;
    for (const SimRequest& request : rig.logged(':')) slots.push_back(request.command.at(1));
    return slots;
}

}  // namespace

TEST(HotSwap, AdoptsSelfAddressedModulesAndCountsTheLastAttempt) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0201"), {simProbe("GP00000201", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000201", "");
    network.setNetSpeed(eNetSpeed::High);

    // Nobody new: one identify, answered by silence.
    rig.controller.clearRequestLog();
    EXPECT_EQ(1u, network.FindHotswapped());
    ASSERT_EQ(1u, rig.logged('I').size());
    EXPECT_EQ(2, rig.logged('I').front().command.at(1));
    EXPECT_EQ(1, network.ModuleCount());

    rig.controller.hotPlug(simProbe("GP00000202", 0.5));
    rig.controller.hotPlug(SimModule::linearEncoder("LE00000203"));
    EXPECT_EQ(3u, network.FindHotswapped());
    ASSERT_EQ(3, network.ModuleCount());
    EXPECT_EQ("LE00000203", network.GetModule(2)->ModuleID());
    EXPECT_EQ(3, network.GetModule(2)->Address());
    EXPECT_NEAR(0.5, network.GetModule(1)->ReadingInUnits(), 1e-3);
    EXPECT_EQ(SimSpeed::High, rig.controller.busSpeed()) << "the speed is restored";
}

TEST(Ping, AddsLoneModulesAndCountsCollisionsAsErrors) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0202"));
    rig.controller.addModule(simProbe("GP00000211", 1.0));
    // Same byte sum, so the same slot: their answers collide.
    rig.controller.addModule(simProbe("AAAAAAAAAB", 1.0));
    rig.controller.addModule(simProbe("AAAAAAAABA", 1.0));
    rig.controller.addModule(simProbe("GP00000212", 0.25));
    const int collidingSlot = rig.controller.module("AAAAAAAAAB")->pingSlot();
    const int loneSlot = rig.controller.module("GP00000212")->pingSlot();
    ASSERT_NE(collidingSlot, loneSlot);
    rig.connect();
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000211", "");  // addressed: keeps quiet
    rig.controller.clearRequestLog();

    EXPECT_EQ(1, network.Ping());
    ASSERT_EQ(2, network.ModuleCount());
    EXPECT_EQ(2, rig.controller.module("GP00000212")->address());
    EXPECT_NEAR(0.25, network.GetModule(1)->ReadingInUnits(), 1e-3);
    EXPECT_EQ(0, rig.controller.module("AAAAAAAAAB")->address());

    const std::vector<int> slots = pingSlotsAsked(rig);
    EXPECT_EQ(std::set<int>(slots.begin(), slots.end()).size(), 32u) << "every slot is searched";
    EXPECT_EQ(30, std::count(slots.begin(), slots.end(), collidingSlot)) << "a collision is an error, 30 end the slot";
    EXPECT_EQ(2, std::count(slots.begin(), slots.end(), 0)) << "two silences end a slot";
    EXPECT_EQ(3, std::count(slots.begin(), slots.end(), loneSlot)) << "a found module, then two silences";
}

TEST(Ping, RefusesANewModuleBeyondTheControllersLimit) {
    SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0203");
    config.limitText = "L001";
    SimNetworkRig rig(config, {simProbe("GP00000221", 1.0), simProbe("GP00000222", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000221", "");
    network.setNetSpeed(eNetSpeed::High);

    EXPECT_EQ("Module Limit Reached", messageOf([&] { network.Ping(); }));
    EXPECT_EQ(1, network.ModuleCount());
    EXPECT_EQ(eNetSpeed::High, network.NetSpeed()) << "the bus is left as it was found";
    rig.network->Disconnect();
    EXPECT_EQ("Network not connected.", messageOf([&] { network.Ping(); }));
}

TEST(Remap, MovesOnlyTheModulesThatChangePlace) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0204"));
    for (const char* identity : {"GP00000231", "GP00000232", "GP00000233"}) {
        rig.controller.addModule(simProbe(identity, 1.0));
    }
    rig.connect();
    KavroNetwork& network = *rig.network;
    for (const char* identity : {"GP00000231", "GP00000232", "GP00000233"}) network.AddModule(identity, identity);
    KavroModule* first = network.GetModule(0);
    KavroModule* second = network.GetModule(1);
    KavroModule* third = network.GetModule(2);

    // Refused remaps change nothing and send nothing.
    rig.controller.clearRequestLog();
    first->setRemapIndex(3);
    EXPECT_EQ("Remap index invalid.", messageOf([&] { network.ApplyRemap(); }));
    first->setRemapIndex(1);
    third->setRemapIndex(1);
    EXPECT_EQ("Duplicate remap index", messageOf([&] { network.ApplyRemap(); }));
    EXPECT_TRUE(rig.logged('S').empty());

    first->setRemapIndex(2);
    second->setRemapIndex(-1);
    third->setRemapIndex(0);
    network.ApplyRemap();

    const std::vector<SimRequest> moves = rig.logged('S');
    ASSERT_EQ(2u, moves.size()) << "the second module already has address 2";
    EXPECT_EQ(1, moves[0].command.at(1));
    EXPECT_EQ("GP00000233", std::string(moves[0].command.begin() + 2, moves[0].command.begin() + 12));
    EXPECT_EQ(3, moves[1].command.at(1));
    EXPECT_EQ(third, network.GetModule(0));
    EXPECT_EQ(second, network.GetModule(1));
    EXPECT_EQ(first, network.GetModule(2));
    for (KavroModule* module : {first, second, third}) EXPECT_EQ(-1, module->RemapIndex());
    EXPECT_EQ("GP00000231", network.GetModule(2)->GetProbeID()) << "the bus agrees with the list";
}

TEST(ClearTCons, UnaddressesTheBusAtEverySpeedAndKeepsTheObjects) {
    SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0205");
    config.typeCode = "ETH2";
    SimNetworkRig rig(config, {simProbe("GP00000241", 1.0), simProbe("GP00000242", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000241", "Kept");
    network.AddModule("GP00000242", "");
    network.setNetSpeed(eNetSpeed::UltraHigh);
    KavroModule* kept = network.GetModule(0);

    network.ClearTCons();
    EXPECT_EQ(0, network.ModuleCount());
    EXPECT_EQ("Kept", kept->ModuleName()) << "a pointer the application holds stays valid";
    for (const char* identity : {"GP00000241", "GP00000242"}) {
        EXPECT_EQ(0, rig.controller.module(identity)->address());
        EXPECT_EQ(SimSpeed::Low, rig.controller.module(identity)->speed());
    }
    EXPECT_EQ(SimSpeed::UltraHigh, rig.controller.busSpeed());
    EXPECT_EQ(3u, rig.logged('r').size());
}

TEST(Readburst, ReadsTheLeadingCapableModulesWithTheirStatus) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0206"));
    rig.controller.addModule(simProbe("GP00000251", 1.0));
    rig.controller.addModule(simProbe("GP00000252", -0.5));  // below its range
    SimModule encoder = SimModule::linearEncoder("LE00000253");
    encoder.setSignal(SimSignal::constant(-1.5));  // a negative count
    rig.controller.addModule(encoder);
    SimModule older = simProbe("GP00000254", 1.0);
    older.setGeneration(2);
    rig.controller.addModule(older);
    rig.connect();
    KavroNetwork& network = *rig.network;

    int count = -1;
    EXPECT_EQ(eKavroErrors::NoError, network.Readburst(count));
    EXPECT_EQ(0, count) << "no modules";

    for (const char* identity : {"GP00000251", "GP00000252", "LE00000253", "GP00000254"}) {
        network.AddModule(identity, "");
    }
    rig.controller.clearRequestLog();
    EXPECT_EQ(eKavroErrors::NoError, network.Readburst(count));
    EXPECT_EQ(3, count) << "the older probe cannot take part";
    ASSERT_EQ(1u, rig.logged('T').size());
    EXPECT_EQ(3, rig.logged('T').front().command.at(1));

    KavroModule* good = network.GetModule(0);
    KavroModule* under = network.GetModule(1);
    KavroModule* negative = network.GetModule(2);
    KavroModule* notCapable = network.GetModule(3);
    EXPECT_EQ(8192, good->LastReadburst_InCounts());
    EXPECT_NEAR(1.0, good->LastReadburst_InUnitsOfMeasure(), 1e-9);
    EXPECT_EQ(0x2112, under->LastReadburst_Error());
    EXPECT_EQ(0, under->LastReadburst_InCounts());
    EXPECT_EQ(-1500, negative->LastReadburst_InCounts());
    EXPECT_NEAR(-1.5, negative->LastReadburst_InUnitsOfMeasure(), 1e-9);
    EXPECT_EQ("No readburst data available.", messageOf([&] { notCapable->LastReadburst_InCounts(); }));

    // A refused burst marks the modules it asked for with the module's error.
    rig.controller.injectFault(SimFault::errorReply(0x05).only('T'));
    EXPECT_EQ(static_cast<eKavroErrors>(0x2105), network.Readburst(count));
    EXPECT_EQ(0x2105, good->LastReadburst_Error());

    // With the first module not capable nothing is sent.
    for (int i = 0; i < 3; ++i) network.DeleteModule(0);
    rig.controller.clearRequestLog();
    EXPECT_EQ(eKavroErrors::NoError, network.Readburst(count));
    EXPECT_EQ(0, count);
    EXPECT_TRUE(rig.logged('T').empty());
}
