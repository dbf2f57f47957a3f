// Reading decoder: how identify and get-info answers decide a module's kind,
// scale and read command, and the conversions between counts and units.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "KavroLibrary.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

// One module's answers, with the defaults of a current digital probe.
struct Answers {
    std::string partNumber = "P000000A";
    int probeRange = 0;
    int infoError = 0;
    std::string type = "DP  ";
    int subType = 0;
    int firmware = 150;
    int strokeCode = 0;
    std::string info = std::string(30, ' ') + "00";

    KavroReadType decode() const {
        KavroReadType decoder;
        decoder.SetupIdentify("AB12345678", partNumber, "1.50 ", probeRange);
        decoder.SetupGetInfo(infoError, type, subType, 0, firmware, strokeCode, info);
        decoder.Process();
        return decoder;
    }
};

// What a user sees of a decoded module, in one line for compact case tables.
std::string summary(const KavroReadType& d) {
    return d.Description + " | " + eModuleType_ToString(d.ModuleType) + " | " + KavroNumberDoubleToStr(d.CPUOM, 7) +
           " | read " + std::to_string(d.ReadType);
}

// A new-format info text from its columns.
std::string infoText(const std::string& units, const std::string& cpuom, const std::string& offset,
                     const std::string& format, const std::string& code, const std::string& factor) {
    std::string text = " " + units + cpuom + offset + format + "     " + code + factor;
    EXPECT_EQ(text.size(), 32u) << "column widths in the test";
    return text;
}

// The example laid out in docs/design/readings.md.
const std::string kProbeInfo = " mm    8192.0000.000030     00 1";

}  // namespace

TEST(KavroReadType, NoGetInfoAnswerIsAClassicSingleWordProbe) {
    Answers module;
    module.infoError = 0x2103;
    module.type = "LE  ";
    module.info = kProbeInfo;
    module.probeRange = 4;
    KavroReadType decoder = module.decode();
    EXPECT_EQ(summary(decoder), "Digital Probe | DP | 4096 | read 1");
    EXPECT_EQ(decoder.TypeText, "DP  ");
    EXPECT_EQ(decoder.Generation, eGeneration::Classic);
    EXPECT_TRUE(decoder.Legacy);
    EXPECT_DOUBLE_EQ(decoder.Stroke, 4.0);

    // Without a range the scale is left alone and the stroke falls to 1.
    module.probeRange = 0;
    decoder = module.decode();
    EXPECT_DOUBLE_EQ(decoder.CPUOM, 1.0);
    EXPECT_DOUBLE_EQ(decoder.Stroke, 1.0);
}

TEST(KavroReadType, OlderSchemeWhenTheInfoTextHasNoResolutionFactor) {
    const std::string head(30, ' ');
    for (const std::string& info :
         {head + "00", head + "  ", head + "xy", head + "-1", std::string(), std::string("7")}) {
        SCOPED_TRACE("info text '" + info + "'");
        Answers module;
        module.info = info;
        module.probeRange = 2;
        const KavroReadType decoder = module.decode();
        // A type text beginning with D reads two words; the generation is
        // not taken from the firmware number.
        EXPECT_EQ(summary(decoder), "Digital Probe | DP | 8192 | read 2");
        EXPECT_EQ(decoder.Generation, eGeneration::Kavro2_A);
        EXPECT_FALSE(decoder.Legacy);
    }

    // Each row: the four-character type text = what it decodes to. "DM" is
    // looked for first; the type text is matched case-sensitively.
    for (const std::string row :
         {" DP =Digital Probe | DP | 1 | read 1", "LE  =Linear Encoder | LE | 20000 | read 2",
          "DE  =Encoder Input Module | EIM | 1 | read 2", "DL  =Lever Probe | DP | 1 | read 2",
          "MDM =Mini Probe | DP | 1 | read 2", "DIOM=DIOM | DIOM | 1 | read 1", "DIO2=DIO2 | DIO2 | 1 | read 1",
          "DIM =Unknown | Unknown | 1 | read 0", "dp  =Unknown | Unknown | 1 | read 0"}) {
        const std::string type = row.substr(0, 4), expected = row.substr(5);
        Answers module;
        module.type = type;
        const KavroReadType decoder = module.decode();
        EXPECT_EQ(summary(decoder), expected);
        EXPECT_TRUE(decoder.ReadType != 0 || decoder.Read(1000) == 0.0) << type;
    }
}

