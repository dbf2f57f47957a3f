// Adding, choosing the class of, deleting and clearing modules.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <typeinfo>

#include "NetworkTestSupport.h"

using namespace KavroLibrary;
using Bytes = FakeModuleBus::Bytes;

namespace {

Bytes setAddress(const std::string& identity, int address) {
    Bytes bytes(13, 0);
    bytes[0] = 'S';
    bytes[1] = static_cast<unsigned char>(address);
    for (std::size_t i = 0; i < 10 && i < identity.size(); ++i) bytes[2 + i] = static_cast<unsigned char>(identity[i]);
    return bytes;
}

Bytes setMode(int address, int mode) {
    return {'V', static_cast<unsigned char>(address), static_cast<unsigned char>(mode), 0, 0, 0};
}

const Bytes kApplySpeed{'W', 0, 10};

}  // namespace

TEST(AddModule, AddressesIdentifiesAndSetsCapabilities) {
    FakeNetwork fake;
    // With no modules: Low only, buffered allowed, no read-burst.
    EXPECT_EQ(std::vector<eNetSpeed>{eNetSpeed::Low}, fake.network.AvailableSpeeds());
    EXPECT_TRUE(fake.network.BufferedCapable());
    EXPECT_FALSE(fake.network.ReadBurstCapable());
    fake.bus.add(FakeProbe("PROBE00001", 150));
    fake.bus.add(FakeProbe("PROBE00002", 50, false));
    ASSERT_TRUE(fake.bus.connect());
    EXPECT_TRUE(fake.network.IsConnected());

    fake.network.AddModule("PROBE00001", "");
    fake.network.AddModule("PROBE00002", "");

    ASSERT_EQ(2, fake.network.ModuleCount());
    EXPECT_EQ(setAddress("PROBE00001", 1), fake.bus.commandsWithCode('S').at(0));
    EXPECT_EQ(setAddress("PROBE00002", 2), fake.bus.commandsWithCode('S').at(1));
    KavroModule* first = fake.network.GetModule(0);
    KavroModule* second = fake.network.GetModule(1);
    EXPECT_EQ(nullptr, fake.network.GetModule(2));
    EXPECT_EQ(second, fake.network.GetModuleByID("PROBE00002"));
    EXPECT_EQ(nullptr, fake.network.GetModuleByID("probe00002"));
    EXPECT_EQ(1, fake.network.GetModuleIndexByID("PROBE00002"));
    EXPECT_EQ(-1, fake.network.GetModuleIndexByID("NOBODY0001"));
    EXPECT_EQ(1, first->Address());
    EXPECT_EQ(typeid(KavroModuleDP), typeid(*first));
    // New information format, third generation; an older probe decoded from its type alone.
    EXPECT_EQ(eGeneration::Kavro3, first->KavroGeneration());
    EXPECT_EQ(3u, static_cast<KavroModuleDP*>(first)->AvailableResolutions().size());
    EXPECT_EQ(9u, static_cast<KavroModuleDP*>(first)->AvailableAveragings().size());
    EXPECT_EQ(eGeneration::Kavro2_A, second->KavroGeneration());
    EXPECT_FALSE(second->SpeedAvailable(eNetSpeed::UltraHigh));
    EXPECT_TRUE(static_cast<KavroModuleDP*>(second)->AvailableResolutions().empty());
    // The network answers for its weakest module.
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), fake.network.AvailableSpeeds());
    EXPECT_EQ(1, fake.network.ReadBurstCapableCount());
    EXPECT_TRUE(fake.network.ReadBurstCapable());
    EXPECT_TRUE(fake.network.BufferedCapable());
    EXPECT_TRUE(fake.network.DynamicCapable());
    EXPECT_FALSE(fake.network.Dynamic2Capable());
    fake.config()->DynamicFlag = false;
    EXPECT_FALSE(fake.network.DynamicCapable());
}

