// The capability rules a new module gets, by class, kind and generation.
#include <gtest/gtest.h>

#include <memory>

#include "NetworkTestSupport.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

class Capabilities : public ::testing::Test {
protected:
    template <typename Module>
    std::unique_ptr<Module> make(eModuleType type, int generation, std::string description = "Module") {
        auto module = std::make_unique<Module>(network.Configuration(), 1);
        KavroReadType* readType = module->ReadType();
        readType->ModuleType = type;
        readType->Generation = static_cast<eGeneration>(generation);
        readType->Description = std::move(description);
        readType->InfoText = NewFormatInfo();
        network.setModuleCapabilities(module.get());
        return module;
    }

    KavroNetwork network{0, "Capabilities"};
};

}  // namespace

TEST_F(Capabilities, ByGenerationAndTheOneDeviceTypeWithoutHotSwap) {
    auto probe = make<KavroModuleDP>(eModuleType::DP, 3, "Digital Probe");
    EXPECT_TRUE(probe->HotSwapCapable());
    EXPECT_TRUE(probe->ReadburstCapable());
    EXPECT_TRUE(probe->BufferedCapable());
    EXPECT_TRUE(probe->DynamicCapable());
    EXPECT_TRUE(probe->Dynamic2Capable());
    EXPECT_EQ(eDifferenceMode::Mode2, probe->Difference()->Mode());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh}),
              probe->AvailableSpeeds());
    EXPECT_FALSE((make<KavroModuleDP>(eModuleType::DP, 3, "Gauge 504217-1 rev B")->HotSwapCapable()));
    EXPECT_TRUE((make<KavroModuleDP>(eModuleType::DP, 3, "Gauge 504217-2")->HotSwapCapable()));

    // Classic and unknown generations only read at Low.
    for (int generation : {0, 4}) {
        SCOPED_TRACE(generation);
        auto old = make<KavroModuleDP>(eModuleType::DP, generation);
        EXPECT_EQ(std::vector<eNetSpeed>{eNetSpeed::Low}, old->AvailableSpeeds());
        EXPECT_FALSE(old->HotSwapCapable());
        EXPECT_FALSE(old->ReadburstCapable());
        EXPECT_FALSE(old->BufferedCapable());
        EXPECT_FALSE(old->DynamicCapable());
        EXPECT_FALSE(old->Dynamic2Capable());
        EXPECT_EQ(eDifferenceMode::Mode1, old->Difference()->Mode());
    }
}

TEST_F(Capabilities, DynamicBufferedMasterAndDifferenceFollowClassKindAndGeneration) {
    // Second generation: dynamic for probes, analogue inputs, first DIOMs and
    // encoder inputs, including classes derived from them.
    EXPECT_TRUE((make<KavroModuleAIM>(eModuleType::AIM, 2)->DynamicCapable()));
    EXPECT_TRUE((make<KavroModuleDIOM>(eModuleType::DIOM, 2)->DynamicCapable()));
    EXPECT_TRUE((make<KavroModuleLEIM>(eModuleType::LEIM, 1)->DynamicCapable()));
    EXPECT_FALSE((make<KavroModuleDIOM2>(eModuleType::DIO2, 2)->DynamicCapable()));
    EXPECT_FALSE((make<KavroModuleLE>(eModuleType::LE, 2)->DynamicCapable()));
    // Third generation: dynamic unless a DIM; buffered for probes and DIOMs.
    auto dim = make<KavroModuleDIM>(eModuleType::DIM, 3);
    EXPECT_FALSE(dim->DynamicCapable());
    EXPECT_TRUE(dim->Dynamic2Capable());
    EXPECT_FALSE(dim->BufferedCapable());
    EXPECT_TRUE((make<KavroModuleDIOM>(eModuleType::DIOM, 3)->BufferedCapable()));
    EXPECT_TRUE((make<KavroModuleDIOM2>(eModuleType::DIO2, 3)->BufferedCapable()));
    EXPECT_FALSE((make<KavroModuleEIM>(eModuleType::EIM, 3)->BufferedCapable()));
    // Masters: third-generation encoder inputs and DIO2s, by kind not class.
    EXPECT_TRUE((make<KavroModuleEIM>(eModuleType::EIM, 3)->DynamicMasterCapable()));
    EXPECT_TRUE((make<KavroModuleDIOM2>(eModuleType::DIO2, 3)->BufferedMasterCapable()));
    EXPECT_FALSE((make<KavroModuleLEIM>(eModuleType::LEIM, 3)->DynamicMasterCapable()));
    EXPECT_FALSE((make<KavroModuleEIM>(eModuleType::EIM, 2)->BufferedMasterCapable()));
    // Difference kind.
    EXPECT_EQ(eDifferenceMode::Mode1, (make<KavroModuleDP>(eModuleType::DP, 2)->Difference()->Mode()));
    EXPECT_EQ(eDifferenceMode::Mode2, (make<KavroModuleLE>(eModuleType::LE, 3)->Difference()->Mode()));
    EXPECT_EQ(eDifferenceMode::Mode2, (make<KavroModuleLEIM>(eModuleType::LEIM, 3)->Difference()->Mode()));
    EXPECT_EQ(eDifferenceMode::ModeNone, (make<KavroModuleEIM>(eModuleType::EIM, 2)->Difference()->Mode()));
    auto aim = make<KavroModuleAIM>(eModuleType::AIM, 3);
    EXPECT_EQ(eDifferenceMode::ModeNone, aim->Difference()->Mode());
    EXPECT_FALSE(aim->DifferenceModeCapable());
}

TEST_F(Capabilities, EarlyDiomsCannotAnswerTheStatusQuery) {
    auto early = make<KavroModuleDIOM>(eModuleType::DIOM, 2);
    FakeModuleBus bus(network.Configuration());
    EXPECT_EQ("This module is not GetStatus capable", messageOf([&] { early->ModuleStatus()->UpdateStatus(); }));
    EXPECT_TRUE(bus.commands.empty());
    auto later = make<KavroModuleDIOM>(eModuleType::DIOM, 3);
    EXPECT_THROW(later->ModuleStatus()->UpdateStatus(), std::runtime_error);  // nobody answers
    EXPECT_EQ(1u, bus.commandsWithCode('G').size());
}

// The lower of the two masters, not the minimum one, less the end band (pressure output is in XmlElementTest).
TEST(AirGauge, SizeOffsetFollowsTheLowerMaster) {
    KavroNetwork network(0, "Air");
    KavroModuleAGM gauge(network.Configuration(), 1);
    gauge.setMasterMinReadingInUOM(2.0);
    gauge.setMasterMaxReadingInUOM(1.5);
    gauge.setEndBandSizeMicrons(500.0);
    EXPECT_DOUBLE_EQ(1.0, gauge.ReadType()->SizeOffset);
    gauge.ReadType()->SizeOffset = 0.0;
    KavroNetwork::agm_init(&gauge);
    EXPECT_DOUBLE_EQ(1.0, gauge.ReadType()->SizeOffset);
}
