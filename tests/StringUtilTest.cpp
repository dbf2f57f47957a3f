// Trimming, splitting, blank tests and upper-casing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KavroLibrary.h"

using namespace KavroLibrary;
using Tokens = std::vector<std::string>;

TEST(StringTrim, CutsBlanksAndTabsOnlyAtTheEnds) {
    EXPECT_EQ("ab c", StringTrim("\tab c\t "));
    EXPECT_EQ("", StringTrim("   "));
    EXPECT_EQ("", StringTrim(""));
    EXPECT_EQ("x", StringTrim(std::string("x\0", 2)));
    EXPECT_EQ("x", StringTrim(std::string("\0\0x\0", 4)));
    // An all-blank text keeps its tabs: only blanks are removed then.
    EXPECT_EQ("\t\t", StringTrim(" \t \t "));
    // Carriage return and line feed are content.
    EXPECT_EQ("a\r\n", StringTrim(" a\r\n "));
    EXPECT_EQ("\r", StringTrim("\r"));
}

TEST(StringSplit, KeepsTheOddTokensOfTheWalk) {
    EXPECT_EQ((Tokens{"1", "2", "3"}), StringSplit("1;2;3", ';'));
    EXPECT_EQ((Tokens{"1", "2"}), StringSplit("1;2;", ';'));
    EXPECT_EQ((Tokens{"a", ",b"}), StringSplit("a,,b", ','));
    EXPECT_EQ((Tokens{",a"}), StringSplit(",a", ','));
    EXPECT_EQ((Tokens{"a"}), StringSplit("a,", ','));
    EXPECT_EQ(Tokens{}, StringSplit("", ','));
    EXPECT_EQ((Tokens{"SET", "DELAY", "5"}), StringSplit("SET DELAY 5", ' '));
    // An embedded NUL is an ordinary character.
    EXPECT_EQ((Tokens{std::string("a\0b", 3)}), StringSplit(std::string("a\0b", 3), ','));
}

TEST(StringBlank, OnlyBlanksAndNulsAreBlank) {
    EXPECT_TRUE(StringIsNullOrWhiteSpace(""));
    EXPECT_TRUE(StringIsNullOrWhiteSpace("   "));
    EXPECT_TRUE(StringIsNullOrWhiteSpace(std::string(" \0 ", 3)));
    EXPECT_FALSE(StringIsNullOrWhiteSpace("\t"));
    EXPECT_FALSE(StringIsNullOrWhiteSpace(" x "));
}

TEST(StringToUpper, ConvertsAsciiAndLeavesHighBytes) {
    EXPECT_EQ("NETWORK_INFORMATION", StringToUpper("Network_Information"));
    std::string high("\xe9\xff", 2);
    EXPECT_EQ(high, StringToUpper(high));
}
