// Text forms of the enumerations.
#include <gtest/gtest.h>

#include <stdexcept>

#include "KavroEnums.h"
#include "KavroErrors.h"

using namespace KavroLibrary;

namespace {
template <typename F>
void expectConversionError(F f) {
    try {
        f();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ("StringToEnum Conversion Error", e.what());
    }
}
}  // namespace

TEST(EnumText, ExactCaseSensitiveMatch) {
    EXPECT_EQ(eNetSpeed::High, eNetSpeed_FromString("High"));
    EXPECT_EQ(5, static_cast<int>(eNetSpeed_FromString("High")));
    expectConversionError([] { eNetSpeed_FromString("high"); });
    expectConversionError([] { eNetSpeed_FromString(" High"); });
    expectConversionError([] { eNetSpeed_FromString(std::string("High\0", 5)); });
    expectConversionError([] { eNetSpeed_FromString(""); });
    expectConversionError([] { eKavroErrors_FromString("timeout"); });
}

TEST(EnumText, ValuesOutsideTheTableHaveNoText) {
    EXPECT_EQ("", eNetSpeed_ToString(static_cast<eNetSpeed>(3)));
    EXPECT_EQ("", eKavroErrors_ToString(static_cast<eKavroErrors>(12345)));
    EXPECT_EQ("", eChannelMask_ToString(static_cast<eChannelMask>(1)));
    EXPECT_EQ("", eDifferenceModeStatus_ToString(static_cast<eDifferenceModeStatus>(4)));
}

TEST(EnumText, NonContiguousValuesAndExactTexts) {
    EXPECT_EQ("MultiChannel", eModuleType_ToString(static_cast<eModuleType>(9)));
    EXPECT_EQ("ETHIM2", eNetworkType_ToString(static_cast<eNetworkType>(19)));
    EXPECT_EQ(eNetworkType::USBIM_Mk2, eNetworkType_FromString("USBIM_Mk2"));
    EXPECT_EQ(4095, static_cast<int>(eChannelMask_FromString("ChALL")));
    EXPECT_EQ("Ch2", eChannelMask_ToString(static_cast<eChannelMask>(2)));
    EXPECT_EQ(90, static_cast<int>(eWCM_DevicePZAMode_FromString("Zero")));
    EXPECT_EQ("Preset", eWHT_MeasurementMode_ToString(static_cast<eWHT_MeasurementMode>('P')));
    EXPECT_EQ(5, static_cast<int>(eDynamicMasterMode_FromString("Refaction_Reset")));
    EXPECT_EQ("millimeters", eUOM_ToString(eUOM::millimeters));
    EXPECT_EQ("mils", eUOM_ToString(static_cast<eUOM>(4)));
    EXPECT_EQ("Filter0Hz1", eFilter_ToString(static_cast<eFilter>(6)));
    EXPECT_EQ("Bluetooth_Class_1", eWHT_BluetoothClass_ToString(static_cast<eWHT_BluetoothClass>(1)));
    EXPECT_EQ("average256", eAveraging_ToString(static_cast<eAveraging>(256)));
    EXPECT_EQ(18, static_cast<int>(eResolution_FromString("res18Bit")));
    EXPECT_EQ(8, static_cast<int>(eInterfaceBaudRate_FromString("Baud460800")));
}

TEST(EnumText, ErrorCodesRoundTrip) {
    EXPECT_EQ("Timeout", eKavroErrors_ToString(eKavroErrors::Timeout));
    EXPECT_EQ(0x2112, static_cast<int>(eKavroErrors_FromString("UnderRange")));
    EXPECT_EQ(0x2192, static_cast<int>(eKavroErrors_FromString("Voltage_Error_5V_TOO_HIGH")));
    EXPECT_EQ(0x2193, static_cast<int>(eKavroErrors_FromString("ADC_FAULT")));
    EXPECT_EQ(0x400000, static_cast<int>(eKavroErrors_FromString("Empty")));
    EXPECT_EQ("DynamicStopped", eKavroErrors_ToString(static_cast<eKavroErrors>(242)));
    // Every code that has a text converts back to itself.
    int withText = 0;
    for (int code = 0; code <= 0x21FF; ++code) {
        const auto text = eKavroErrors_ToString(static_cast<eKavroErrors>(code));
        if (text.empty()) continue;
        ++withText;
        EXPECT_EQ(code, static_cast<int>(eKavroErrors_FromString(text)));
    }
    EXPECT_EQ(141, withText);  // all but the three library codes above 0x21FF
}
