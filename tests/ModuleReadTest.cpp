// Single reads, the last read-burst record, the status query and the probe
// identity of a module.
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "core/ErrorDictionary.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

struct ModuleReads : OneProbeTest {
    void SetUp() override {
        loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
        OneProbeTest::SetUp();
    }
};

std::string refusalOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const KavroException&) {
        return "KavroException";
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST_F(ModuleReads, CountsAndUnitsWithTheCountOffset) {
    onBus->reading = 1000;
    EXPECT_EQ(1000, module->ReadingInCounts());
    EXPECT_EQ((std::vector<FakeModuleBus::Bytes>{{'L', 1}}), fake.bus.commands);
    EXPECT_DOUBLE_EQ(1000.0 / 8192.0, module->ReadingInUnits());
    module->setCountOffset(100);
    EXPECT_EQ(900, module->ReadingInCounts());
    module->setCountOffset(0);
    module->ReadType()->ReadType = 1;
    onBus->reading = 0x12345;
    fake.bus.clearRecords();
    EXPECT_EQ(0x2345, module->ReadingInCounts());
    EXPECT_EQ((std::vector<FakeModuleBus::Bytes>{{'1', 1}}), fake.bus.commands);
}

TEST_F(ModuleReads, RangeReadingsAreReturnedOtherErrorsThrown) {
    onBus->readError = 0x12;
    module->ReadType()->SizeOffset = 0.25;
    EXPECT_EQ(0, module->ReadingInCounts());
    EXPECT_EQ(0x2112, module->ModuleStatus()->ErrorCode());
    EXPECT_DOUBLE_EQ(module->Offset() + 0.25, module->ReadingInUnits());

    onBus->readError = 0x13;
    EXPECT_EQ(16384, module->ReadingInCounts());
    module->ReadType()->ResolutionFactor = 16;
    EXPECT_EQ(262144, module->ReadingInCounts());
    EXPECT_EQ(0x2113, module->ModuleStatus()->ErrorCode());

    // Other errors throw with their text: a module error, then a module gone quiet.
    onBus->readError = 0x05;
    for (int code : {0x2105, 255}) {
        EXPECT_EQ(code, errorCodeOf([&] { module->ReadingInCounts(); }));
        EXPECT_EQ(GetErrorDescriptionInternal(code), messageOf([&] { module->ReadingInCounts(); }));
        EXPECT_NE("Unknown Error", GetErrorDescriptionInternal(code));
        onBus->address = 0;
    }
}

TEST_F(ModuleReads, RefusedDuringOperationsAndWithoutAReadCommand) {
    onBus->reading = 7;
    fake.config()->ActiveOperation = OperationNotifying;
    EXPECT_EQ("Cannot perform an kavro read during an kavro operation", refusalOf([&] { module->ReadingInCounts(); }));
    fake.config()->ActiveOperation = OperationBuffered;
    EXPECT_EQ("Cannot perform an kavro read during an kavro operation", refusalOf([&] { module->ReadingInUnits(); }));

    fake.config()->ActiveOperation = OperationDifference;
    EXPECT_EQ(7, module->ReadingInCounts());
    fake.config()->ActiveOperation = OperationIdle;
    module->Difference()->setEnabled(true);
    fake.config()->ActiveOperation = OperationDifference;
    EXPECT_EQ("Cannot perform an kavro read during an kavro difference operation",
              refusalOf([&] { module->ReadingInCounts(); }));
    fake.config()->ActiveOperation = OperationIdle;

    module->ReadType()->ReadType = 0;
    fake.bus.clearRecords();
    EXPECT_EQ("Internal Error: Unknown Read Type", refusalOf([&] { module->ReadingInCounts(); }));
    EXPECT_TRUE(fake.bus.commands.empty());
}

TEST_F(ModuleReads, LastReadburstNeedsAResultAndPassesRangeCodes) {
    const char* none = "No readburst data available.";
    EXPECT_EQ(none, refusalOf([&] { module->LastReadburst_InCounts(); }));
    EXPECT_EQ(none, refusalOf([&] { module->LastReadburst_InUnitsOfMeasure(); }));

    for (int code : {0, 0x2112, 0x2113, 0x10001}) {
        module->setLastReadburst(true, code, 42, 1.5);
        EXPECT_EQ(42, module->LastReadburst_InCounts()) << code;
        EXPECT_DOUBLE_EQ(1.5, module->LastReadburst_InUnitsOfMeasure()) << code;
        EXPECT_EQ(code, module->LastReadburst_Error());
    }
    module->setLastReadburst(true, 0x2105, 42, 1.5);
    EXPECT_EQ(0x2105, module->LastReadburst_Error());
    EXPECT_EQ(0x2105, errorCodeOf([&] { module->LastReadburst_InCounts(); }));
    EXPECT_THROW(module->LastReadburst_InUnitsOfMeasure(), KavroException);
    module->setLastReadburst(false, 255, 0, 0.0);
    EXPECT_EQ(none, refusalOf([&] { module->LastReadburst_Error(); }));
}

TEST_F(ModuleReads, StatusQueryAndProbeIdentityAskTheModule) {
    EXPECT_EQ("PROBE00001", module->GetProbeID());
    fake.bus.clearRecords();
    onBus->statusWord = 0x1234;
    module->ModuleStatus()->UpdateStatus();
    EXPECT_EQ(0x1234, module->ModuleStatus()->Status());
    EXPECT_EQ(0, module->ModuleStatus()->ErrorCode());
    EXPECT_EQ((std::vector<FakeModuleBus::Bytes>{{'G', 1}}), fake.bus.commands);

    onBus->statusError = 0x05;
    module->ModuleStatus()->UpdateStatus();
    EXPECT_EQ(0x2105, module->ModuleStatus()->ErrorCode());
    EXPECT_EQ(GetErrorDescriptionInternal(0x2105), module->ModuleStatus()->ErrorString());

    onBus->address = 0;
    EXPECT_EQ("Get status error - " + GetErrorDescriptionInternal(255),
              refusalOf([&] { module->ModuleStatus()->UpdateStatus(); }));
    EXPECT_EQ(0x1234, module->ModuleStatus()->Status());
    EXPECT_EQ("KavroException", refusalOf([&] { module->GetProbeID(); }));
}
