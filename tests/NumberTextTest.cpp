// Number text: filtering, extraction, formatting and locale independence.
#include <gtest/gtest.h>

#include "MessageOf.h"

#include <iostream>
#include <locale>
#include <stdexcept>
#include <string>

#include "KavroLibrary.h"

using namespace KavroLibrary;

namespace {

// A locale whose decimal point is a comma and whose thousands are grouped
// with dots, as many European locales are.
struct CommaDecimal : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class CommaLocale {
public:
    CommaLocale()
        : oldGlobal_(std::locale::global(std::locale(std::locale::classic(), new CommaDecimal))),
          oldCout_(std::cout.imbue(std::locale())) {}
    ~CommaLocale() {
        std::cout.imbue(oldCout_);
        std::locale::global(oldGlobal_);
    }

private:
    std::locale oldGlobal_;
    std::locale oldCout_;
};

void expectParseFails(const std::string& text) {
    EXPECT_EQ("Unable to parse number.", messageOf([&] { (void)KavroNumberStrToDouble(text); })) << text;
    EXPECT_THROW((void)KavroNumberStrToInt(text), std::runtime_error);
}

void checkParsingAndFormatting() {
    EXPECT_EQ(42, KavroNumberStrToInt("  42  "));
    EXPECT_EQ(42, KavroNumberStrToInt("4 2"));
    EXPECT_EQ(12, KavroNumberStrToInt("12.7"));
    EXPECT_EQ(13, KavroNumberStrToInt("1e3"));
    EXPECT_EQ(5, KavroNumberStrToInt("+5"));
    EXPECT_EQ(1234, KavroNumberStrToInt("1,234"));
    EXPECT_EQ(5, KavroNumberStrToInt("5-"));
    EXPECT_EQ(-17, KavroNumberStrToInt("L-17x"));
    EXPECT_DOUBLE_EQ(1.5, KavroNumberStrToDouble("1.5e-3"));
    EXPECT_DOUBLE_EQ(13.0, KavroNumberStrToDouble("1e3"));
    EXPECT_DOUBLE_EQ(0.0, KavroNumberStrToDouble("0.000"));
    EXPECT_DOUBLE_EQ(-0.25, KavroNumberStrToDouble(" -0.25 mm"));
    EXPECT_DOUBLE_EQ(16384.0, KavroNumberStrToDouble("16384.00"));

    EXPECT_EQ("0.1", KavroNumberDoubleToStr(0.1, 3));
    EXPECT_EQ("2", KavroNumberDoubleToStr(2.0, 6));
    EXPECT_EQ("1.5", KavroNumberDoubleToStr(1.5, 6));
    EXPECT_EQ("1.23457e+06", KavroNumberDoubleToStr(1234567, 6));
    EXPECT_EQ("-0.125", KavroNumberDoubleToStr(-0.125, 10));
}

}  // namespace

TEST(NumberText, FiltersThenExtractsOneNumber) { checkParsingAndFormatting(); }

TEST(NumberText, TextWithoutANumberFails) {
    expectParseFails("");
    expectParseFails("   ");
    expectParseFails("mm");
    expectParseFails("--5");
    expectParseFails("-");
    expectParseFails(".");
    // Larger than an int: the extraction fails rather than wrapping.
    EXPECT_THROW((void)KavroNumberStrToInt("99999999999"), std::runtime_error);
}

TEST(NumberText, CommaDecimalLocaleChangesNothing) {
    CommaLocale comma;
    checkParsingAndFormatting();
    EXPECT_EQ("1234.5", KavroNumberDoubleToStr(1234.5, 10));
    EXPECT_EQ(1234, KavroNumberStrToInt("1234"));
}
