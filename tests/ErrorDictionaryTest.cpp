// Dictionary loading, look-up and the shipped English dictionary.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "KavroLibrary.h"
#include "TempDir.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;

namespace {
const std::string kShipped = KAVRO_SOURCE_DIR "/data/ErrLang_en.dat";
}

TEST(ErrorDictionary, ReadsLinesAsTheFileFormatSays) {
    TempDir dir;
    const std::string path = dir.write("dict.dat",
                                       "8466\tBelow range\r\n"
                                       "\tstarts with a tab\n"
                                       "no tab on this line\n"
                                       "\n"
                                       "abc\tnot a number\n"
                                       "70001\tfirst text\n"
                                       "70001\tsecond text\n"
                                       "70002\t\n"
                                       "70003\tlast line without line feed");
    testing::internal::CaptureStderr();
    loadErrorDictionaryFrom(path);
    const std::string err = testing::internal::GetCapturedStderr();

    EXPECT_EQ("Below range", GetErrorDescriptionInternal(0x2112));
    EXPECT_EQ("second text", GetErrorDescriptionInternal(70001));
    EXPECT_EQ("", GetErrorDescriptionInternal(70002));
    EXPECT_EQ("last line without line feed", GetErrorDescriptionInternal(70003));
    EXPECT_EQ("Unknown Error", GetErrorDescriptionInternal(12345));
    EXPECT_EQ("Unable to read the error dictionary :" + path + "\n", err);
}

TEST(ErrorDictionary, WithoutTheFixedFileTheCopyBesideTheLibraryIsRead) {
    // In a child process, so that the dictionary starts empty.
    EXPECT_EXIT(
        {
            // Installed there, or filled by an earlier test of this process: nothing to show.
            if (std::filesystem::exists(kErrorDictionaryPath) || !kavroErrorDictionary.empty()) std::exit(0);
            loadErrorDictionaryFrom("/nonexistent/ErrLang_en.dat");
            if (!kavroErrorDictionary.empty()) std::exit(1);
            // Still empty: the next look-up reads again, and finds the build tree's copy.
            if (GetErrorDescriptionInternal(0x2112) != "The reading is below the measuring range.") std::exit(2);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ErrorDictionary, ShippedFileHasOneLinePerCode) {
    std::ifstream in(kShipped);
    ASSERT_TRUE(in.is_open());
    std::set<int> codes;
    for (std::string line; std::getline(in, line);) {
        const auto tab = line.find('\t');
        if (tab == std::string::npos || tab == 0) continue;
        const int code = KavroNumberStrToInt(line.substr(0, tab));
        EXPECT_TRUE(codes.insert(code).second) << "code " << code << " twice";
        EXPECT_FALSE(eKavroErrors_ToString(static_cast<eKavroErrors>(code)).empty())
            << "code " << code << " is not an error code";
        EXPECT_GT(line.size(), tab + 5) << "code " << code << " has no real text";
    }
    EXPECT_EQ(144u, codes.size());
    for (int code : {0, 1, 33, 209, 227, 241, 255, 0x2100, 0x2112, 0x21FA, 0x400000, 0x10001, 0x10002}) {
        EXPECT_EQ(1u, codes.count(code)) << "code " << code << " has no line";
    }
}
