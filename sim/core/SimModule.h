// One simulated module on the measurement bus: what it is (identity, kind,
// generation, scale), the state the bus gives it (address, speed, settings)
// and how it answers the commands addressed to it.
//
// A SimModule is a plain value: build one, adjust it, hand a copy to a
// SimController, which owns its modules and changes them only under its lock.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/SimBuffered.h"
#include "core/SimBytes.h"
#include "core/SimDifference.h"
#include "core/SimModuleKind.h"
#include "core/SimSignal.h"
#include "core/SimSpeed.h"
#include "core/SimWcm.h"

namespace kavrosim {

// A reading as the module takes it: inside its range with a count, or
// under or over the range.
struct SimReading {
    enum class Range { Inside, Under, Over };
    Range range = Range::Inside;
    long long counts = 0;
    double value = 0;  // the signal's value in units
};

// How the module turns units into counts, and how it reports that.
struct SimScale {
    std::string units;     // units text of the info text: "mm", "deg", " V ", ""
    double countsPerUnit;  // at the lowest resolution
    double offset;         // units at count 0
    bool bounded;          // readings outside [low, high] are under or over range
    double low;
    double high;
    int formatDigit;  // 3 for millimetre and voltage kinds, 6 for the others
    int readFormat;   // 1: one-word reads; 0: two-word reads
};

class SimModule {
public:
    using Clock = std::chrono::steady_clock;

    // Each kind starts as a typical module of its kind; identities are 10
    // printable characters without blanks.
    static SimModule digitalProbe(const std::string& identity, double rangeMm);
    static SimModule linearEncoder(const std::string& identity);
    static SimModule encoderInput(const std::string& identity);
    static SimModule diom(const std::string& identity);
    static SimModule dio2(const std::string& identity);
    static SimModule analogue(const std::string& identity, int partNumber);
    // A wireless concentrator with six empty slots (wcm() fills them).
    static SimModule wcm(const std::string& identity);

    // Throws std::invalid_argument when the settings contradict each other
    // (for example an old-format probe whose range is not whole millimetres).
    void validate() const;

    // --- What the module is.
    const std::string& identity() const { return identity_; }
    SimKind kind() const { return kind_; }
    // 0: no get-info (answers "!" 0x03); 1: firmware below 100; 2: 100 to
    // 149; 3: 150 and up.
    int generation() const;
    // Moves the firmware number to the generation's usual one (90, 95, 120, 150).
    void setGeneration(int generation);
    int firmwareNumber() const { return firmware_; }
    // For generations 1 to 3 the firmware number decides the generation.
    void setFirmwareNumber(int number);
    SimInfoFormat infoFormat() const { return format_; }
    void setInfoFormat(SimInfoFormat format) { format_ = format; }
    const std::string& partNumber() const { return partNumber_; }  // "P630101A"
    void setPartNumber(const std::string& text);
    const std::string& model() const { return model_; }
    void setModel(const std::string& text);
    // A probe's measuring range, an encoder's stroke, in millimetres.
    double range() const { return range_; }
    void setRange(double millimetres);
    // Counts per unit of a new-format encoder (default 1000 for a linear
    // encoder, 10 for an encoder input module).
    void setCountsPerUnit(double counts);
    SimScale scale() const;
    std::string typeText() const { return kindTypeText(kind_); }
    std::string infoText() const;
    std::vector<SimSpeed> speeds() const;

