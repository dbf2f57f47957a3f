// The per-module reading decoder: from a module's identify and get-info
// answers to its kind, units and scale, and from counts to units.
#pragma once

#include <cstdint>
#include <string>

#include "KavroEnums.h"

namespace KavroLibrary {

// Fields are public: the module classes read the decoded values and adjust
// ResolutionFactor, SizeOffset and FullScale as their settings change.
class KavroReadType {
public:
    KavroReadType() = default;

    void SetupIdentify(std::string moduleId, std::string partNumber, std::string version, int probeRange);
    void SetupGetInfo(int infoError, std::string typeText, int subType, int infoParam, int firmwareVersion,
                      int strokeCode, std::string infoText);
    void Process();

    // The two decoding schemes.
    void OldFormat(bool legacy);
    void OldFormat() { OldFormat(true); }
    void NewFormat();

    // Fixed set-ups of the older scheme.
    void SetDP();
    void SetLE();
    void SetDE();
    void SetDK();
    void SetDD();
    void SetDM();
    void SetDL();
    void SetDIOM();
    void SetDIO2();
    void SetMDM();
    void SetDA();
    void SetUnknown();

    // Conversions.
    double Read(int counts) const;
    double Read(long counts) const;
    double ReadDyn(int raw) const;
    double ReadSum(long sum, int n) const;
    int ConvertReadingToCounts(double units) const;
    void UpdateFullScale();

    std::string ModuleIdText;
    std::string PartNumberText;
    std::string VersionText;
    std::int32_t ProbeRange = 0;
    std::int32_t InfoError = 0;
    std::string TypeText;
    std::int32_t SubType = 0;
    std::int32_t InfoParam = 0;
    std::int32_t InfoCode = 0;
    std::int32_t FirmwareVersion = 0;
    std::int32_t StrokeCode = 0;
    std::string InfoText;
    char TypeLetter = ' ';
    double CPUOM = 1.0;
    std::string Units = "mm      ";
    double Offset = 0.0;
    std::int32_t FormatDigit = 0;
    std::int32_t ReadFormat = -1;
    std::int32_t ReadType = 0;
    std::int32_t ResolutionFactor = 1;
    std::int32_t UnitsFlag = 0;
    std::string Description;
    eModuleType ModuleType = eModuleType::Unknown;
    double Stroke = 0.0;
    bool Legacy = false;
    eGeneration Generation = eGeneration::Classic;
    double SizeOffset = 0.0;
    std::int32_t FullScale = 16384;

private:
    void DescribeNewFormat();
    void ScaleFromProbeRange();
    void SetProbe(const char* description, int readFormat);
    void SetCounter(const char* description, eModuleType type, int readFormat);
    double Factor() const;
};

}  // namespace KavroLibrary
