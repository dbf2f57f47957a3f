// A wireless hand tool behind a simulated wireless concentrator: what the
// concentrator reports of it (type, name, identity, battery, channels, a
// connection that may change over time) and how it answers the text
// commands that reach it through the pass-through channel.
//
// Multi-channel tools (WHT_M, WMM_A) answer "GetX" and "SetX value" with
// ">>>X value"; single-channel tools (WHT) answer "GET KEY" and
// "SET KEY VALUE" with ">>>KEY VALUE" (docs/design/protocol.md 1.13).
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/SimSignal.h"

namespace kavrosim {

enum class SimToolType { Wht = 1, WhtM = 2, WmmA = 3 };

// The connection states as the concentrator reports them.
enum class SimToolState { Unknown = 0, NotConnected = 1, Connecting = 2, Connected = 3, Error = 4 };

// Misbehaviour on request.
enum class SimToolFault {
    None,
    NeverEntersConfigMode,  // configuration mode is asked for but never reached
    ConnectionError,        // asking for configuration mode breaks the link (state Error)
    ReplyNeverCompletes,    // the reply's text arrives but never its line end
    WrongPrefix,            // replies start "<<<" instead of ">>>"
};

struct SimToolChannel {
    SimSignal signal;  // the value, in millimetres
    std::string text;  // what the concentrator says of the channel
};

// From `seconds` after the concentrator starts, the tool is in `state`.
struct SimToolStep {
    double seconds = 0;
    SimToolState state = SimToolState::Connected;
};

class SimHandTool {
public:
    using Clock = std::chrono::steady_clock;

    // A connected tool with one channel (three for WHT_M and WMM_A) and the
    // factory settings of its type.
    explicit SimHandTool(SimToolType type);

    // "WHT", "WHT_M", "WMM_A".
    static std::optional<SimToolType> typeFromName(const std::string& name);
    static std::string typeName(SimToolType type);
    // State names for scenarios: unknown, notconnected, connecting, connected, error.
    static std::optional<SimToolState> stateFromName(const std::string& name);

    // Reads "tool SLOT TYPE key=value ..." without its first two words
    // (the type and the settings); throws std::invalid_argument naming what
    // is wrong.
    static SimHandTool parse(const std::vector<std::string>& words);

    SimToolType type() const { return type_; }
    const std::string& name() const { return name_; }
    void setName(const std::string& name);  // up to 20 characters
    const std::string& identity() const { return identity_; }
    void setIdentity(const std::string& identity);  // 10 characters, or empty
    int battery() const { return battery_; }
    void setBattery(int percent);
    std::vector<SimToolChannel>& channels() { return channels_; }
    const std::vector<SimToolChannel>& channels() const { return channels_; }
    void setChannels(std::vector<SimToolChannel> channels);  // 1 to 12

    // The connection over time, from the concentrator's start.
    void setSchedule(std::vector<SimToolStep> steps);
    SimToolState stateAt(double secondsSinceStart) const;
    // Seconds from asking for configuration mode to being in it.
    double enterDelay() const { return enterDelay_; }
    void setEnterDelay(double seconds);
    SimToolFault fault() const { return fault_; }
    void setFault(SimToolFault fault) { fault_ = fault; }

    // The tool's setting under a key of its command set ("OffTime",
    // "DisplayedResolution 2", "LIMIT LOWER"); empty when it has none.
    std::string setting(const std::string& key) const;

    // The reply line (without its line end) to one command line.
    std::string answer(const std::string& line, Clock::time_point now);

    // One line for people.
    std::string describe() const;

private:
    void factorySettings();
    std::string answerMultiChannel(const std::vector<std::string>& words);
    std::string answerSingleChannel(const std::vector<std::string>& words, Clock::time_point now);
    std::string limitState(Clock::time_point now);

    SimToolType type_;
    std::string name_;
    std::string identity_;
    int battery_ = 100;
    std::vector<SimToolChannel> channels_;
    std::vector<SimToolStep> schedule_;
    double enterDelay_ = 0.3;
    SimToolFault fault_ = SimToolFault::None;
    std::map<std::string, std::string> settings_;
};

}  // namespace kavrosim
