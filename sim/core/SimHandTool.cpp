#include "core/SimHandTool.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "core/SimText.h"

namespace kavrosim {

namespace {

const std::size_t kNameWidth = 20;
const std::size_t kMaxChannels = 12;

// Multi-channel tools: settings and the values each takes.
struct MultiSetting {
    const char* key;
    const char* factory;
    std::vector<std::string> values;  // empty: a whole number from 0 to 255
};

const std::vector<MultiSetting>& multiSettings() {
    static const std::vector<MultiSetting> settings = {
        {"BluetoothClass", "2", {"1", "2", "3"}},
        {"Button1Function", "Tag", {"None", "Tag", "PowerOff"}},
        {"Button2Function", "PowerOff", {"None", "Tag", "PowerOff"}},
        {"Buzzer", "TagTaken", {"Off", "TagTaken"}},
        {"DisplayMode", "0", {"0", "1"}},
        {"DisplayOrientation", "0", {"0", "1", "2", "3", "4"}},
        {"LED1Function", "Streaming", {"Off", "Streaming", "RangeErr", "AllOk", "LowBatt"}},
        {"LED2Function", "RangeErr", {"Off", "Streaming", "RangeErr", "AllOk", "LowBatt"}},
        {"LED3Function", "LowBatt", {"Off", "Streaming", "RangeErr", "AllOk", "LowBatt"}},
        {"OffTime", "10", {}},
    };
    return settings;
}

// Single-channel tools: keys and factory values; LIMITSTATE is worked out.
const std::vector<std::pair<const char*, const char*>>& singleSettings() {
    static const std::vector<std::pair<const char*, const char*>> settings = {
        {"ORIENTATION", "0"},       {"LAYOUT", "0"},
        {"LARGESOURCE", "0"},       {"UNITS", "0"},
        {"RESOLUTION", "3"},        {"OPMODE", "0"},
        {"MEASMODE", "65"},         {"PRESET", "0"},
        {"BUTTON1", "0"},           {"BUTTON2", "1"},
        {"POWEROFF", "3"},          {"OFFTIME", "10"},
        {"LIMITIND", "0"},          {"LIMITLED", "3"},
        {"LIMITBUZZER", "0"},       {"LIMIT LOWER", "0"},
        {"LIMIT UPPER", "0"},       {"LIMIT WARNLOWER", "0"},
        {"LIMIT WARNUPPER", "0"},   {"LIMITON LOWER", "0"},
        {"LIMITON UPPER", "0"},     {"LIMITON WARNLOWER", "0"},
        {"LIMITON WARNUPPER", "0"},
    };
    return settings;
}

std::vector<std::string> words(const std::string& line) {
    std::vector<std::string> out;
    std::size_t i = 0;
    while (i < line.size()) {
        const auto start = line.find_first_not_of(' ', i);
        if (start == std::string::npos) break;
        const auto end = line.find(' ', start);
        out.push_back(line.substr(start, end == std::string::npos ? std::string::npos : end - start));
        i = end == std::string::npos ? line.size() : end;
    }
    return out;
}

bool wholeNumber(const std::string& text, int low, int high) {
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && result.ec == std::errc() && result.ptr == text.data() + text.size() && value >= low &&
           value <= high;
}

bool realNumber(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    return !text.empty() && end == text.c_str() + text.size() && std::isfinite(value);
}

double numberOf(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

}  // namespace

SimHandTool::SimHandTool(SimToolType type) : type_(type) {
    const int count = type == SimToolType::Wht ? 1 : 3;
    for (int c = 1; c <= count; ++c) channels_.push_back({SimSignal::constant(0), "Ch " + std::to_string(c)});
    schedule_.push_back({0, SimToolState::Connected});
    factorySettings();
}

std::optional<SimToolType> SimHandTool::typeFromName(const std::string& name) {
    if (name == "WHT") return SimToolType::Wht;
    if (name == "WHT_M") return SimToolType::WhtM;
    if (name == "WMM_A") return SimToolType::WmmA;
    return std::nullopt;
}

std::string SimHandTool::typeName(SimToolType type) {
    switch (type) {
        case SimToolType::Wht:
            return "WHT";
        case SimToolType::WhtM:
            return "WHT_M";
        case SimToolType::WmmA:
            return "WMM_A";
    }
    return "?";
}

std::optional<SimToolState> SimHandTool::stateFromName(const std::string& name) {
    if (name == "unknown") return SimToolState::Unknown;
    if (name == "notconnected") return SimToolState::NotConnected;
    if (name == "connecting") return SimToolState::Connecting;
    if (name == "connected") return SimToolState::Connected;
    if (name == "error") return SimToolState::Error;
    return std::nullopt;
}

void SimHandTool::setName(const std::string& name) {
    if (name.size() > kNameWidth) throw std::invalid_argument("tool name '" + name + "' is longer than 20 characters");
    name_ = name;
}

void SimHandTool::setIdentity(const std::string& identity) {
    if (!identity.empty() && identity.size() != 10) {
        throw std::invalid_argument("tool identity '" + identity + "' must be 10 characters or empty");
    }
    identity_ = identity;
}

void SimHandTool::setBattery(int percent) {
    if (percent < 0 || percent > 255) throw std::invalid_argument("battery must be from 0 to 255");
    battery_ = percent;
}

void SimHandTool::setChannels(std::vector<SimToolChannel> channels) {
    if (channels.empty() || channels.size() > kMaxChannels) {
        throw std::invalid_argument("a tool has 1 to 12 channels");
    }
    channels_ = std::move(channels);
    factorySettings();
}

void SimHandTool::setSchedule(std::vector<SimToolStep> steps) {
    if (steps.empty()) throw std::invalid_argument("a connection needs at least one state");
    std::stable_sort(steps.begin(), steps.end(),
                     [](const SimToolStep& a, const SimToolStep& b) { return a.seconds < b.seconds; });
    schedule_ = std::move(steps);
}

SimToolState SimHandTool::stateAt(double secondsSinceStart) const {
    SimToolState state = SimToolState::NotConnected;
    for (const SimToolStep& step : schedule_) {
        if (step.seconds <= secondsSinceStart) state = step.state;
    }
    return state;
}

void SimHandTool::setEnterDelay(double seconds) {
    if (!(seconds >= 0) || seconds > 3600) throw std::invalid_argument("enter must be from 0 to 3600 seconds");
    enterDelay_ = seconds;
}

void SimHandTool::factorySettings() {
    settings_.clear();
    if (type_ == SimToolType::Wht) {
        for (const auto& [key, value] : singleSettings()) settings_[key] = value;
        return;
    }
    for (const MultiSetting& s : multiSettings()) settings_[s.key] = s.factory;
    for (std::size_t c = 1; c <= channels_.size(); ++c) settings_["DisplayedResolution " + std::to_string(c)] = "3";
}

std::string SimHandTool::setting(const std::string& key) const {
    const auto found = settings_.find(key);
    return found == settings_.end() ? std::string() : found->second;
}

std::string SimHandTool::answer(const std::string& line, Clock::time_point now) {
    const std::vector<std::string> parts = words(line);
    std::string reply = parts.empty()               ? "ERR NoCommand"
                        : type_ == SimToolType::Wht ? answerSingleChannel(parts, now)
                                                    : answerMultiChannel(parts);
    if (fault_ == SimToolFault::WrongPrefix && reply.compare(0, 3, ">>>") == 0) reply.replace(0, 3, "<<<");
    return reply;
}

std::string SimHandTool::answerMultiChannel(const std::vector<std::string>& parts) {
    const std::string& command = parts[0];
    if (command == "AssertFactorySettings") {
        factorySettings();
        return ">>>FactorySettings";
    }
    if (command == "GetDisplayedResolution" || command == "SetDisplayedResolution") {
        const std::string key = parts.size() > 1 ? "DisplayedResolution " + parts[1] : "";
        if (settings_.count(key) == 0) return "ERR NoSuchChannel";
        if (command == "GetDisplayedResolution") return ">>>DisplayedResolution " + settings_[key];
        if (parts.size() < 3 || !wholeNumber(parts[2], 0, 6)) return "ERR BadValue";
        settings_[key] = parts[2];
        return ">>>DisplayedResolution " + parts[2];
    }
    if (command.size() < 4) return "ERR UnknownCommand";
    const std::string verb = command.substr(0, 3);
    const std::string key = command.substr(3);
    const auto found = std::find_if(multiSettings().begin(), multiSettings().end(),
                                    [&](const MultiSetting& s) { return key == s.key; });
    if ((verb != "Get" && verb != "Set") || found == multiSettings().end()) return "ERR UnknownCommand";
    if (verb == "Get") return ">>>" + key + " " + settings_[key];
    const std::string value = parts.size() > 1 ? parts[1] : "";
    const bool valid = found->values.empty()
                           ? wholeNumber(value, 0, 255)
                           : std::find(found->values.begin(), found->values.end(), value) != found->values.end();
    if (!valid) return "ERR BadValue";
    settings_[key] = value;
    // These tools confirm two settings in their own words.
    if (key == "OffTime") return ">>>OffTime";
    if (key == "DisplayOrientation") return "OK DisplayOrientation " + value;
    return ">>>" + key + " " + value;
}

std::string SimHandTool::answerSingleChannel(const std::vector<std::string>& parts, Clock::time_point now) {
    const std::string& verb = parts[0];
    if (verb == "GET" && parts.size() >= 2) {
        std::string key = parts[1];
        for (std::size_t i = 2; i < parts.size(); ++i) key += " " + parts[i];
        if (key == "LIMITSTATE") return ">>>LIMITSTATE " + limitState(now);
        if (settings_.count(key) == 0) return "ERR UnknownCommand";
        return ">>>" + key + " " + settings_[key];
    }
    if (verb == "SET" && parts.size() >= 3) {
        std::string key = parts[1];
        for (std::size_t i = 2; i + 1 < parts.size(); ++i) key += " " + parts[i];
        const std::string& value = parts.back();
        if (key == "DELAY") return ">>>DELAY " + value;
        if (settings_.count(key) == 0) return "ERR UnknownCommand";
        if (!realNumber(value)) return "ERR BadValue";
        settings_[key] = value;
        return ">>>" + key + " " + value;
    }
    return "ERR UnknownCommand";
}

// Where channel 1 lies against the enabled limits, as its number.
std::string SimHandTool::limitState(Clock::time_point now) {
    const double value = channels_.front().signal.valueAt(now);
    auto enabled = [&](const char* name) { return setting(std::string("LIMITON ") + name) == "1"; };
    auto limit = [&](const char* name) { return numberOf(setting(std::string("LIMIT ") + name)); };
    if (enabled("LOWER") && enabled("UPPER") && limit("LOWER") > limit("UPPER")) return "1";  // Invalid
    if (enabled("LOWER") && value < limit("LOWER")) return "2";
    if (enabled("UPPER") && value > limit("UPPER")) return "3";
    if (enabled("WARNUPPER") && value > limit("WARNUPPER")) return "4";
    if (enabled("WARNLOWER") && value < limit("WARNLOWER")) return "5";
    return "0";
}

std::string SimHandTool::describe() const {
    std::string text = padText(typeName(type_), 6) + " " + (identity_.empty() ? std::string(10, '-') : identity_) +
                       "  \"" + name_ + "\", " + std::to_string(channels_.size()) + " channel" +
                       (channels_.size() == 1 ? "" : "s") + ", battery " + std::to_string(battery_);
    if (fault_ != SimToolFault::None) text += ", faulty";
    return text;
}

SimHandTool SimHandTool::parse(const std::vector<std::string>& words) {
    if (words.empty()) throw std::invalid_argument("tool needs a type: WHT, WHT_M or WMM_A");
    const auto type = typeFromName(words[0]);
    if (!type) throw std::invalid_argument("unknown tool type '" + words[0] + "' (expected WHT, WHT_M or WMM_A)");
    SimHandTool tool(*type);
    std::map<std::string, std::string> values;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const auto equals = words[i].find('=');
        if (equals == std::string::npos || equals == 0) {
            throw std::invalid_argument("expected key=value, found '" + words[i] + "'");
        }
        if (!values.emplace(words[i].substr(0, equals), words[i].substr(equals + 1)).second) {
            throw std::invalid_argument("'" + words[i].substr(0, equals) + "' is given twice");
        }
    }
    auto take = [&](const std::string& key) -> std::optional<std::string> {
        const auto found = values.find(key);
        if (found == values.end()) return std::nullopt;
        std::string value = found->second;
        values.erase(found);
        return value;
    };
    auto whole = [](const std::string& key, const std::string& text, int low, int high) {
        if (!wholeNumber(text, low, high)) {
            throw std::invalid_argument(key + " '" + text + "' must be a whole number from " + std::to_string(low) +
                                        " to " + std::to_string(high));
        }
        return std::atoi(text.c_str());
    };
    if (auto name = take("name")) tool.setName(*name);
    if (auto identity = take("identity")) tool.setIdentity(*identity);
    if (auto battery = take("battery")) tool.setBattery(whole("battery", *battery, 0, 255));
    if (auto enter = take("enter")) {
        if (!realNumber(*enter)) throw std::invalid_argument("enter '" + *enter + "' is not a number");
        tool.setEnterDelay(numberOf(*enter));
    }
    if (auto fault = take("fault")) {
        const std::map<std::string, SimToolFault> faults = {
            {"none", SimToolFault::None},
            {"never-config", SimToolFault::NeverEntersConfigMode},
            {"connection-error", SimToolFault::ConnectionError},
            {"incomplete", SimToolFault::ReplyNeverCompletes},
            {"wrong-prefix", SimToolFault::WrongPrefix},
        };
        const auto found = faults.find(*fault);
        if (found == faults.end()) {
            throw std::invalid_argument("unknown fault '" + *fault +
                                        "' (expected none, never-config, connection-error, incomplete, wrong-prefix)");
        }
        tool.setFault(found->second);
    }
    if (auto connection = take("connection")) {
        // STATE[@SECONDS],...: the first state holds from the start.
        std::vector<SimToolStep> steps;
        std::size_t start = 0;
        while (start <= connection->size()) {
            const auto comma = connection->find(',', start);
            const std::string item =
                connection->substr(start, comma == std::string::npos ? std::string::npos : comma - start);
            const auto at = item.find('@');
            const auto state = stateFromName(item.substr(0, at));
            if (!state) {
                throw std::invalid_argument("unknown connection state '" + item.substr(0, at) +
                                            "' (expected unknown, notconnected, connecting, connected, error)");
            }
            SimToolStep step{0, *state};
            if (at != std::string::npos) {
                const std::string seconds = item.substr(at + 1);
                if (!realNumber(seconds) || numberOf(seconds) < 0) {
                    throw std::invalid_argument("connection time '" + seconds + "' is not a number of seconds");
                }
                step.seconds = numberOf(seconds);
            }
            steps.push_back(step);
            if (comma == std::string::npos) break;
            start = comma + 1;
        }
        tool.setSchedule(steps);
    }
    std::vector<SimToolChannel> channels = tool.channels();
    bool channelsGiven = false;
    for (std::size_t c = 1; c <= kMaxChannels; ++c) {
        const auto signal = take("ch" + std::to_string(c));
        const auto text = take("text" + std::to_string(c));
        if (!signal && !text) continue;
        channelsGiven = true;
        if (channels.size() < c) {
            for (std::size_t k = channels.size() + 1; k <= c; ++k) {
                channels.push_back({SimSignal::constant(0), "Ch " + std::to_string(k)});
            }
        }
        if (signal) channels[c - 1].signal = SimSignal::parse(*signal);
        if (text) channels[c - 1].text = *text;
    }
    if (auto count = take("channels")) {
        const int n = whole("channels", *count, 1, static_cast<int>(kMaxChannels));
        channels.resize(static_cast<std::size_t>(n), {SimSignal::constant(0), ""});
        for (std::size_t k = 0; k < channels.size(); ++k) {
            if (channels[k].text.empty()) channels[k].text = "Ch " + std::to_string(k + 1);
        }
        channelsGiven = true;
    }
    if (channelsGiven) tool.setChannels(channels);
    if (!values.empty()) throw std::invalid_argument("unknown setting '" + values.begin()->first + "' for a tool");
    return tool;
}

}  // namespace kavrosim
