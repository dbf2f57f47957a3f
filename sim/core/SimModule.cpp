#include "core/SimModule.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "core/SimText.h"

namespace kavrosim {

namespace {

// Error bytes a module answers after "!".
const std::uint8_t kNoCommand = 0x03;
const std::uint8_t kFramingError = 0x0B;
const std::uint8_t kUnderRange = 0x12;
const std::uint8_t kOverRange = 0x13;
const std::uint8_t kArgumentNotValid = 0x3F;
const std::uint8_t kModeNotValid = 0x40;
const std::uint8_t kAverageNotValid = 0x60;
const std::uint8_t kResolutionNotValid = 0x62;
const std::uint8_t kResolutionChangeNotAllowed = 0x63;

// Where a probe keeps the averaging it uses, two bytes little-endian.
const std::uint32_t kAveragingMemory = 0x801F076;
const unsigned kConfigBlock = 32;

Bytes refuse(std::uint8_t errorByte) { return Bytes{'!', errorByte}; }

int usualFirmware(int generation) {
    switch (generation) {
        case 0:
            return 90;
        case 1:
            return 95;
        case 2:
            return 120;
        default:
            return 150;
    }
}

bool isWhole(double value) { return value == std::floor(value); }

// The value as the host will read it back from a fitted text column.
double throughText(double value, std::size_t width) {
    const std::string text = fitNumber(value, width);
    const auto first = text.find_first_not_of(' ');
    double parsed = value;
    std::from_chars(text.data() + first, text.data() + text.size(), parsed);
    return parsed;
}

}  // namespace

SimModule::SimModule(SimKind kind, const std::string& identity) : kind_(kind), identity_(identity) {
    if (identity.size() != 10) {
        throw std::invalid_argument("module identity '" + identity + "' must be exactly 10 characters");
    }
    for (char c : identity) {
        if (c <= ' ' || c > '~') {
            throw std::invalid_argument("module identity '" + identity +
                                        "' may hold only printable characters without blanks");
        }
    }
    model_ = kindTypeText(kind);
}

SimModule SimModule::digitalProbe(const std::string& identity, double rangeMm) {
    SimModule module(SimKind::DigitalProbe, identity);
    module.partNumber_ = "P541000A";
    module.setRange(rangeMm);
    module.signal_ = SimSignal::constant(rangeMm / 2);
    return module;
}

SimModule SimModule::linearEncoder(const std::string& identity) {
    SimModule module(SimKind::LinearEncoder, identity);
    module.partNumber_ = "P542000A";
    module.range_ = 50;
    module.countsPerUnit_ = 1000;
    return module;
}

SimModule SimModule::encoderInput(const std::string& identity) {
    SimModule module(SimKind::EncoderInput, identity);
    module.partNumber_ = "P543000A";
    module.countsPerUnit_ = 10;
    return module;
}

SimModule SimModule::diom(const std::string& identity) {
    SimModule module(SimKind::Diom, identity);
    module.partNumber_ = "P544000A";
    module.format_ = SimInfoFormat::Old;
    module.firmware_ = usualFirmware(2);
    return module;
}

SimModule SimModule::dio2(const std::string& identity) {
    SimModule module(SimKind::Dio2, identity);
    module.partNumber_ = "P544100A";
    return module;
}

SimModule SimModule::wcm(const std::string& identity) {
    SimModule module(SimKind::Wcm, identity);
    module.partNumber_ = "P545000A";
    module.wcm_.emplace();
    return module;
}

SimModule SimModule::analogue(const std::string& identity, int partNumber) {
    const SimAnalogueScale* scale = analogueScale(partNumber);
    if (scale == nullptr) {
        throw std::invalid_argument("no analogue input module has the part number " + std::to_string(partNumber));
    }
    SimModule module(SimKind::Analogue, identity);
    module.partNumber_ = "P" + std::to_string(partNumber) + "A";
    module.format_ = SimInfoFormat::Old;
    module.firmware_ = usualFirmware(2);
    module.signal_ = SimSignal::constant(scale->offset + 8192 / scale->countsPerUnit);
    return module;
}

void SimModule::validate() const {
    if (kind_ == SimKind::DigitalProbe && (legacy_ || format_ == SimInfoFormat::Old) &&
        (!isWhole(range_) || range_ > 65535)) {
        throw std::invalid_argument("probe " + identity_ +
                                    ": without a new-format info text the range must be whole millimetres");
    }
    if (kind_ == SimKind::DigitalProbe && (legacy_ || format_ == SimInfoFormat::Old) && resolutionBits_ != 14) {
        throw std::invalid_argument("probe " + identity_ + ": without a new-format info text it stays at 14 bit");
    }
    if (kind_ == SimKind::Analogue && analogueScale(std::atoi(partNumber_.substr(1, 6).c_str())) == nullptr) {
        throw std::invalid_argument("analogue module " + identity_ + ": part number " + partNumber_ +
                                    " has no known scale");
    }
    if (format_ == SimInfoFormat::New) infoText();  // throws when a number does not fit its column
}

int SimModule::generation() const {
    if (legacy_) return 0;
    if (firmware_ < 100) return 1;
    if (firmware_ < 150) return 2;
    return 3;
}

void SimModule::setGeneration(int generation) {
    if (generation < 0 || generation > 3) throw std::invalid_argument("generation must be from 0 to 3");
    legacy_ = generation == 0;
    firmware_ = usualFirmware(generation);
}

void SimModule::setFirmwareNumber(int number) {
    if (number < 0 || number > 9999) throw std::invalid_argument("firmware number must be from 0 to 9999");
    firmware_ = number;
}

void SimModule::setPartNumber(const std::string& text) {
    if (text.size() != 8) throw std::invalid_argument("part number '" + text + "' must be 8 characters");
    partNumber_ = text;
}

void SimModule::setModel(const std::string& text) {
    if (text.size() > 4) throw std::invalid_argument("model text '" + text + "' is longer than 4 characters");
    model_ = padText(text, 4);
}

void SimModule::setRange(double millimetres) {
    if (!(millimetres > 0) || !std::isfinite(millimetres)) {
        throw std::invalid_argument("range must be above 0 millimetres");
    }
    range_ = millimetres;
}

void SimModule::setCountsPerUnit(double counts) {
    if (!(counts > 0) || !std::isfinite(counts)) throw std::invalid_argument("counts per unit must be above 0");
    countsPerUnit_ = counts;
}

SimScale SimModule::scale() const {
    const bool oldScheme = legacy_ || format_ == SimInfoFormat::Old;
    switch (kind_) {
        case SimKind::DigitalProbe:
            // A probe's range spans 16384 counts at 14 bit, from 0.
            return {"mm", 16384 / range_, 0, true, 0, range_, 3, legacy_ ? 1 : 0};
        case SimKind::LinearEncoder:
            return {"mm", oldScheme ? 20000.0 : countsPerUnit_, 0, false, 0, 0, 3, 0};
        case SimKind::EncoderInput:
            return {oldScheme ? "" : "deg", oldScheme ? 1.0 : countsPerUnit_, 0, false, 0, 0, 6, 0};
        case SimKind::Diom:
        case SimKind::Dio2:
        case SimKind::Wcm:
            return {"", 1.0, 0, false, 0, 0, 6, 1};
        case SimKind::Analogue: {
            const SimAnalogueScale* table = analogueScale(std::atoi(partNumber_.substr(1, 6).c_str()));
            if (table == nullptr) return {"", 1.0, 0, false, 0, 0, 6, 0};
            return {table->units,       table->countsPerUnit,
                    table->offset,      true,
                    table->offset,      table->offset + 16384 / table->countsPerUnit,
                    table->formatDigit, 0};
        }
    }
    return {"", 1.0, 0, false, 0, 0, 6, 0};
}

std::string SimModule::infoText() const {
    if (format_ == SimInfoFormat::Old) {
        // Free text whose last two characters are blank: the host then
        // decodes the module from its type text and part number.
        std::string text = kindName(kind_) + " " + partNumber_;
        if (kind_ == SimKind::DigitalProbe) text += " " + shortNumber(range_) + " mm";
        return padText(text, 30) + "  ";
    }
    const SimScale s = scale();
    std::string text = " " + padText(s.units, 6);
    text += fitNumber(s.countsPerUnit, 8);
    text += fitNumber(s.offset, 6);
    text += static_cast<char>('0' + s.formatDigit);
    text += static_cast<char>('0' + s.readFormat);
    text += "     00";
    const std::string factor = std::to_string(resolutionFactor());
    text += padText(std::string(2 - factor.size(), ' ') + factor, 2);
    return text;
}

std::vector<SimSpeed> SimModule::speeds() const {
    switch (generation()) {
        case 0:
            return {SimSpeed::Low};
        case 3:
            return {SimSpeed::Low, SimSpeed::High, SimSpeed::UltraHigh};
        default:
            return {SimSpeed::Low, SimSpeed::High};
    }
}

void SimModule::setAddress(int address) {
    if (address < 0 || address > 255) throw std::invalid_argument("bus address must be from 0 to 255");
    address_ = address;
}

void SimModule::setSpeed(SimSpeed speed) {
    speed_ = speed;
    pendingSpeed_ = speed;
}

void SimModule::setResolutionBits(int bits) {
    if (bits != 14 && bits != 16 && bits != 18) throw std::invalid_argument("resolution must be 14, 16 or 18 bit");
    resolutionBits_ = bits;
}

int SimModule::resolutionFactor() const {
    if (kind_ != SimKind::DigitalProbe) return 1;
    if (resolutionBits_ == 16) return 4;
    if (resolutionBits_ == 18) return 16;
    return 1;
}

void SimModule::setAveraging(int samples) {
    if (samples < 1 || samples > 256 || (samples & (samples - 1)) != 0) {
        throw std::invalid_argument("averaging must be a power of two from 1 to 256");
    }
    averaging_ = samples;
}

void SimModule::setStatus(std::uint8_t errorByte, std::uint16_t word) {
    statusError_ = errorByte;
    statusWord_ = word;
}

void SimModule::setConfig(unsigned location, const Bytes& data) {
    if (location > 0xFFFF) throw std::invalid_argument("configuration location must be from 0 to 65535");
    if (data.size() > kConfigBlock) throw std::invalid_argument("a configuration block holds at most 32 bytes");
    config_[location] = data;
}

std::optional<Bytes> SimModule::config(unsigned location) const {
    auto found = config_.find(location);
    if (found == config_.end()) return std::nullopt;
    return found->second;
}

bool SimModule::counts() const { return kind_ == SimKind::LinearEncoder || kind_ == SimKind::EncoderInput; }

long long SimModule::rawCounts(double value) const {
    const SimScale s = scale();
    // The host divides by the counts per unit it reads from the info text,
    // so count with exactly that number.
    double perUnit = s.countsPerUnit;
    if (format_ == SimInfoFormat::New && !legacy_) {
        // The round trip through text is pure but slow, and a stream asks
        // for it with every word: remember the last one.
        if (s.countsPerUnit != textedFrom_) {
            textedFrom_ = s.countsPerUnit;
            texted_ = throughText(s.countsPerUnit, 8);
        }
        perUnit = texted_;
    }
    long long result = std::llround((value - s.offset) * perUnit * resolutionFactor());
    if (counts()) {
        if (reversed_) result = -result;
        result += presetOffset_;
    }
    return result;
}

long long SimModule::fullScaleCounts() const {
    const SimScale s = scale();
    return s.bounded ? rawCounts(s.high) : 0;
}

SimReading SimModule::read(Clock::time_point now) {
    SimReading reading;
    reading.value = signal_.valueAt(now);
    const SimScale s = scale();
    if (s.bounded && reading.value < s.low) {
        reading.range = SimReading::Range::Under;
    } else if (s.bounded && reading.value > s.high) {
        reading.range = SimReading::Range::Over;
    } else {
        reading.counts = rawCounts(reading.value);
    }
    return reading;
}

Bytes SimModule::execute(const Bytes& command, Clock::time_point now) {
    if (command.size() < 2) return refuse(kFramingError);
    const std::uint8_t code = command[0];
    if (wcm_) {
        if (auto reply = wcm_->execute(command, now)) return *reply;
    }
    switch (code) {
        case 'I':
            return identifyReply();
        case 'i': {
            Bytes reply{'i'};
            putText(reply, identity_);
            return reply;
        }
        case 'B':
            if (legacy_) return refuse(kNoCommand);
            return infoReply();
        case 'C':
            address_ = 0;
            return Bytes{'C', 0};
        case 'G': {
            Bytes reply{'G', statusError_};
            putLe16(reply, statusWord_);
            return reply;
        }
        case 'P': {
            if (command.size() < 6) return refuse(kFramingError);
            if (counts()) {
                const auto wanted = static_cast<std::int32_t>(getLe32(command, 2));
                presetOffset_ = 0;
                presetOffset_ = wanted - rawCounts(signal_.valueAt(now));
            }
            return Bytes{'P', 0};
        }
        case 'K':
            return Bytes{'K', 0};
        case 'U':
            reversed_ = !reversed_;
            return Bytes{'U', static_cast<std::uint8_t>(reversed_ ? 1 : 0)};
        case 'V':
            if (command.size() < 6) return refuse(kFramingError);
            return setMode(getLe16(command, 2), getLe16(command, 4), now);
        case 'F':
            return difference_.enable(*this);
        case 'D':
            return difference_.readWords(*this, now);
        case 'X':
            return difference_.readFull(*this, now);
        case 'Q':
            return buffered_.readOut(*this, now);
        case 'c':
            return configRead(command);
        case 'b':
            return configWrite(command);
        case 'M':
            return readMemory(command);
        case '1':
        case 'L': {
            if (auto refused = difference_.ordinaryRead()) return *refused;
            const SimReading reading = read(now);
            if (reading.range == SimReading::Range::Under) return refuse(kUnderRange);
            if (reading.range == SimReading::Range::Over) return refuse(kOverRange);
            Bytes reply{code};
            if (code == '1') {
                putLe16(reply, static_cast<unsigned>(reading.counts) & 0xFFFF);
            } else {
                putLe32(reply, static_cast<std::uint32_t>(reading.counts));
            }
            return reply;
        }
        default:
            return refuse(kNoCommand);
    }
}

Bytes SimModule::setMode(unsigned mode, unsigned argument, Clock::time_point now) {
    if (auto reply = buffered_.setMode(*this, mode, argument, now)) return *reply;
    if (auto speed = speedFromModeNumber(static_cast<int>(mode))) {
        const auto supported = speeds();
        if (std::find(supported.begin(), supported.end(), *speed) == supported.end()) return refuse(kModeNotValid);
        pendingSpeed_ = *speed;
    } else if (mode == 50) {
        if (argument < 1 || argument > 256 || (argument & (argument - 1)) != 0) return refuse(kAverageNotValid);
        averaging_ = static_cast<int>(argument);
    } else if (mode == 51) {
        // The host scales an old-scheme probe at 14 bit, whatever it asks.
        if (kind_ == SimKind::DigitalProbe && (legacy_ || format_ == SimInfoFormat::Old)) {
            return refuse(kResolutionChangeNotAllowed);
        }
        if (argument != 14 && argument != 16 && argument != 18) return refuse(kResolutionNotValid);
        resolutionBits_ = static_cast<int>(argument);
    }
    if (mode >= 60 && mode <= 63) dynamic_ = true;
    // Every other mode (the dynamic master's among them) is accepted.
    return Bytes{'V', 0};
}

Bytes SimModule::configRead(const Bytes& command) const {
    if (command.size() < 6) return refuse(kFramingError);
    Bytes reply{'c', 0};
    if (getLe16(command, 4) == 0) {
        if (auto stored = config(getLe16(command, 2))) {
            reply[1] = static_cast<std::uint8_t>(stored->size());
            reply.insert(reply.end(), stored->begin(), stored->end());
        }
    }
    reply.resize(2 + kConfigBlock, 0);
    putLe16(reply, complementSum16(reply, 0, reply.size()));
    return reply;
}

Bytes SimModule::configWrite(const Bytes& command) {
    if (command.size() < 41) return refuse(kFramingError);
    if (complementSum16(command, 0, 39) != getLe16(command, 39)) return refuse(kFramingError);
    const unsigned count = command[6];
    if (count > kConfigBlock || getLe16(command, 4) != 0) return refuse(kArgumentNotValid);
    config_[getLe16(command, 2)] = Bytes(command.begin() + 7, command.begin() + 7 + count);
    return Bytes{'b', 0};
}

Bytes SimModule::readMemory(const Bytes& command) const {
    if (command.size() < 7) return refuse(kFramingError);
    const std::uint32_t start = getLe32(command, 2);
    const unsigned count = command[6];
    Bytes reply{'M'};
    for (unsigned i = 0; i < count; ++i) {
        const std::uint32_t at = start + i;
        std::uint8_t byte = 0;
        if (at == kAveragingMemory) byte = static_cast<std::uint8_t>(averaging_ & 0xFF);
        if (at == kAveragingMemory + 1) byte = static_cast<std::uint8_t>((averaging_ >> 8) & 0xFF);
        reply.push_back(byte);
    }
    return reply;
}

bool SimModule::takeAddress(const Bytes& command) {
    if (command.size() < 12) return false;
    if (std::string(command.begin() + 2, command.begin() + 12) != identity_) return false;
    address_ = command[1];
    return true;
}

void SimModule::reset() {
    address_ = 0;
    speed_ = SimSpeed::Low;
    pendingSpeed_ = SimSpeed::Low;
    difference_.reset();
    buffered_.reset();
    dynamic_ = false;
}

void SimModule::control(int action, Clock::time_point now) {
    if (action == 10) speed_ = pendingSpeed_;
    if (action == 21 || action == 42) dynamic_ = false;
    buffered_.control(*this, action, now);
}

void SimModule::startDifference(Clock::time_point now) { difference_.start(now); }

void SimModule::stopDifference(Clock::time_point now) { difference_.stop(*this, now); }

int SimModule::pingSlot() const {
    unsigned sum = 0;
    for (char c : identity_) sum += static_cast<unsigned char>(c);
    return static_cast<int>(sum % 32);
}

Bytes SimModule::pingReply() const {
    Bytes reply{':'};
    putText(reply, identity_);
    int sum = 0;
    for (char c : identity_) sum += static_cast<signed char>(c);
    const unsigned checksum = (0xFFFFu - static_cast<unsigned>(sum & 0xFFFF)) & 0xFFFF;
    reply.push_back(static_cast<std::uint8_t>(checksum >> 8));
    reply.push_back(static_cast<std::uint8_t>(checksum & 0xFF));
    return reply;
}

std::uint32_t SimModule::dynamicWord(Clock::time_point when) {
    // A module that was not put in dynamic mode does not answer the controller.
    if (!dynamic_) return 0x8000FF;
    const SimReading reading = read(when);
    const bool probe = kind_ == SimKind::DigitalProbe;
    if (reading.range == SimReading::Range::Under) return probe ? 0x7FFFFF : 0xFFFFFF;
    if (reading.range == SimReading::Range::Over) return probe ? 0x3FFFFF : 0xFFFFFF;
    return static_cast<std::uint32_t>(reading.counts) & 0x7FFFFF;
}

Bytes SimModule::burstRecord(Clock::time_point now) {
    const SimReading reading = read(now);
    if (reading.range == SimReading::Range::Under) return Bytes{0, 0, 0, kUnderRange};
    if (reading.range == SimReading::Range::Over) return Bytes{0, 0, 0, kOverRange};
    const auto bits = static_cast<std::uint32_t>(reading.counts) & 0x7FFFFF;
    return Bytes{static_cast<std::uint8_t>(bits & 0xFF), static_cast<std::uint8_t>((bits >> 8) & 0xFF),
                 static_cast<std::uint8_t>(bits >> 16), 0};
}

int SimModule::rangeField() const {
    if (kind_ != SimKind::DigitalProbe || !isWhole(range_) || range_ > 65535) return 0;
    return static_cast<int>(range_);
}

int SimModule::strokeCode() const {
    if (kind_ != SimKind::DigitalProbe && kind_ != SimKind::LinearEncoder) return 0;
    const double thousandths = std::round(range_ * 1000);
    return thousandths > 65535 ? 0 : static_cast<int>(thousandths);
}

Bytes SimModule::identifyReply() const {
    Bytes reply{'I'};
    putText(reply, identity_);
    putText(reply, partNumber_);
    putText(reply, model_);
    putText(reply, versionText(firmware_));
    putLe16(reply, static_cast<unsigned>(rangeField()));
    return reply;
}

Bytes SimModule::infoReply() const {
    Bytes reply{'B'};
    putText(reply, typeText());
    putLe16(reply, static_cast<unsigned>(firmware_));
    putLe16(reply, static_cast<unsigned>(strokeCode()));
    putText(reply, infoText());
    return reply;
}

std::string SimModule::describe() const {
    std::string text = padText(kindName(kind_), 13) + " " + identity_ + "  gen " + std::to_string(generation());
    const SimScale s = scale();
    switch (kind_) {
        case SimKind::DigitalProbe:
            text += ", " + shortNumber(range_) + " mm, " + std::to_string(resolutionBits_) + " bit";
            break;
        case SimKind::LinearEncoder:
        case SimKind::EncoderInput:
            text += ", " + shortNumber(s.countsPerUnit) + " counts/" + (s.units.empty() ? "count" : s.units);
            break;
        case SimKind::Analogue:
            text += ", " + partNumber_ + " " + shortNumber(s.low) + " to " + shortNumber(s.high) + " " + s.units;
            break;
        case SimKind::Diom:
        case SimKind::Dio2:
            text += ", input bits";
            break;
        case SimKind::Wcm:
            text += ", scan " + std::to_string(wcm_->scanSeconds()) + " s";
            break;
    }
    if (address_ != 0) text += ", address " + std::to_string(address_);
    if (wcm_) return text + wcm_->describe();
    return text + ", signal " + signal_.text();
}

}  // namespace kavrosim