    // --- What the bus and the host change.
    int address() const { return address_; }
    void setAddress(int address);
    SimSpeed speed() const { return speed_; }
    SimSpeed pendingSpeed() const { return pendingSpeed_; }
    void setSpeed(SimSpeed speed);
    int resolutionBits() const { return resolutionBits_; }
    void setResolutionBits(int bits);
    int resolutionFactor() const;
    int averaging() const { return averaging_; }
    void setAveraging(int samples);
    bool reversed() const { return reversed_; }
    const SimSignal& signal() const { return signal_; }
    void setSignal(SimSignal signal) { signal_ = std::move(signal); }
    bool announcing() const { return announcing_; }
    void setAnnouncing(bool on) { announcing_ = on; }
    // What get-status answers: an error byte and a status word.
    void setStatus(std::uint8_t errorByte, std::uint16_t word);
    // Configuration memory: a byte block per location (second word 0).
    void setConfig(unsigned location, const Bytes& data);
    std::optional<Bytes> config(unsigned location) const;
    // Difference and buffered modes, with their knobs (sample rate, buffer size).
    SimDifference& difference() { return difference_; }
    const SimDifference& difference() const { return difference_; }
    SimBuffered& buffered() { return buffered_; }
    const SimBuffered& buffered() const { return buffered_; }
    // The concentrator of a wcm module; null for the other kinds.
    SimWcm* wcm() { return wcm_ ? &*wcm_ : nullptr; }
    const SimWcm* wcm() const { return wcm_ ? &*wcm_ : nullptr; }

    // --- How it answers.
    bool hears(SimSpeed busSpeed) const { return speed_ == busSpeed; }
    SimReading read(Clock::time_point now);
    // The count at the top of a bounded module's range.
    long long fullScaleCounts() const;
    // The reply to a command addressed to this module (command code, address,
    // payload). Set-address, notify, ping and the broadcasts go through the
    // functions below instead.
    Bytes execute(const Bytes& command, Clock::time_point now);
    // Set-address: true when the identity in the command is this module's.
    bool takeAddress(const Bytes& command);
    // Reset and clear-TCON: unaddressed, back to speed Low.
    void reset();
    // A broadcast control action; 10 applies the pending speed, 0 to 3 steer
    // buffered mode.
    void control(int action, Clock::time_point now);
    // The broadcast difference start "O" and stop "H".
    void startDifference(Clock::time_point now);
    void stopDifference(Clock::time_point now);
    int pingSlot() const;
    Bytes pingReply() const;
    // Set-mode 60 to 63 put the module in dynamic mode; control action 21
    // (or 42) and a reset take it out.
    bool inDynamicMode() const { return dynamic_; }
    void setDynamicMode(bool on) { dynamic_ = on; }
    // The 24-bit word a dynamic stream carries for a set taken at `when`.
    std::uint32_t dynamicWord(Clock::time_point when);
    // Four bytes of a read burst: 23-bit reading and a status byte.
    Bytes burstRecord(Clock::time_point now);
    Bytes identifyReply() const;

    // One line for people: kind, identity, generation, scale and signal.
    std::string describe() const;

private:
    SimModule(SimKind kind, const std::string& identity);

    Bytes infoReply() const;
    Bytes setMode(unsigned mode, unsigned argument, Clock::time_point now);
    Bytes configRead(const Bytes& command) const;
    Bytes configWrite(const Bytes& command);
    Bytes readMemory(const Bytes& command) const;
    long long rawCounts(double value) const;
    int rangeField() const;
    int strokeCode() const;
    bool counts() const;  // encoders: direction and preset apply

    SimKind kind_;
    std::string identity_;
    bool legacy_ = false;
    int firmware_ = 150;
    SimInfoFormat format_ = SimInfoFormat::New;
    std::string partNumber_;
    std::string model_;
    double range_ = 0;
    double countsPerUnit_ = 1;
    int address_ = 0;
    SimSpeed speed_ = SimSpeed::Low;
    SimSpeed pendingSpeed_ = SimSpeed::Low;
    int resolutionBits_ = 14;
    int averaging_ = 16;
    bool reversed_ = false;
    long long presetOffset_ = 0;
    SimSignal signal_;
    bool announcing_ = false;
    bool dynamic_ = false;
    mutable double textedFrom_ = -1;  // rawCounts' last counts per unit and its value through text
    mutable double texted_ = 0;
    std::uint8_t statusError_ = 0;
    std::uint16_t statusWord_ = 0;
    std::map<unsigned, Bytes> config_;
    SimDifference difference_;
    SimBuffered buffered_;
    std::optional<SimWcm> wcm_;
};

}  // namespace kavrosim
