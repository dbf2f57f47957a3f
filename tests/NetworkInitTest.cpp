// Controller initialisation on connect, and the reset at every speed.
#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "network/InitNetwork.h"

using namespace KavroLibrary;

namespace {

struct ControllerCase {
    const char* type;
    const char* limit;
    const char* version;
    const char* description;
    int modules;
    eNetworkType networkType;
    bool usbExtended;
};

}  // namespace

TEST(InitNetwork, LimitKindAndDescriptionComeFromTheController) {
    const ControllerCase cases[] = {
        {"ETHI", "L032", "1.20 ", "ETHIM (CTRL000001)", 32, eNetworkType::Unknown, false},
        {"ETH2", "L0100", "1.20 ", "ETHIM 2 (CTRL000001)", 100, eNetworkType::ETHIM2, false},
        {"ETHI", "L12345", "1.20 ", "ETHIM (CTRL000001)", 1234, eNetworkType::Unknown, false},
        {"USB2", "XL032", "1.18 ", "USBIM (CTRL000001)", 200, eNetworkType::Unknown, true},
        {"USB2", "L032", "1.17 ", "USBIM (CTRL000001)", 32, eNetworkType::Unknown, false},
        {"232I", "", "1.20 ", "RS232IM (CTRL000001)", 200, eNetworkType::Unknown, false},
        {"485I", "Lxyz", "1.20 ", "RS232IM (CTRL000001)", 200, eNetworkType::Unknown, false},
        {"WXYZ", "L008", "1.20 ", "WXYZ (CTRL000001)", 8, eNetworkType::Unknown, false},
    };
    for (const ControllerCase& expected : cases) {
        SCOPED_TRACE(std::string(expected.type) + " " + expected.limit);
        FakeNetwork fake;
        fake.bus.controllerType = expected.type;
        fake.bus.limitText = expected.limit;
        fake.bus.controllerVersion = expected.version;
        fake.config()->ActiveOperation = OperationNotifying;
        ASSERT_TRUE(fake.bus.connect());
        EXPECT_TRUE(fake.network.IsConnected());
        EXPECT_EQ(OperationIdle, fake.config()->ActiveOperation);
        EXPECT_EQ(expected.description, fake.network.Description());
        EXPECT_EQ("CTRL000001", fake.network.ControllerID());
        EXPECT_EQ(expected.modules, fake.network.MaximumAllowableNumberOfModules());
        EXPECT_EQ(expected.networkType, fake.network.NetworkType());
        EXPECT_EQ(expected.usbExtended, fake.config()->UsbExtendedMode);
        EXPECT_EQ(expected.usbExtended ? 0x40 : 0, fake.config()->UsbExtendedByte);
        EXPECT_EQ(expected.usbExtended ? 2 : 0, fake.config()->UsbExtendedValue);
        EXPECT_EQ(160, fake.config()->ControllerValue);
    }
}

// A controller that answers get-info but not identify (one that answers
// neither is NetworkEndToEndFailure's).
TEST(InitNetwork, SilentControllerLeavesTheNetworkUnconnected) {
    FakeNetwork fake;
    fake.bus.controllerAnswersIdentify = false;
    DiagnosticCapture errors;
    EXPECT_FALSE(fake.bus.connect());
    EXPECT_EQ("Controller Identify Failed\n", errors.text());
    EXPECT_FALSE(fake.network.IsConnected());
    EXPECT_EQ("Unknown Network", fake.network.Description());
    EXPECT_EQ("", fake.network.ControllerID());
}

TEST(InitNetwork, ResetAllSpeedsResetsAtEverySpeedAndEndsLow) {
    FakeNetwork fake;
    FakeModule& probe = fake.bus.add(FakeProbe("PROBE00001"));
    probe.address = 3;
    fake.config()->ControllerSpeeds = {eNetSpeed::Low, eNetSpeed::High};
    fake.config()->NetSpeed = eNetSpeed::High;

    fake.config()->ResetAllSpeedsHook(fake.config());

    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::Low}), fake.bus.speedRequests);
    EXPECT_EQ(2u, fake.bus.commandsWithCode('R').size());
    EXPECT_EQ(0, probe.address);
    EXPECT_EQ(eNetSpeed::Low, fake.network.NetSpeed());
}
