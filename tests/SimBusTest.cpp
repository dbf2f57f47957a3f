// Addressing, reset, speed and discovery rules of the simulated bus, seen
// through a raw Ethernet connection.
#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

namespace {

void expectSilent(const Reply& reply) {
    EXPECT_EQ(255, reply.status);
    EXPECT_TRUE(reply.data.empty());
}

}  // namespace

TEST(SimBus, AddressesAreTakenByIdentityAndLostByClearAndReset) {
    EthernetRig rig;
    rig.controller.addModule(SimModule::digitalProbe("GPAAAAAAA1", 2));
    rig.controller.addModule(SimModule::digitalProbe("GPBBBBBBB2", 5));
    WireClient& c = *rig.client;

    // Unaddressed modules answer nothing addressed, and only their own identity moves them.
    expectSilent(c.command(addressed('I', 1), 30));
    expectSilent(c.command(setAddress("GPZZZZZZZ9", 1), 2));
    EXPECT_EQ((Bytes{'S', 1}), c.command(setAddress("GPAAAAAAA1", 1), 2).data);
    EXPECT_EQ((Bytes{'S', 2}), c.command(setAddress("GPBBBBBBB2", 2), 2).data);
    EXPECT_EQ(concat(Bytes{'i'}, text("GPBBBBBBB2")), c.command(addressed('i', 2), 11).data);
    const Reply identify = c.command(addressed('I', 1), 30);
    ASSERT_EQ(30u, identify.data.size());
    EXPECT_EQ("GPAAAAAAA1", std::string(identify.data.begin() + 1, identify.data.begin() + 11));
    // Address 0 is for broadcasts: nobody answers a command with a reply there.
    expectSilent(c.command(addressed('I', 0), 30));

    // Clear unaddresses one module.
    EXPECT_EQ('C', c.command(addressed('C', 1), 2).data.at(0));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ(0, rig.controller.module("GPAAAAAAA1")->address());
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));

    // An addressed module moves when set-address names it again (renumbering).
    EXPECT_EQ((Bytes{'S', 1}), c.command(setAddress("GPBBBBBBB2", 1), 2).data);
    expectSilent(c.command(addressed('I', 2), 30));

    // Reset and clear-TCON unaddress every module.
    c.command(setAddress("GPAAAAAAA1", 2), 2);
    c.broadcast(Bytes{'R', 0});
    expectSilent(c.command(addressed('I', 1), 30));
    expectSilent(c.command(addressed('I', 2), 30));
    c.command(setAddress("GPAAAAAAA1", 1), 2);
    c.broadcast(Bytes{'r', 0});
    expectSilent(c.command(addressed('I', 1), 30));
}

TEST(SimBus, ModulesHearOnlyTheControllersSpeed) {
    EthernetRig rig;
    SimModule oldProbe = SimModule::digitalProbe("GPOLD00001", 2);
    oldProbe.setGeneration(0);
    SimModule midProbe = SimModule::digitalProbe("GPMID00002", 2);
    midProbe.setGeneration(2);
    rig.addressModule(SimModule::digitalProbe("GPNEW00003", 2), 1);
    rig.addressModule(oldProbe, 2);
    rig.addressModule(midProbe, 3);
    WireClient& c = *rig.client;

    rig.setControllerSpeed(5);
    expectSilent(c.command(addressed('I', 1), 30));
    rig.setControllerSpeed(0);
    EXPECT_EQ('I', c.command(addressed('I', 1), 30).data.at(0));

    // Set-mode only chooses the speed; the control action 10 applies it.
    EXPECT_EQ((Bytes{'V', 0}), c.command(setMode(1, 41, 0), 2).data);
    c.broadcast(Bytes{'W', 0, 3});  // a sample trigger is not the speed action
    EXPECT_EQ('I', c.command(addressed('I', 1), 30).data.at(0));
    EXPECT_EQ((Bytes{'!', 0x40}), c.command(setMode(2, 41, 0), 2).data) << "generation 0 stays at Low";
    EXPECT_EQ((Bytes{'!', 0x40}), c.command(setMode(3, 42, 0), 2).data) << "UltraHigh needs generation 3";
    c.broadcast(Bytes{'W', 0, 10});
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));
    rig.setControllerSpeed(5);
    EXPECT_EQ('I', c.command(addressed('I', 1), 30).data.at(0));
    EXPECT_EQ(SimSpeed::High, rig.controller.busSpeed());

    // A reset at High reaches only the module at High, which falls back to Low.
    c.broadcast(Bytes{'R', 0});
    expectSilent(c.command(addressed('I', 1), 30));
    rig.setControllerSpeed(0);
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));
    EXPECT_EQ(SimSpeed::Low, rig.controller.module("GPNEW00003")->speed());

    // The controller refuses what it does not offer and keeps its speed.
    rig.setControllerSpeed(3, 1);
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());
}

