#include "core/SimModuleKind.h"

namespace kavrosim {

namespace {

struct KindFacts {
    SimKind kind;
    const char* name;
    const char* typeText;
};

const KindFacts kKinds[] = {
    {SimKind::DigitalProbe, "probe", "DP  "},
    {SimKind::LinearEncoder, "encoder", "LE  "},
    {SimKind::EncoderInput, "encoder-input", "DE  "},
    {SimKind::Diom, "diom", "DIOM"},
    {SimKind::Dio2, "dio2", "DIO2"},
    {SimKind::Analogue, "analogue", "DA  "},
    {SimKind::Wcm, "wcm", "WCM "},
};

// Every span is 16384 counts; the counts per unit are kept exactly as the
// host's decoding table has them, so that both sides agree to the count.
const SimAnalogueScale kAnalogue[] = {
    {630101, "V", 4818.824, 0, 3},  {630102, "V", 819.2, -10.0, 3},       {630104, "mA", 1024.0, 4.0, 3},
    {630105, "V", 819.2, -10.0, 3}, {630106, "V", 1638.4, 0, 3},          {630107, "V", 819.2, -10.0, 3},
    {630108, "mA", 1024.0, 4.0, 3}, {630109, "V", 3276.8, 0, 3},          {630110, "V", 1638.4, 0, 3},
    {630116, "V", 8192.0, -1.0, 3}, {630117, "V", 682.6667, 0, 3},        {630118, "mA", 1024.0, 4.0, 3},
    {630121, "V", 819.2, -10.0, 3}, {630122, "V", 1638.4, 0, 3},          {630123, "degC", 54.61333, -50.0, 6},
    {630124, "g", 54.6133, 0, 6},   {630125, "degC", 18.20444, -50.0, 6}, {630129, "V", 1638.4, 0, 3},
    {630130, "V", 819.2, -10.0, 3},
};

}  // namespace

std::string kindName(SimKind kind) {
    for (const auto& facts : kKinds) {
        if (facts.kind == kind) return facts.name;
    }
    return "unknown";
}

std::optional<SimKind> kindFromName(const std::string& name) {
    for (const auto& facts : kKinds) {
        if (name == facts.name) return facts.kind;
    }
    return std::nullopt;
}

std::vector<std::string> kindNames() {
    std::vector<std::string> names;
    for (const auto& facts : kKinds) names.emplace_back(facts.name);
    return names;
}

std::string kindTypeText(SimKind kind) {
    for (const auto& facts : kKinds) {
        if (facts.kind == kind) return facts.typeText;
    }
    return "    ";
}

const SimAnalogueScale* analogueScale(int partNumber) {
    for (const auto& scale : kAnalogue) {
        if (scale.partNumber == partNumber) return &scale;
    }
    return nullptr;
}

std::vector<int> analoguePartNumbers() {
    std::vector<int> numbers;
    for (const auto& scale : kAnalogue) numbers.push_back(scale.partNumber);
    return numbers;
}

}  // namespace kavrosim
