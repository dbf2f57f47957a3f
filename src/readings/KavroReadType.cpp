#include "readings/KavroReadType.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "KavroNumberText.h"

namespace KavroLibrary {

namespace {

// Up to `length` characters from `position`; empty when the text ends before
// it. The info and part-number texts come off the wire and may be short.
std::string pieceOf(const std::string& text, std::size_t position, std::size_t length) {
    if (position >= text.size()) return std::string();
    return text.substr(position, length);
}

// A fixed column that must be there in full before it is converted.
std::string wholeColumn(const std::string& text, std::size_t position, std::size_t length) {
    if (text.size() < position + length) throw std::out_of_range("Information text too short.");
    return text.substr(position, length);
}

bool contains(const std::string& text, const char* key) { return text.find(key) != std::string::npos; }

eGeneration generationFromFirmware(int firmwareVersion) {
    if (firmwareVersion < 100) return eGeneration::Kavro2_A;
    if (firmwareVersion < 150) return eGeneration::Kavro2_B;
    return eGeneration::Kavro3;
}

// Analogue input modules of the older scheme: the module only tells its part
// number, so the range is fixed per part. The counts per unit are 16384 over
// the span as the modules were calibrated; they stay exactly as listed.
struct AimRange {
    int partNumbers[5];  // zero-padded
    const char* description;
    const char* units;
    double cpuom;
    double offset;
    int formatDigit;
};

const AimRange kAimRanges[] = {
    {{630101}, "AIM (V) 0 to 3.4V", " V ", 4818.824, 0.0, 3},
    {{630102, 630105, 630107, 630121, 630130}, "AIM (V) -10 to +10.0V", " V ", 819.2, -10.0, 3},
    {{630104, 630108, 630118}, "AIM(mA) 4 - 20 mA", "mA", 1024.0, 4.0, 3},
    {{630106, 630110, 630122, 630129}, "AIM (V) 0 to 10V", " V ", 1638.4, 0.0, 3},
    {{630109}, "AIM (V) 0 to 5.0V", " V ", 3276.8, 0.0, 3},
    {{630116}, "AIM (V) -1V to +1V", " V ", 8192.0, -1.0, 3},
    {{630117}, "AIM (V) 0 to 24.0V", " V ", 682.6667, 0.0, 3},
    {{630123}, "PT100 -50 to +250 DegC", "DegC", 54.61333, -50.0, 6},
    {{630124}, "Load Cell 0 - 300g", " g ", 54.6133, 0.0, 6},
    {{630125}, "PT100 -50 to +850 DegC", "DegC", 18.20444, -50.0, 6},
};

const AimRange* findAimRange(int partNumber) {
    for (const AimRange& range : kAimRanges) {
        for (int candidate : range.partNumbers) {
            if (candidate != 0 && candidate == partNumber) return &range;
        }
    }
    return nullptr;
}

const char* const kNoUnits = "      ";
const char* const kMillimetres = "mm    ";

}  // namespace

void KavroReadType::SetupIdentify(std::string moduleId, std::string partNumber, std::string version, int probeRange) {
    ModuleIdText = std::move(moduleId);
    PartNumberText = std::move(partNumber);
    VersionText = std::move(version);
    ProbeRange = probeRange;
}

void KavroReadType::SetupGetInfo(int infoError, std::string typeText, int subType, int infoParam, int firmwareVersion,
                                 int strokeCode, std::string infoText) {
    InfoError = infoError;
    TypeText = std::move(typeText);
    SubType = subType;
    InfoParam = infoParam;
    FirmwareVersion = firmwareVersion;
    StrokeCode = strokeCode;
    InfoText = std::move(infoText);
}

void KavroReadType::Process() {
    if (InfoError != 0) {
        // No usable get-info answer: a first-generation probe. TypeLetter is
        // left alone, so a fresh decoder reads it with the single-word command.
        TypeText = "DP  ";
        OldFormat(true);
    } else {
        TypeLetter = (!TypeText.empty() && TypeText[0] == 'D') ? 'D' : ' ';
        // The last two characters of a new-format text hold the resolution
        // factor, never 0; anything else marks the older format.
        bool newFormat = false;
        if (InfoText.size() >= 2) {
            try {
                newFormat = KavroNumberStrToInt(InfoText.substr(InfoText.size() - 2)) >= 1;
            } catch (const std::exception&) {
                newFormat = false;
            }
        }
        if (newFormat) {
            try {
                NewFormat();
            } catch (...) {
                OldFormat(false);
            }
        } else {
            OldFormat(false);
        }
    }

    if (ReadFormat == 1) {
        ReadType = 1;
    } else if (ReadFormat == 0 || ReadFormat == 2) {
        ReadType = 2;
    } else {
        ReadType = 0;
    }

    const std::string units = StringTrim(StringToUpper(Units));
    const bool thousandths =
        units == "V" || units == "MM" || units == "MV" || units == "UV" || units == "MV/V" || units == "UV/V";
    if (ProbeRange >= 1) {
        Stroke = ProbeRange;
    } else if (StrokeCode == 1 || (StrokeCode == 0 && static_cast<int>(Generation) < 3)) {
        Stroke = 1.0;
    } else if (thousandths) {
        Stroke = StrokeCode / 1000.0;
    } else {
        Stroke = StrokeCode;
    }
}

void KavroReadType::OldFormat(bool legacy) {
    Legacy = legacy;
    ReadFormat = 1;
    ResolutionFactor = 1;
    Generation = legacy ? eGeneration::Classic : eGeneration::Kavro2_A;

    // First hit wins, so the order matters: "MDM" also holds "DM".
    static const struct {
        const char* key;
        void (KavroReadType::*setup)();
    } kSetups[] = {
        {"DP", &KavroReadType::SetDP}, {"LE", &KavroReadType::SetLE},     {"DE", &KavroReadType::SetDE},
        {"DK", &KavroReadType::SetDK}, {"DD", &KavroReadType::SetDD},     {"DM", &KavroReadType::SetDM},
        {"DL", &KavroReadType::SetDL}, {"DIOM", &KavroReadType::SetDIOM}, {"DIO2", &KavroReadType::SetDIO2},
        {"DA", &KavroReadType::SetDA}, {"MDM", &KavroReadType::SetMDM},
    };
    for (const auto& entry : kSetups) {
        if (contains(TypeText, entry.key)) {
            (this->*entry.setup)();
            return;
        }
    }
    SetUnknown();
}

void KavroReadType::NewFormat() {
    Units = pieceOf(InfoText, 1, 6);

    const bool anyBlank =
        StringIsNullOrWhiteSpace(pieceOf(InfoText, 1, 29)) || StringIsNullOrWhiteSpace(pieceOf(InfoText, 7, 8)) ||
        StringIsNullOrWhiteSpace(pieceOf(InfoText, 15, 6)) || StringIsNullOrWhiteSpace(pieceOf(InfoText, 21, 1)) ||
        StringIsNullOrWhiteSpace(pieceOf(InfoText, 22, 1)) || StringIsNullOrWhiteSpace(pieceOf(InfoText, 30, 2));
    if (anyBlank) {
        OldFormat(false);
    } else {
        // Values converted before a failure stay unless the older set-up
        // overwrites them.
        try {
            CPUOM = KavroNumberStrToDouble(wholeColumn(InfoText, 7, 8));
            Offset = KavroNumberStrToDouble(wholeColumn(InfoText, 15, 6));
            FormatDigit = KavroNumberStrToInt(wholeColumn(InfoText, 21, 1));
            ReadFormat = KavroNumberStrToInt(wholeColumn(InfoText, 22, 1));
            ResolutionFactor = KavroNumberStrToInt(wholeColumn(InfoText, 30, 2));
            Legacy = false;
            InfoCode = KavroNumberStrToInt(wholeColumn(InfoText, 28, 2));
        } catch (const std::exception&) {
            OldFormat(false);
        }
    }

    // Kind, description and generation always come from here, even after a
    // fall-back for the scale.
    UnitsFlag = 1;
    Generation = generationFromFirmware(FirmwareVersion);
    DescribeNewFormat();
}

void KavroReadType::DescribeNewFormat() {
    if (contains(StringToUpper(TypeText), "DP")) {
        switch (SubType) {
            case 1:
                Description = "LT";
                ModuleType = eModuleType::LT;
                break;
            case 2:
                Description = "LTH";
                ModuleType = eModuleType::LTH;
                break;
            case 3:
                Description = "CONFOCAL";
                ModuleType = eModuleType::CONFOCAL;
                break;
            case 4:
                Description = "AGM";
                ModuleType = eModuleType::AGM;
                break;
            case 5:
                Description = "LTA";
                ModuleType = eModuleType::LTA;
                break;
            default:
                Description = "Digital Probe";
                ModuleType = eModuleType::DP;
                break;
        }
        return;
    }

    static const struct {
        const char* key;
        const char* description;
        eModuleType type;
    } kKinds[] = {
        {"LE", "Linear Encoder", eModuleType::LE},
        {"DE", "Rotary Encoder", eModuleType::EIM},
        {"DK", "Block Gauge", eModuleType::DP},
        {"DD", "Digital Displacement", eModuleType::DP},
        {"DM", "Mini Probe", eModuleType::DP},
        {"DL", "Lever Probe", eModuleType::DP},
        {"DU", "Flexure", eModuleType::DP},
        {"DZ", "Short Probe", eModuleType::DP},
        {"DIOM", "DIOM", eModuleType::DIOM},
        {"DIO2", "DIO2", eModuleType::DIO2},
        {"DA", nullptr, eModuleType::AIM},
        {"DH", "LEIM", eModuleType::LEIM},
        {"DIM", "DIM", eModuleType::DIM},
        {"MDM", "Motor Drive Module", eModuleType::Unknown},
        {"BASE", "Multi Channel Module", eModuleType::MultiChannel},
        {"WCM", "WCM", eModuleType::WCM},
    };
    for (const auto& kind : kKinds) {
        if (!contains(TypeText, kind.key)) continue;
        if (kind.type == eModuleType::AIM) {
            // Sub-type 1 of an analogue module is a laser, as with "DP".
            const bool laser = SubType == 1;
            Description = laser ? "LT" : "AIM (mA)";
            ModuleType = laser ? eModuleType::LT : eModuleType::AIM;
        } else {
            Description = kind.description;
            ModuleType = kind.type;
        }
        if (kind.type == eModuleType::LEIM) Units = "mm      ";
        return;
    }
    Description = TypeText;
    ModuleType = eModuleType::Unknown;
}

void KavroReadType::ScaleFromProbeRange() {
    // A probe's range spans the 16384 counts of resolution factor 1.
    if (ProbeRange != 0) CPUOM = 16384.0 / ProbeRange;
}

void KavroReadType::SetProbe(const char* description, int readFormat) {
    Description = description;
    ModuleType = eModuleType::DP;
    Units = kMillimetres;
    ScaleFromProbeRange();
    Offset = 0.0;
    FormatDigit = 3;
    ReadFormat = readFormat;
    UnitsFlag = 1;
}

void KavroReadType::SetCounter(const char* description, eModuleType type, int readFormat) {
    Description = description;
    ModuleType = type;
    Units = kNoUnits;
    CPUOM = 1.0;
    Offset = 0.0;
    FormatDigit = 6;
    ReadFormat = readFormat;
    ResolutionFactor = 1;
    UnitsFlag = 0;
}

void KavroReadType::SetDP() {
    SetProbe("Digital Probe", TypeLetter != 'D' ? 1 : 0);
    UnitsFlag = InfoError == 0 ? 1 : 0;
}

void KavroReadType::SetLE() {
    Description = "Linear Encoder";
    ModuleType = eModuleType::LE;
    Units = kMillimetres;
    CPUOM = 20000.0;
    Offset = 0.0;
    FormatDigit = 3;
    ReadFormat = 2;
    ResolutionFactor = 1;
    UnitsFlag = 1;
}

void KavroReadType::SetDE() { SetCounter("Encoder Input Module", eModuleType::EIM, 2); }
void KavroReadType::SetDK() { SetProbe("Block Gauge", 0); }
void KavroReadType::SetDD() { SetProbe("Digital Displacement", 0); }
void KavroReadType::SetDM() { SetProbe("Mini Probe", 0); }
void KavroReadType::SetDL() { SetProbe("Lever Probe", 0); }
void KavroReadType::SetDIOM() { SetCounter("DIOM", eModuleType::DIOM, 1); }
void KavroReadType::SetDIO2() { SetCounter("DIO2", eModuleType::DIO2, 1); }

void KavroReadType::SetMDM() {
    // Not readable: the format digit is left as it was.
    const int formatDigit = FormatDigit;
    SetCounter("MDM", eModuleType::Unknown, -1);
    FormatDigit = formatDigit;
}

void KavroReadType::SetUnknown() {
    const int formatDigit = FormatDigit;
    SetCounter("Unknown", eModuleType::Unknown, -1);
    FormatDigit = formatDigit;
}

void KavroReadType::SetDA() {
    UnitsFlag = 1;
    ModuleType = eModuleType::AIM;

    const AimRange* range = nullptr;
    try {
        range = findAimRange(KavroNumberStrToInt(pieceOf(PartNumberText, 1, 6)));
    } catch (const std::exception&) {
        range = nullptr;
    }
    if (range == nullptr) {
        SetUnknown();
        return;
    }
    Description = range->description;
    Units = range->units;
    CPUOM = range->cpuom;
    Offset = range->offset;
    FormatDigit = range->formatDigit;
    ReadFormat = 0;
}

double KavroReadType::Factor() const { return static_cast<double>(ResolutionFactor) * CPUOM; }

double KavroReadType::Read(int counts) const {
    if (ReadType == 0) return 0.0;
    return static_cast<double>(counts) / Factor() + Offset + SizeOffset;
}

double KavroReadType::Read(long counts) const {
    if (ReadType == 0) return 0.0;
    return static_cast<double>(counts) / Factor() + Offset + SizeOffset;
}

double KavroReadType::ReadDyn(int raw) const {
    if (ReadType == 0) return 0.0;
    // A streamed sample is a 23-bit two's-complement number; higher bits are
    // not part of it.
    const int counts = (raw & 0x3FFFFF) - (raw & 0x400000);
    return static_cast<double>(counts) / Factor() + Offset + SizeOffset;
}

double KavroReadType::ReadSum(long sum, int n) const {
    if (ReadType == 0) return 0.0;
    return static_cast<double>(sum) / Factor() + (Offset + SizeOffset) * n;
}

int KavroReadType::ConvertReadingToCounts(double units) const {
    if (ReadType == 0) return 0;
    // Adding one half and truncating rounds negative values toward zero
    // (-2.7 gives -2); deliberate, callers rely on these counts. Values out
    // of range saturate rather than overflow the conversion.
    const double counts = ((units - Offset) - SizeOffset) * Factor() + 0.5;
    if (std::isnan(counts)) return 0;
    if (counts >= 2147483648.0) return std::numeric_limits<std::int32_t>::max();
    if (counts <= -2147483649.0) return std::numeric_limits<std::int32_t>::min();
    return static_cast<int>(counts);
}

void KavroReadType::UpdateFullScale() {
    switch (ResolutionFactor) {
        case 4:
            FullScale = 65536;
            break;
        case 16:
            FullScale = 262144;
            break;
        default:
            FullScale = 16384;
            break;
    }
}

}  // namespace KavroLibrary
