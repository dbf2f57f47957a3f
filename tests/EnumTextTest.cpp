// Text forms of the enumerations.
#include <gtest/gtest.h>

#include "MessageOf.h"

#include <stdexcept>

#include "KavroLibrary.h"

using namespace KavroLibrary;

namespace {
void expectConversionError(const std::function<void()>& f) { EXPECT_EQ("StringToEnum Conversion Error", messageOf(f)); }
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

// Tables whose values have gaps or come from characters.
TEST(EnumText, NonContiguousValuesAndExactTexts) {
    EXPECT_EQ("ETHIM2", eNetworkType_ToString(static_cast<eNetworkType>(19)));
    EXPECT_EQ(4095, static_cast<int>(eChannelMask_FromString("ChALL")));
    EXPECT_EQ("Preset", eWHT_MeasurementMode_ToString(static_cast<eWHT_MeasurementMode>('P')));
    EXPECT_EQ("average256", eAveraging_ToString(static_cast<eAveraging>(256)));
}

TEST(EnumText, ErrorCodesRoundTrip) {
    EXPECT_EQ(0x2112, static_cast<int>(eKavroErrors_FromString("UnderRange")));
    EXPECT_EQ(0x400000, static_cast<int>(eKavroErrors_FromString("Empty")));
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