TEST(KavroReadType, NewFormatTakesTheScaleFromTheInfoText) {
    Answers module;
    module.info = kProbeInfo;
    module.strokeCode = 2000;
    KavroReadType decoder = module.decode();
    EXPECT_EQ(summary(decoder), "Digital Probe | DP | 8192 | read 2");
    EXPECT_EQ(decoder.Units, "mm    ");
    EXPECT_EQ(decoder.FormatDigit, 3);
    EXPECT_EQ(decoder.Generation, eGeneration::Kavro3);
    EXPECT_DOUBLE_EQ(decoder.Stroke, 2.0);

    module.type = "DA  ";
    module.info = infoText("mA    ", "1024.000", "4.0000", "31", "07", " 4");
    decoder = module.decode();
    EXPECT_EQ(summary(decoder), "AIM (mA) | AIM | 1024 | read 1");
    EXPECT_EQ(decoder.InfoCode, 7);
    EXPECT_DOUBLE_EQ(decoder.Read(2 * 4096), 6.0);  // 2 mA above the 4 mA offset at factor 4
    decoder.UpdateFullScale();
    EXPECT_EQ(decoder.FullScale, 65536);

    // As above; "DP" is matched in any case.
    for (const std::string row :
         {"dp1 =LT | LT", "DP3 =CONFOCAL | CONFOCAL", "DP5 =LTA | LTA", "DP6 =Digital Probe | DP",
          "DLE =Linear Encoder | LE", "DIOM=DIOM | DIOM", "DIO2=DIO2 | DIO2", "DA1 =LT | LT", "DA2 =AIM (mA) | AIM",
          "DH  =LEIM | LEIM", "DIM =DIM | DIM", "MDM =Mini Probe | DP", "le  =le   | Unknown"}) {
        const std::string type = row.substr(0, 4), expected = row.substr(5);
        module.type = type;
        module.subType = type[2] >= '0' && type[2] <= '9' ? type[2] - '0' : 0;
        module.info = kProbeInfo;
        decoder = module.decode();
        EXPECT_EQ(summary(decoder), expected + " | 8192 | read 2");
    }
}

TEST(KavroReadType, GenerationAndStrokeRules) {
    Answers module;
    module.info = kProbeInfo;
    const std::pair<int, eGeneration> generations[] = {{99, eGeneration::Kavro2_A},
                                                       {100, eGeneration::Kavro2_B},
                                                       {149, eGeneration::Kavro2_B},
                                                       {150, eGeneration::Kavro3}};
    for (const auto& [firmware, generation] : generations) {
        module.firmware = firmware;
        EXPECT_EQ(module.decode().Generation, generation) << firmware;
    }

    // A stroke code of 0 means "not given" only before the third generation.
    module.firmware = 149;
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 1.0);
    module.firmware = 150;
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 0.0);

    module.strokeCode = 2000;
    module.info = infoText("mV/V  ", "1000.000", "0.0000", "31", "00", " 1");
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 2.0);
    module.info = infoText("DegC  ", "1000.000", "0.0000", "31", "00", " 1");
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 2000.0);
    module.strokeCode = 1;
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 1.0);
    module.probeRange = 12;
    EXPECT_DOUBLE_EQ(module.decode().Stroke, 12.0);
}

TEST(KavroReadType, BrokenNewFormatFallsBackForScaleButKeepsTheNewKind) {
    Answers module;
    module.subType = 3;
    module.probeRange = 4;
    module.firmware = 120;
    const std::string broken[] = {
        infoText("um    ", "1000.000", "0.0000", " 1", "00", "16"),                // blank format digit
        infoText("um    ", "abcdefgh", "0.0000", "31", "00", "16"),                // counts per unit not a number
        infoText("um    ", "1000.000", "0.0000", "31", "ab", "16"),                // information code not a number
        infoText("um    ", "1000.000", "0.0000", "31", "00", "16").substr(0, 31),  // truncated
    };
    for (const std::string& info : broken) {
        SCOPED_TRACE("info text '" + info + "'");
        module.info = info;
        const KavroReadType decoder = module.decode();
        EXPECT_EQ(summary(decoder), "CONFOCAL | CONFOCAL | 4096 | read 2");
        EXPECT_EQ(decoder.Generation, eGeneration::Kavro2_B);
        EXPECT_EQ(decoder.Units, "mm    ");
        EXPECT_EQ(decoder.ResolutionFactor, 1);
    }

    // The older scheme has no entry for an encoder interface: not readable,
    // yet still described from the new table.
    module.type = "DH  ";
    module.info = broken[2];
    const KavroReadType decoder = module.decode();
    EXPECT_EQ(summary(decoder), "LEIM | LEIM | 1 | read 0");
    EXPECT_EQ(decoder.Units, "mm      ");

    // Hostile texts are the read_type fuzz target's; an empty type text is described as itself.
    KavroReadType direct;
    EXPECT_NO_THROW(direct.NewFormat());
    EXPECT_EQ(direct.Description, "");
    EXPECT_EQ(direct.ReadFormat, -1);
}

