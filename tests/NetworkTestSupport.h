// A bus of pretend modules behind a pretend controller, installed in a
// network's link table: it records every command and reply fetch, and
// answers as the modules described in docs/design/protocol.md would, or with
// the replies a test scripts (malformed ones too).
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KavroLibrary.h"
#include "MessageOf.h"
#include "links/NetworkConfiguration.h"

struct FakeModule {
    std::string identity;           // 10 characters
    std::string typeText = "DP  ";  // get-info type text, 4 characters
    std::uint16_t firmware = 150;   // hundredths
    std::uint16_t strokeCode = 0;
    std::string infoText = std::string(32, ' ');
    std::string partNumber = "P504000A";  // 8 characters
    std::string version = "1.50 ";        // 5 characters
    int probeRange = 2;                   // millimetres
    bool answersGetInfo = true;           // false: "!" NO_CMD, as a first-generation module
    int address = 0;                      // 0 = unaddressed
    std::uint32_t reading = 0;            // what reads return
    int readError = 0;                    // module error byte of reads (0 = good)
    std::vector<unsigned char> memory;    // answer bytes of read memory (after the echo)
    int memoryError = 0;                  // error byte for read-memory refusals (0 = answer)
    std::uint16_t statusWord = 0;
    int statusError = 0;
    int refuseSetMode = 0;  // error byte for set-mode refusals (0 = accept)
};

// A new-format information text with this many counts per millimetre, read
// format and resolution factor.
std::string NewFormatInfo(const std::string& countsPerUnit = "8192.000", char readFormat = '0', int factor = 1);

// A probe of 2 mm range, 8192 counts per mm, read with two words; a
// firmware below 150 makes it an earlier generation. `newFormat` false leaves
// the information text blank, so that the module is decoded the older way.
FakeModule FakeProbe(const std::string& identity, std::uint16_t firmware = 150, bool newFormat = true);

// Collects the library's diagnostic lines (each with its line feed) while it lives.
class DiagnosticCapture {
public:
    DiagnosticCapture() {
        KavroLibrary::setDiagnosticHandler([this](const std::string& line) {
            std::lock_guard<std::mutex> guard(lock_);
            captured_ += line + "\n";
        });
    }
    ~DiagnosticCapture() { KavroLibrary::setDiagnosticHandler(nullptr); }
    DiagnosticCapture(const DiagnosticCapture&) = delete;
    DiagnosticCapture& operator=(const DiagnosticCapture&) = delete;
    std::string text() const {
        std::lock_guard<std::mutex> guard(lock_);
        return captured_;
    }

private:
    mutable std::mutex lock_;
    std::string captured_;
};

class FakeModuleBus {
public:
    using Bytes = std::vector<unsigned char>;
    using Clock = std::chrono::steady_clock;
    struct Sent {
        int Type = 0;
        int ReplyLength = 0;
        Clock::time_point At;
    };
    struct Fetch {
        unsigned char Echo = 0;
        bool LongReply = false;
        Clock::time_point At;
    };

    explicit FakeModuleBus(KavroLibrary::NetworkConfiguration* config);
    ~FakeModuleBus();
    FakeModuleBus(const FakeModuleBus&) = delete;
    FakeModuleBus& operator=(const FakeModuleBus&) = delete;

    // Controller answers.
    bool controllerAnswersInfo = true;
    bool controllerAnswersIdentify = true;
    std::string controllerType = "ETHI";
    std::string controllerId = "CTRL000001";
    std::string controllerVersion = "1.20 ";
    std::uint16_t controllerFirmware = 160;
    std::string limitText = "L032";

    std::vector<FakeModule> modules;
    FakeModule& add(FakeModule module);
    FakeModule* at(int address);
    FakeModule* withIdentity(const std::string& identity);

    // Replies answered in order before any module's: a status and the bytes
    // (none: no buffer, as a silent link gives).
    void reply(Bytes data, std::uint32_t status = 0) { script_.push_back({status, std::move(data)}); }
    std::size_t pendingReplies() const { return script_.size(); }

    // Every module command's bytes, in order, with its kind and reply length
    // in `sent`; every reply fetch; controller speed requests.
    std::vector<Bytes> commands;
    std::vector<Sent> sent;
    std::vector<Fetch> fetches;
    std::vector<KavroLibrary::eNetSpeed> speedRequests;
    void clearRecords();
    // The commands whose code is `code`.
    std::vector<Bytes> commandsWithCode(char code) const;

    // Connects the record as a link's Connect does, with these controller
    // speeds and every controller capability; false when the initialisation
    // fails. The bus is not reset at every speed (that takes 500 ms a speed).
    bool connect(std::vector<KavroLibrary::eNetSpeed> speeds = {
                     KavroLibrary::eNetSpeed::Low, KavroLibrary::eNetSpeed::High, KavroLibrary::eNetSpeed::UltraHigh});

private:
    static FakeModuleBus* find(KavroLibrary::NetworkConfiguration* config);
    static KavroLibrary::ControllerIdentifyReply identify(KavroLibrary::NetworkConfiguration* config);
    static KavroLibrary::ControllerInfoReply getInfo(KavroLibrary::NetworkConfiguration* config);
    static void send(KavroLibrary::NetworkConfiguration* config, KavroLibrary::ModuleCommand* command);
    static KavroLibrary::ModuleReply fetch(KavroLibrary::NetworkConfiguration* config, unsigned char echo, bool longReply);
    static std::uint32_t setSpeed(KavroLibrary::NetworkConfiguration* config, KavroLibrary::eNetSpeed speed);
    static std::uint32_t setIdle(KavroLibrary::NetworkConfiguration* config);

    std::optional<Bytes> answer(const Bytes& command);

    KavroLibrary::NetworkConfiguration* config_;
    std::optional<Bytes> pending_;
    std::deque<std::pair<std::uint32_t, Bytes>> script_;
};

// A base network over the fake bus (not yet connected).
struct FakeNetwork {
    KavroLibrary::KavroNetwork network{0, "Test network"};
    FakeModuleBus bus{network.Configuration()};
    KavroLibrary::NetworkConfiguration* config() { return network.Configuration(); }
};

// One connected probe, PROBE00001, at address 1, with the records cleared.
class OneProbeTest : public ::testing::Test {
protected:
    void SetUp() override {
        fake.bus.add(FakeProbe("PROBE00001"));
        ASSERT_TRUE(fake.bus.connect());
        fake.network.AddModule("PROBE00001", "");
        module = fake.network.GetModule(0);
        probe = dynamic_cast<KavroLibrary::KavroModuleDP*>(module);
        onBus = fake.bus.withIdentity("PROBE00001");
        fake.bus.clearRecords();
    }

    FakeNetwork fake;
    KavroLibrary::KavroModule* module = nullptr;
    KavroLibrary::KavroModuleDP* probe = nullptr;
    FakeModule* onBus = nullptr;
};
