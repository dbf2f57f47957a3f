// The kinds of module the simulated bus offers and the fixed facts of each:
// type text, scenario name and, for the analogue input modules of the old
// scheme, the scale that belongs to each part number.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kavrosim {

enum class SimKind { DigitalProbe, LinearEncoder, EncoderInput, Diom, Dio2, Analogue, Wcm };

// How a module describes itself in its get-info text: the old format names
// nothing but the type (the host decodes the rest from type text and part
// number); the new format carries units, counts per unit and offset.
enum class SimInfoFormat { Old, New };

// "probe", "encoder", "encoder-input", "diom", "dio2", "analogue", "wcm".
std::string kindName(SimKind kind);
std::optional<SimKind> kindFromName(const std::string& name);
std::vector<std::string> kindNames();

// The 4-character type text of get-info: "DP  ", "LE  ", "DE  ", "DIOM",
// "DIO2", "DA  ", "WCM ".
std::string kindTypeText(SimKind kind);

// Scale of an old-scheme analogue input module, fixed by its part number:
// counts = (value - offset) x countsPerUnit over a span of 16384 counts.
struct SimAnalogueScale {
    int partNumber;
    const char* units;  // short units text for people: "V", "mA", "degC", "g"
    double countsPerUnit;
    double offset;
    int formatDigit;
};

const SimAnalogueScale* analogueScale(int partNumber);
std::vector<int> analoguePartNumbers();

}  // namespace kavrosim
