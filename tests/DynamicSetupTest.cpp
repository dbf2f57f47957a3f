// Dynamic set-up: limits, validation texts, preparing the modules and the
// refusals of a start the links cannot carry out.
#include <gtest/gtest.h>

#include <stdexcept>

#include "NetworkTestSupport.h"

using namespace KavroLibrary;

namespace {

struct DynamicNetwork : FakeNetwork {
    explicit DynamicNetwork(int probes) {
        for (int i = 0; i < probes; ++i) {
            const std::string id = "DYN" + std::string(i < 10 ? "000000" : "00000") + std::to_string(i);
            bus.add(FakeProbe(id));
        }
        EXPECT_TRUE(bus.connect());
        for (const FakeModule& m : bus.modules) network.AddModule(m.identity, "");
        network.setNetSpeed(eNetSpeed::High);
    }
    KavroDynamic& dynamic() { return *network.Dynamic(); }
};

}  // namespace

TEST(DynamicSetup, MinimumIntervalAndRateLimits) {
    DynamicNetwork ten(10);
    KavroDynamic& d = ten.dynamic();
    d.setNumberOfModules(10);
    EXPECT_EQ(274, d.MinimumInterval());  // 10 x 26 + 14
    EXPECT_EQ("Dynamic read interval too short.", messageOf([&] { d.setDynamicInterval(273); }));
    EXPECT_EQ("Dynamic read interval cannot be greater than 30 seconds",
              messageOf([&] { d.setDynamicInterval(30000001); }));
    d.setDynamicInterval(30000000);
    EXPECT_EQ(30000000, d.DynamicInterval());
    d.setDynamicInterval(0);

    d.setNumberOfModules(9);
    EXPECT_EQ("Too Many modules for this dynamic mode.\n", d.ValidateDynamic_Rate(eDynamicRate::Rate4K));
    d.setNumberOfModules(8);
    EXPECT_EQ("", d.ValidateDynamic_Rate(eDynamicRate::Rate4K));
    EXPECT_EQ("A dynamic collection requires at least one module\n", d.ValidateDynamic_NumModules(0));
    EXPECT_EQ("The number of modules in the dynamic collection exceeds the number of modules on the network.\n",
              d.ValidateDynamic_NumModules(11));
    EXPECT_EQ("Linked slave is not supported by this library.\n", d.ValidateDynamic_Mode(eDynamicMode::LinkedSlave));
    ten.network.setNetSpeed(eNetSpeed::Low);
    EXPECT_EQ("Traditional Dynamic(rates other than Dynamic 2) is only available at network speed High.\n",
              d.ValidateDynamic_NetSpeed(eNetSpeed::Low));
}

TEST(DynamicSetup, MasterIndexMustFollowTheCollection) {
    DynamicNetwork four(4);
    KavroDynamic& d = four.dynamic();
    d.setNumberOfModules(3);
    EXPECT_EQ("Dynamic external master index must be greater than the index of the last module in the collection.\n",
              messageOf([&] { d.setMasterIndex(2); }));
    EXPECT_EQ(-1, d.MasterIndex());
    EXPECT_EQ("No module at the dynamic master index.\n", messageOf([&] { d.setMasterIndex(4); }));
    // A probe cannot pace the bus.
    EXPECT_EQ("Module at the dynamic master index is not dynamic master capable.\n",
              messageOf([&] { d.setMasterIndex(3); }));
    EXPECT_EQ(-1, d.MasterIndex());
}

TEST(DynamicSetup, PrepareSwitchesModulesAndAnyChangeUnprepares) {
    FakeNetwork idle;  // neither enabled nor connected: a start does nothing
    idle.network.Dynamic()->StartDynamic();
    idle.network.Dynamic()->StopDynamic();
    EXPECT_EQ(eDynamicState::Inactive, idle.network.Dynamic()->DynamicState());

    DynamicNetwork three(3);
    KavroDynamic& d = three.dynamic();
    d.setNumberOfModules(2);
    d.setDynamicRate(eDynamicRate::Rate2K);
    d.setEnabled(true);
    three.bus.clearRecords();
    d.Prepare();
    EXPECT_EQ(eDynamicState::Prepared, d.DynamicState());
    const auto modes = three.bus.commandsWithCode('V');
    ASSERT_EQ(2u, modes.size());
    for (std::size_t i = 0; i < modes.size(); ++i) {
        EXPECT_EQ(i + 1, modes[i][1]) << "address";
        EXPECT_EQ(61, modes[i][2]) << "set-mode 61 is the 2 kHz rate";
    }
    d.setCollectionSize(100);
    EXPECT_EQ(eDynamicState::Inactive, d.DynamicState());

    d.Prepare();
    three.config()->ActiveOperation = OperationBuffered;
    EXPECT_EQ("Cannot change dynamic properties whilst the network is performing an operation.",
              messageOf([&] { d.setCollectionSize(5); }));
    EXPECT_EQ(eDynamicState::Prepared, d.DynamicState());
    three.config()->ActiveOperation = OperationIdle;

    // This link cannot stream: the start is refused and leaves nothing running.
    EXPECT_EQ("Controller is not dynamic capable", messageOf([&] { d.StartDynamic(); }));
    EXPECT_EQ(eDynamicState::Inactive, d.DynamicState());
    EXPECT_EQ(OperationIdle, three.config()->ActiveOperation.load());
    d.StopDynamic();  // nothing runs: returns at once
}