TEST(SimBus, ControllerSpeedsFollowTypeAndFirmware) {
    SimControllerConfig oldEthernet = SimControllerConfig::ethernet("ETHSIM0002");
    oldEthernet.firmwareNumber = 149;
    EXPECT_EQ(std::vector<SimSpeed>{SimSpeed::Low}, oldEthernet.supportedSpeeds());
    SimControllerConfig serial = SimControllerConfig::serial("SERSIM0002");
    serial.firmwareNumber = 150;
    EXPECT_EQ(std::vector<SimSpeed>{SimSpeed::Low}, serial.supportedSpeeds());
    serial.firmwareNumber = 151;
    EXPECT_EQ((std::vector<SimSpeed>{SimSpeed::Low, SimSpeed::High}), serial.supportedSpeeds());
    serial.speeds = {SimSpeed::High};
    EXPECT_THROW(serial.validate(), std::invalid_argument);
}

TEST(SimBus, NotifyPingAndSelfAddressingModules) {
    EthernetRig rig;
    // Same byte sum, so the same ping slot.
    rig.controller.addModule(SimModule::digitalProbe("AAAAAAAAAB", 2));
    rig.controller.addModule(SimModule::digitalProbe("AAAAAAAABA", 2));
    rig.controller.addModule(SimModule::linearEncoder("LE00000001"));
    WireClient& c = *rig.client;

    // Nobody announcing: no answer, but only after the controller listened a while.
    const auto start = std::chrono::steady_clock::now();
    expectSilent(c.command(Bytes{'N', 0}, 11));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 45ms);
    rig.controller.announce("LE00000001");
    EXPECT_EQ(concat(Bytes{'N'}, text("LE00000001")), c.command(Bytes{'N', 0}, 11).data);
    expectSilent(c.command(Bytes{'N', 0}, 11));

    auto checksumHolds = [](const Bytes& reply) {
        int sum = 0;
        for (int i = 1; i <= 10; ++i) sum += static_cast<signed char>(reply.at(i));
        return ((sum + (reply.at(11) << 8 | reply.at(12))) & 0xFFFF) == 0xFFFF;
    };
    const int encoderSlot = rig.controller.module("LE00000001")->pingSlot();
    const Reply alone = c.command(Bytes{':', static_cast<std::uint8_t>(encoderSlot), 0}, 13);
    ASSERT_EQ(13u, alone.data.size());
    EXPECT_EQ("LE00000001", std::string(alone.data.begin() + 1, alone.data.begin() + 11));
    EXPECT_TRUE(checksumHolds(alone.data));
    const int sharedSlot = rig.controller.module("AAAAAAAAAB")->pingSlot();
    ASSERT_NE(sharedSlot, encoderSlot);
    const Reply collided = c.command(Bytes{':', static_cast<std::uint8_t>(sharedSlot), 0}, 13);
    ASSERT_EQ(13u, collided.data.size());
    EXPECT_FALSE(checksumHolds(collided.data));
    // Addressed modules keep quiet.
    c.command(setAddress("LE00000001", 1), 2);
    expectSilent(c.command(Bytes{':', static_cast<std::uint8_t>(encoderSlot), 0}, 13));

    // A self-addressing module takes the next free address.
    rig.controller.hotPlug(SimModule::dio2("DO00000001"));
    EXPECT_EQ(2, rig.controller.module("DO00000001")->address());
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));
    EXPECT_THROW(rig.controller.addModule(SimModule::dio2("DO00000001")), std::invalid_argument);
}

TEST(SimBus, ModulesCanBeReplacedAndRemovedWhileServed) {
    EthernetRig rig;
    rig.addressModule(SimModule::digitalProbe("GP00000001", 2), 1);
    WireClient& c = *rig.client;
    rig.controller.replaceModule("GP00000001", SimModule::linearEncoder("LE00000001"));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ((Bytes{'S', 1}), c.command(setAddress("LE00000001", 1), 2).data);
    EXPECT_TRUE(rig.controller.removeModule("LE00000001"));
    EXPECT_FALSE(rig.controller.removeModule("LE00000001"));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_THROW(rig.controller.setSignal("LE00000001", SimSignal::constant(1)), std::invalid_argument);
    EXPECT_THROW(rig.controller.replaceModule("GP00000001", SimModule::dio2("DO00000001")), std::invalid_argument);
}