TEST(KavroReadType, AnalogueInputPartNumbers) {
    // The stored counts per unit, not 16384 over the span: 630124 differs.
    const std::pair<const char*, const char*> cases[] = {
        {"P630130B", "AIM (V) -10 to +10.0V | AIM | 819.2 | read 2 | [ V ] -10 3"},
        {"P630118A", "AIM(mA) 4 - 20 mA | AIM | 1024 | read 2 | [mA] 4 3"},
        {"P630123A", "PT100 -50 to +250 DegC | AIM | 54.61333 | read 2 | [DegC] -50 6"},
        {"P630124A", "Load Cell 0 - 300g | AIM | 54.6133 | read 2 | [ g ] 0 6"},
        {"P630125A", "PT100 -50 to +850 DegC | AIM | 18.20444 | read 2 | [DegC] -50 6"}};
    Answers module;
    module.type = "DA  ";
    for (const auto& [partNumber, expected] : cases) {
        module.partNumber = partNumber;
        const KavroReadType d = module.decode();
        EXPECT_EQ(summary(d) + " | [" + d.Units + "] " + KavroNumberDoubleToStr(d.Offset, 7) + " " +
                      std::to_string(d.FormatDigit),
                  expected);
    }

    module.partNumber = "P630102A";
    EXPECT_DOUBLE_EQ(module.decode().Read(16384), 10.0);

    for (const char* partNumber : {"P630199A", "", "P", "Pabcdef", "\xff\xff\xff"}) {
        module.partNumber = partNumber;
        const KavroReadType decoder = module.decode();
        EXPECT_EQ(summary(decoder), "Unknown | Unknown | 1 | read 0") << partNumber;
        EXPECT_EQ(decoder.UnitsFlag, 0);
    }
}

TEST(KavroReadType, ConversionsApplyFactorOffsetAndSizeOffset) {
    KavroReadType decoder;
    decoder.ReadType = 2;
    decoder.CPUOM = 1000.0;
    decoder.ResolutionFactor = 4;
    decoder.Offset = 1.0;
    decoder.SizeOffset = 0.5;
    EXPECT_DOUBLE_EQ(decoder.Read(4000), 2.5);
    EXPECT_DOUBLE_EQ(decoder.Read(8000000000L), 2000001.5);
    EXPECT_DOUBLE_EQ(decoder.ReadSum(12000, 3), 7.5);  // both offsets once per reading
    EXPECT_DOUBLE_EQ(decoder.ReadDyn(4000), 2.5);
    EXPECT_EQ(decoder.ConvertReadingToCounts(2.5), 4000);

    // Streamed samples are 23-bit two's complement; higher bits are dropped.
    decoder.CPUOM = 1.0;
    decoder.ResolutionFactor = 1;
    decoder.Offset = 0.0;
    decoder.SizeOffset = 0.0;
    EXPECT_DOUBLE_EQ(decoder.ReadDyn(0x400000), -4194304.0);
    EXPECT_DOUBLE_EQ(decoder.ReadDyn(0x3FFFFF), 4194303.0);
    EXPECT_DOUBLE_EQ(decoder.ReadDyn(0x7FFFFF), -1.0);
    EXPECT_DOUBLE_EQ(decoder.ReadDyn(0xC00001), -4194303.0);

    // Half added, then truncated toward zero; out of range saturates.
    EXPECT_EQ(decoder.ConvertReadingToCounts(2.7), 3);
    EXPECT_EQ(decoder.ConvertReadingToCounts(-2.7), -2);
    EXPECT_EQ(decoder.ConvertReadingToCounts(-0.4), 0);
    EXPECT_EQ(decoder.ConvertReadingToCounts(1e12), std::numeric_limits<int>::max());
    EXPECT_EQ(decoder.ConvertReadingToCounts(-1e12), std::numeric_limits<int>::min());
    EXPECT_EQ(decoder.ConvertReadingToCounts(std::nan("")), 0);

    decoder.ReadType = 0;
    EXPECT_EQ(decoder.ReadDyn(100), 0.0);
    EXPECT_EQ(decoder.ReadSum(100, 2), 0.0);
    EXPECT_EQ(decoder.ConvertReadingToCounts(100.0), 0);

    const std::pair<int, int> fullScales[] = {{1, 16384}, {4, 65536}, {16, 262144}, {2, 16384}};
    for (const auto& [factor, fullScale] : fullScales) {
        decoder.ResolutionFactor = factor;
        decoder.UpdateFullScale();
        EXPECT_EQ(decoder.FullScale, fullScale) << factor;
    }
}