TEST(AddModule, ClassFollowsTheDecodedKind) {
    struct Kind {
        const char* typeText;
        const std::type_info& type;
    };
    const Kind kinds[] = {
        {"DP  ", typeid(KavroModuleDP)},  {"DA  ", typeid(KavroModuleAIM)},   {"LE  ", typeid(KavroModuleLE)},
        {"DE  ", typeid(KavroModuleEIM)}, {"DH  ", typeid(KavroModuleLEIM)},  {"DIOM", typeid(KavroModuleDIOM)},
        {"DIM ", typeid(KavroModuleDIM)}, {"DP2 ", typeid(KavroModuleLTH)},   {"DP1 ", typeid(KavroModuleLT)},
        {"WCM ", typeid(KavroModuleWCM)}, {"DIO2", typeid(KavroModuleDIOM2)}, {"DP4 ", typeid(KavroModuleAGM)},
        {"DP5 ", typeid(KavroModuleLTA)}, {"DP3 ", typeid(KavroModule)},      {"BASE", typeid(KavroModule)},
        {"XYZ ", typeid(KavroModule)},
    };
    FakeNetwork fake;
    int number = 0;
    for (const Kind& kind : kinds) {
        FakeModule module = FakeProbe("MODULE" + std::to_string(1000 + number++));
        module.typeText = kind.typeText;
        fake.bus.add(module);
    }
    ASSERT_TRUE(fake.bus.connect());
    for (const FakeModule& module : std::vector<FakeModule>(fake.bus.modules)) {
        SCOPED_TRACE(module.typeText);
        fake.network.AddModule(module.identity, "");
        KavroModule* added = fake.network.GetModuleByID(module.identity);
        ASSERT_NE(nullptr, added);
        EXPECT_EQ(kinds[added->Address() - 1].type, typeid(*added));
    }
    // The decoded kind makes encoder input (DE) and DIO2 modules masters, not LEIM (DH); DIM has no dynamic.
    EXPECT_TRUE(fake.network.GetModuleByID("MODULE1003")->DynamicMasterCapable());
    EXPECT_TRUE(fake.network.GetModuleByID("MODULE1010")->BufferedMasterCapable());
    EXPECT_FALSE(fake.network.GetModuleByID("MODULE1004")->DynamicMasterCapable());  // LEIM
    EXPECT_FALSE(fake.network.GetModuleByID("MODULE1006")->DynamicCapable());        // DIM
}

TEST(AddModule, RefusalsLeaveTheListAsItWas) {
    FakeNetwork fake;
    fake.bus.add(FakeProbe("PROBE00001"));
    fake.bus.add(FakeProbe("PROBE00002"));
    EXPECT_EQ("Not connected to Kavro!", messageOf([&] { fake.network.AddModule("PROBE00001", ""); }));
    ASSERT_TRUE(fake.bus.connect());
    fake.network.AddModule("PROBE00001", "");
    fake.bus.clearRecords();
    EXPECT_EQ("Module Identity NOBODY0001. Unable to add module.",
              messageOf([&] { fake.network.AddModule("NOBODY0001", ""); }));
    EXPECT_EQ(1, fake.network.ModuleCount());
    EXPECT_TRUE(fake.bus.commandsWithCode('I').empty());

    fake.config()->ActiveOperation = OperationNotifyEnding;
    EXPECT_EQ("Cannot add a module during an Kavro operation",
              messageOf([&] { fake.network.AddModule("PROBE00002", ""); }));
    fake.config()->ActiveOperation = OperationIdle;
    EXPECT_EQ(1, fake.network.ModuleCount());
}

