// The digital probe's averaging, resolution and settings.
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

using Probe = OneProbeTest;

TEST_F(Probe, AveragingIsSentAndKeptOnlyWhenTheProbeAnswers) {
    probe->setAveraging(eAveraging::average8);
    EXPECT_EQ(eAveraging::average8, probe->Averaging());
    EXPECT_EQ((std::vector<FakeModuleBus::Bytes>{{'V', 1, 50, 0, 8, 0}}), fake.bus.commands);

    onBus->address = 0;
    EXPECT_EQ(255, errorCodeOf([&] { probe->setAveraging(eAveraging::average256); }));
    EXPECT_EQ(eAveraging::average8, probe->Averaging());
}

TEST_F(Probe, ResolutionScalesFullScaleAndUnits) {
    EXPECT_EQ(eResolution::res14Bit, probe->Resolution());
    probe->setResolution(eResolution::res18Bit);
    EXPECT_EQ((std::vector<FakeModuleBus::Bytes>{{'V', 1, 51, 0, 18, 0}}), fake.bus.commands);
    EXPECT_EQ(262144, probe->ReadType()->FullScale);
    onBus->reading = 16 * 8192;
    EXPECT_DOUBLE_EQ(1.0, probe->ReadingInUnits());
    probe->setResolution(eResolution::res16Bit);
    EXPECT_EQ(65536, probe->ReadType()->FullScale);
    probe->setResolution(eResolution::resNone);  // anything else means the basic factor
    EXPECT_EQ(16384, probe->ReadType()->FullScale);

    onBus->address = 0;
    EXPECT_EQ(-1, errorCodeOf([&] { probe->setResolution(eResolution::res16Bit); })) << "a plain error, not the link's";
    EXPECT_EQ("Unable to set resolution", messageOf([&] { probe->setResolution(eResolution::res16Bit); }));
    EXPECT_EQ(eResolution::res14Bit, probe->Resolution());

    probe->ReadType()->ResolutionFactor = 2;
    EXPECT_EQ(eResolution::resNone, probe->Resolution());
}

// The refusals to enable difference mode are in DifferenceModeTest; switching it off is always allowed.
TEST_F(Probe, DifferenceCanBeSwitchedOffDuringAnOperation) {
    probe->Difference()->setEnabled(true);
    fake.config()->ActiveOperation = OperationBuffered;
    probe->Difference()->setEnabled(false);
    EXPECT_FALSE(probe->Difference()->Enabled());
    fake.config()->ActiveOperation = OperationIdle;
}

TEST_F(Probe, LoadedSettingsThatDoNotFitAreSkipped) {
    probe->LoadXML({{"AVERAGING", "average4"}, {"RESOLUTION", "res20Bit"}});
    EXPECT_EQ(eAveraging::average4, probe->Averaging());
    EXPECT_EQ(eResolution::res14Bit, probe->Resolution());
    EXPECT_EQ(1u, fake.bus.commandsWithCode('V').size());

    probe->LoadXML({{"RESOLUTION", "res16Bit"}, {"Averaging", "average2"}});
    EXPECT_EQ(eResolution::res16Bit, probe->Resolution());
    EXPECT_EQ(eAveraging::average4, probe->Averaging());  // keys are upper case

    onBus->address = 0;
    probe->LoadXML({{"AVERAGING", "average64"}, {"RESOLUTION", "res18Bit"}});
    EXPECT_EQ(eAveraging::average4, probe->Averaging());
    EXPECT_EQ(eResolution::res16Bit, probe->Resolution());
}
