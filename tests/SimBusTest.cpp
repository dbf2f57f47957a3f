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

// Catches modules that answer unaddressed, at address 0 or to another
// identity, and a clear that reaches more than its module. (Reset and
// clear-TCON are covered end to end.)
TEST(SimBus, AddressesAreTakenByIdentityAndLostByClear) {
    EthernetRig rig;
    rig.controller.addModule(SimModule::digitalProbe("GPAAAAAAA1", 2));
    rig.controller.addModule(SimModule::digitalProbe("GPBBBBBBB2", 5));
    WireClient& c = *rig.client;

    expectSilent(c.command(addressed('I', 1), 30));
    expectSilent(c.command(setAddress("GPZZZZZZZ9", 1), 2));
    EXPECT_EQ((Bytes{'S', 1}), c.command(setAddress("GPAAAAAAA1", 1), 2).data);
    EXPECT_EQ((Bytes{'S', 2}), c.command(setAddress("GPBBBBBBB2", 2), 2).data);
    EXPECT_EQ(concat(Bytes{'i'}, text("GPBBBBBBB2")), c.command(addressed('i', 2), 11).data);
    expectSilent(c.command(addressed('I', 0), 30));  // address 0 is for broadcasts
    EXPECT_EQ('C', c.command(addressed('C', 1), 2).data.at(0));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));
}

// Catches a speed taken before action 10, speeds granted to generations that
// lack them, a reset reaching modules at another speed, and a refused
// controller speed that is applied anyway.
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

    // A reset at High reaches only the module at High, which falls back to Low.
    c.broadcast(Bytes{'R', 0});
    expectSilent(c.command(addressed('I', 1), 30));
    rig.setControllerSpeed(0);
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ('I', c.command(addressed('I', 2), 30).data.at(0));
    EXPECT_EQ(SimSpeed::Low, rig.controller.module("GPNEW00003")->speed());

    rig.setControllerSpeed(3, 1);
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());
}

// Catches the firmware bands of the controller speeds off by one.
TEST(SimBus, ControllerSpeedsFollowTypeAndFirmware) {
    SimControllerConfig ethernet = SimControllerConfig::ethernet("ETHSIM0002");
    EXPECT_EQ((std::vector<SimSpeed>{SimSpeed::Low, SimSpeed::High, SimSpeed::UltraHigh}), ethernet.supportedSpeeds());
    ethernet.firmwareNumber = 149;
    EXPECT_EQ(std::vector<SimSpeed>{SimSpeed::Low}, ethernet.supportedSpeeds());
    SimControllerConfig serial = SimControllerConfig::serial("SERSIM0002");
    serial.firmwareNumber = 150;
    EXPECT_EQ(std::vector<SimSpeed>{SimSpeed::Low}, serial.supportedSpeeds());
    serial.firmwareNumber = 151;
    EXPECT_EQ((std::vector<SimSpeed>{SimSpeed::Low, SimSpeed::High}), serial.supportedSpeeds());
    serial.speeds = {SimSpeed::High};
    EXPECT_THROW(serial.validate(), std::invalid_argument);
}

// Catches a notify that answers silence at once, duplicate identities, and
// replaced or removed modules that still answer.
TEST(SimBus, NotifyWaitAndModuleChangesWhileServed) {
    EthernetRig rig;
    WireClient& c = *rig.client;
    const auto start = std::chrono::steady_clock::now();
    expectSilent(c.command(Bytes{'N', 0}, 11));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 45ms) << "the controller listens a while";

    rig.addressModule(SimModule::digitalProbe("GP00000001", 2), 1);
    EXPECT_THROW(rig.controller.addModule(SimModule::digitalProbe("GP00000001", 2)), std::invalid_argument);
    rig.controller.replaceModule("GP00000001", SimModule::linearEncoder("LE00000001"));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_EQ((Bytes{'S', 1}), c.command(setAddress("LE00000001", 1), 2).data);
    EXPECT_TRUE(rig.controller.removeModule("LE00000001"));
    EXPECT_FALSE(rig.controller.removeModule("LE00000001"));
    expectSilent(c.command(addressed('I', 1), 30));
    EXPECT_THROW(rig.controller.setSignal("LE00000001", SimSignal::constant(1)), std::invalid_argument);
    EXPECT_THROW(rig.controller.replaceModule("GP00000001", SimModule::dio2("DO00000001")), std::invalid_argument);
}