TEST(AddModule, ProbeReadsItsPowerUpAveraging) {
    FakeNetwork fake;
    FakeModule remembered = FakeProbe("PROBE00001");
    remembered.memory = {0x20, 0x00};
    fake.bus.add(remembered);
    FakeModule legacy = FakeProbe("CLASSIC001");
    legacy.answersGetInfo = false;
    fake.bus.add(legacy);
    FakeModule refusing = FakeProbe("PROBE00003");
    refusing.memoryError = 0x03;
    fake.bus.add(refusing);
    FakeModule wide = FakeProbe("PROBE00004");
    wide.memory = {0x00, 0x01};  // low byte first
    fake.bus.add(wide);
    ASSERT_TRUE(fake.bus.connect());
    for (const char* identity : {"PROBE00001", "CLASSIC001", "PROBE00003", "PROBE00004"}) {
        fake.network.AddModule(identity, "");
    }

    auto averaging = [&](int index) {
        return static_cast<KavroModuleDP*>(fake.network.GetModule(static_cast<unsigned>(index)))->Averaging();
    };
    EXPECT_EQ(eAveraging::average32, averaging(0));
    EXPECT_EQ(eAveraging::average16, averaging(1));
    EXPECT_EQ(eAveraging::average16, averaging(2));
    EXPECT_EQ(eAveraging::average256, averaging(3));

    // The classic probe (no get-info answer) is not asked; a refusal keeps 16.
    const std::vector<Bytes> reads = fake.bus.commandsWithCode('M');
    ASSERT_EQ(3u, reads.size());
    EXPECT_EQ(1, reads[0].at(1));
    EXPECT_EQ(3, reads[1].at(1));
    EXPECT_EQ((Bytes{0x76, 0xF0, 0x01, 0x08, 0x02}), Bytes(reads[0].begin() + 2, reads[0].end()));
    EXPECT_EQ(eGeneration::Classic, fake.network.GetModule(1)->KavroGeneration());
}

TEST(NetworkSpeed, AdditionsDropToLowAndChangesReachEveryModule) {
    FakeNetwork fake;
    fake.bus.add(FakeProbe("PROBE00001"));
    fake.bus.add(FakeProbe("PROBE00002"));
    fake.bus.add(FakeProbe("OLDPROBE01", 120));
    EXPECT_EQ("Not connected to Kavro.", messageOf([&] { fake.network.setNetSpeed(eNetSpeed::Low); }));
    ASSERT_TRUE(fake.bus.connect());
    fake.network.AddModule("PROBE00001", "");
    fake.network.setNetSpeed(eNetSpeed::UltraHigh);
    fake.bus.clearRecords();

    fake.network.AddModule("PROBE00002", "");
    EXPECT_EQ(eNetSpeed::UltraHigh, fake.network.NetSpeed());
    EXPECT_EQ(setMode(1, 40), fake.bus.commands.front());
    const std::vector<Bytes> modes = fake.bus.commandsWithCode('V');
    ASSERT_EQ(3u, modes.size());
    EXPECT_EQ(setMode(1, 42), modes[1]);
    EXPECT_EQ(setMode(2, 42), modes[2]);
    EXPECT_EQ(kApplySpeed, fake.bus.commands.back());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::UltraHigh}), fake.bus.speedRequests);

    // A second-generation module cannot go that fast: the bus stays at Low, and Low again changes nothing.
    fake.network.AddModule("OLDPROBE01", "");
    fake.bus.clearRecords();
    fake.network.setNetSpeed(eNetSpeed::Low);
    EXPECT_EQ("Kavro speed not supported by the network and module combination.",
              messageOf([&] { fake.network.setNetSpeed(eNetSpeed::UltraHigh); }));
    EXPECT_TRUE(fake.bus.commands.empty());
    EXPECT_TRUE(fake.bus.speedRequests.empty());
    fake.network.setNetSpeed(eNetSpeed::High);
    EXPECT_EQ((std::vector<Bytes>{setMode(1, 41), setMode(2, 41), setMode(3, 41), kApplySpeed}), fake.bus.commands);
    // Without the older module the faster speed is offered again.
    fake.network.DeleteModule("OLDPROBE01");
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh}),
              fake.network.AvailableSpeeds());

    fake.config()->ActiveOperation = OperationDifference;
    EXPECT_EQ("Cannot change network speed whilst performing an Kavro operation.",
              messageOf([&] { fake.network.setNetSpeed(eNetSpeed::Low); }));
    // A notification still ending restores its own speed first: the
    // application's change waits for it.
    fake.config()->ActiveOperation = OperationNotifyEnding;
    std::thread change([&] { fake.network.setNetSpeed(eNetSpeed::Low); });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(150);
    while (std::chrono::steady_clock::now() < deadline && fake.network.NetSpeed() != eNetSpeed::Low) {
        std::this_thread::yield();
    }
    EXPECT_EQ(eNetSpeed::High, fake.network.NetSpeed());
    fake.config()->ActiveOperation = OperationIdle;
    change.join();
    EXPECT_EQ(eNetSpeed::Low, fake.network.NetSpeed());
}

