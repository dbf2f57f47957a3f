// The settings of the mode companions that need no bus: buffered intervals,
// enables and master index, and dynamic settings.
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

// A network holding modules made directly, with third-generation capabilities.
class ModeSettings : public ::testing::Test {
protected:
    template <typename Module>
    Module* addModule(eModuleType type) {
        NetworkConfiguration* config = network.Configuration();
        auto* module = new Module(config, static_cast<int>(config->Modules.size()) + 1);
        module->ReadType()->ModuleType = type;
        module->ReadType()->Generation = eGeneration::Kavro3;
        network.setModuleCapabilities(module);
        config->Modules.push_back(module);
        return module;
    }

    KavroNetwork network{0, "Modes"};
};

}  // namespace

TEST_F(ModeSettings, BufferedIntervalRules) {
    ModuleBuffered* buffered = addModule<KavroModuleDP>(eModuleType::DP)->Buffered();
    EXPECT_EQ(40, buffered->OTUs());
    buffered->setOTUs(41);
    EXPECT_EQ(4198, buffered->ReadingInterval());  // 4198.4 truncated
    EXPECT_EQ("Invalid OTU", messageOf([&] { buffered->setOTUs(39); }));
    EXPECT_EQ(41, buffered->OTUs());

    buffered->setReadingInterval(1000);
    EXPECT_EQ(40, buffered->OTUs());
    EXPECT_EQ(-3096, buffered->ReadingIntervalErrorUs());
    buffered->setReadingInterval(10000);  // 97.7 units: rounds to 80
    EXPECT_EQ(80, buffered->OTUs());
    EXPECT_EQ(10000 - 8192, buffered->ReadingIntervalErrorUs());
    EXPECT_EQ("Reading interval too large", messageOf([&] { buffered->setReadingInterval(6710785); }));
    buffered->setReadingInterval(6710784);
    EXPECT_EQ(65520, buffered->OTUs());
    buffered->setOTUs(50);
    EXPECT_EQ(0, buffered->ReadingIntervalErrorUs());

    network.Configuration()->ActiveOperation = OperationDifference;
    EXPECT_EQ("Cannot change OTUs whilst the network is busy", messageOf([&] { buffered->setOTUs(80); }));
    EXPECT_EQ("Cannot change OTUs whilst the network is busy", messageOf([&] { buffered->setReadingInterval(8000); }));
    EXPECT_EQ("Cannot change buffered mode whilst the network is busy",
              messageOf([&] { buffered->setMode(eBufferedMode::Sync); }));
    EXPECT_EQ(50, buffered->OTUs());
    network.Configuration()->ActiveOperation = OperationIdle;
}

TEST_F(ModeSettings, BufferedEnableAndMasterIndex) {
    KavroModuleDP* probe = addModule<KavroModuleDP>(eModuleType::DP);
    KavroModuleAIM* analogue = addModule<KavroModuleAIM>(eModuleType::AIM);
    addModule<KavroModuleEIM>(eModuleType::EIM);
    probe->Buffered()->setEnabled(true);
    EXPECT_EQ("Module is not buffered capable", messageOf([&] { analogue->Buffered()->setEnabled(true); }));
    analogue->Buffered()->setEnabled(false);
    EXPECT_EQ(1, network.Buffered()->EnabledCount());

    NetworkBuffered* buffered = network.Buffered();
    buffered->setMasterIndex(3);  // past the end: nothing happens
    buffered->setMasterIndex(-2);
    EXPECT_EQ(-1, buffered->MasterIndex());
    EXPECT_EQ("Buffered master must be at the end of a buffered collection",
              messageOf([&] { buffered->setMasterIndex(0); }));
    EXPECT_EQ("Specified module is not capable of being a buffered master",
              messageOf([&] { buffered->setMasterIndex(1); }));
    buffered->setMasterIndex(2);
    EXPECT_EQ(2, buffered->MasterIndex());
}

TEST_F(ModeSettings, EncoderInputMasterHooks) {
    KavroModuleEIM* master = addModule<KavroModuleEIM>(eModuleType::EIM);
    // No bus answers here: the set-up commands fail and the master stays unarmed.
    EXPECT_EQ(0u, master->SetupDynamicMaster(2, 100, eDynamicRate::Rate1K)
                      .rfind("Failed to set up the dynamic master at address 1: ", 0));
    EXPECT_FALSE(master->DynamicMasterArmed());
    master->setDynamicMasterMode(eDynamicMasterMode::Refaction_Reset);
    EXPECT_EQ("Dynamic master mode Refaction_Reset needs a reference mark action.\n",
              master->SetupDynamicMaster(2, 100, eDynamicRate::Rate1K));
    EXPECT_FALSE(master->DynamicMasterArmed());
    master->setRefAction(eRefAction::Reset);
    EXPECT_EQ("", master->ValidateDynamicMaster());

    KavroModuleDP* probe = addModule<KavroModuleDP>(eModuleType::DP);
    EXPECT_EQ(
        "Unexpected error: Attempt to setup a dynamic master on a module that is not dynamic master "
        "capable.\n",
        probe->SetupDynamicMaster(1, 0, eDynamicRate::Rate4K));
    EXPECT_EQ("This module is not dynamic capable.\n", probe->ValidateDynamicMaster());
    KavroModuleEIM* early = addModule<KavroModuleEIM>(eModuleType::LEIM);
    EXPECT_EQ("This module is not dynamic capable.\n", early->ValidateDynamicMaster());
}

TEST_F(ModeSettings, DynamicSettingsAndState) {
    KavroDynamic* dynamic = network.Dynamic();
    NetworkConfiguration* config = network.Configuration();
    EXPECT_EQ(256, dynamic->MinimumInterval());
    EXPECT_EQ("Dynamic read interval too short.", messageOf([&] { dynamic->setDynamicInterval(255); }));
    EXPECT_TRUE(dynamic->ValidateInterval(0));
    EXPECT_FALSE(dynamic->ValidateInterval(100));
    EXPECT_EQ("Dynamic collection size must be >= 0.", messageOf([&] { dynamic->setCollectionSize(-1); }));

    config->DynamicState = eDynamicState::Reading;
    config->DynamicRunning = true;
    EXPECT_EQ(eDynamicState::Reading, dynamic->DynamicState());
    config->DynamicRunning = false;
    EXPECT_EQ(eDynamicState::Processing, dynamic->DynamicState());
    config->DynamicState = eDynamicState::Inactive;
}
