// The rule that folds raw range markers into a reading's error.
#include <gtest/gtest.h>

#include "core/ErrorDictionary.h"

using namespace KavroLibrary;
using E = eKavroErrors;

namespace {
E fold(E current, int low, int high, E forced = E::NoError, E reply = E::NoError) {
    setError(current, low, high, forced, reply);
    return current;
}
}  // namespace

TEST(SetError, RangeMarkersCombine) {
    EXPECT_EQ(E::NoError, fold(E::NoError, 10, 20));
    EXPECT_EQ(E::UnderRange, fold(E::NoError, 0x8000, 20));
    EXPECT_EQ(E::UnderRange, fold(E::NoError, 20, 0x8000));
    EXPECT_EQ(E::OverRange, fold(E::NoError, 10, 0xFFFF));
    EXPECT_EQ(E::OverAndUnderRange, fold(E::NoError, 0x8000, 0xFFFF));
    EXPECT_EQ(E::OverAndUnderRange, fold(E::UnderRange, 10, 0xFFFF));
    EXPECT_EQ(E::OverAndUnderRange, fold(E::OverRange, 0x8000, 10));
    // A recorded range code stays when the new values are in range.
    EXPECT_EQ(E::UnderRange, fold(E::UnderRange, 10, 20));
    EXPECT_EQ(E::OverRange, fold(E::OverRange, 10, 0xFFFF));
    // Combined stays combined only through the markers: it is a real code.
    EXPECT_EQ(E::OverAndUnderRange, fold(E::OverAndUnderRange, 10, 20));
}

TEST(SetError, RealErrorsWinAndForcedCodesIgnoreValues) {
    EXPECT_EQ(E::BUFFER_FULL, fold(E::NoError, 0x8000, 20, E::NoError, E::BUFFER_FULL));
    EXPECT_EQ(E::Timeout, fold(E::NoError, 0x8000, 0xFFFF, E::Timeout));
    EXPECT_EQ(E::Timeout, fold(E::BUFFER_FULL, 1, 2, E::Timeout, E::UnderRange));
    EXPECT_EQ(E::WRONG_MODE, fold(E::WRONG_MODE, 0x8000, 0xFFFF));
    // A reply range code is combined with the markers.
    EXPECT_EQ(E::OverAndUnderRange, fold(E::NoError, 10, 0xFFFF, E::NoError, E::UnderRange));
    EXPECT_EQ(E::OverRange, fold(E::NoError, 10, 20, E::NoError, E::OverRange));
}