TEST(DeleteModule, LaterModulesMoveDownOneAddressAndClearResetsTheBus) {
    FakeNetwork fake;
    for (const char* identity : {"PROBE00001", "PROBE00002", "PROBE00003"}) fake.bus.add(FakeProbe(identity));
    ASSERT_TRUE(fake.bus.connect());
    for (const char* identity : {"PROBE00001", "PROBE00002", "PROBE00003"}) fake.network.AddModule(identity, "");
    fake.bus.clearRecords();

    EXPECT_EQ("Invalid module index.", messageOf([&] { fake.network.DeleteModule(3); }));
    EXPECT_EQ("Invalid module index.", messageOf([&] { fake.network.DeleteModule(-1); }));
    fake.config()->ActiveOperation = OperationNotifying;
    EXPECT_EQ("Cannot delete a module whilst performing an Kavro operation.",
              messageOf([&] { fake.network.DeleteModule(0); }));
    fake.config()->ActiveOperation = OperationIdle;
    fake.network.DeleteModule("NOBODY0001");
    EXPECT_TRUE(fake.bus.commands.empty());

    KavroModule* first = fake.network.GetModule(0);
    fake.network.DeleteModule(0);
    EXPECT_EQ((std::vector<Bytes>{{'C', 1}, setAddress("PROBE00002", 1), setAddress("PROBE00003", 2)}),
              fake.bus.commands);
    // The application's pointer stays, but no longer reaches the bus.
    EXPECT_THROW(first->ReadingInCounts(), KavroException);
    ASSERT_EQ(2, fake.network.ModuleCount());
    EXPECT_EQ("PROBE00002", fake.network.GetModule(0)->ModuleID());
    EXPECT_EQ(2, fake.network.GetModule(1)->Address());
    // A deleted module can come back, at the next address.
    fake.network.AddModule("PROBE00001", "");
    EXPECT_EQ(3, fake.network.GetModuleByID("PROBE00001")->Address());
    fake.network.DeleteModule("PROBE00001");
    // Deleting the last module readdresses nobody.
    fake.bus.clearRecords();
    fake.network.DeleteModule("PROBE00003");
    EXPECT_EQ((std::vector<Bytes>{{'C', 2}}), fake.bus.commands);

    fake.network.setNetSpeed(eNetSpeed::High);
    fake.bus.clearRecords();
    fake.config()->ActiveOperation = OperationBuffered;
    EXPECT_EQ("Cannot clear modules whilst performing an Kavro operation.",
              messageOf([&] { fake.network.ClearModules(); }));
    EXPECT_EQ(1, fake.network.ModuleCount());
    fake.config()->ActiveOperation = OperationIdle;
    fake.network.ClearModules();
    EXPECT_EQ(0, fake.network.ModuleCount());
    EXPECT_EQ((std::vector<Bytes>{{'R', 0}}), fake.bus.commands);
    EXPECT_EQ(std::vector<eNetSpeed>{eNetSpeed::High}, fake.bus.speedRequests);
    EXPECT_EQ(0, fake.bus.withIdentity("PROBE00002")->address);

    fake.network.AddModule("PROBE00001", "");
    fake.network.Disconnect();
    EXPECT_FALSE(fake.network.IsConnected());
    EXPECT_EQ(0, fake.network.ModuleCount());
}
