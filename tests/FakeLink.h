// A scripted stand-in for a controller link, for unit tests of anything that
// talks to modules through a NetworkConfiguration.
//
// Constructing a FakeLink on a NetworkConfiguration fills its link table
// (SendCommand, GetReply, Identify, GetInfo, SetSpeed, SetIdle) with fakes;
// the destructor puts the previous table back. The fake then
//  - records every module command sent (type, length, reply length and a copy
//    of the bytes) and every reply fetch (the echo and long-reply arguments),
//    each with a steady-clock time stamp;
//  - answers each reply fetch with the next scripted reply (a status and the
//    bytes, handed over in a new[] buffer exactly as a real link does, or no
//    bytes at all); with the script empty it asks the responder, if one is
//    set, and otherwise answers status 255 with no bytes, as a silent bus does;
//  - answers the controller requests with scripted records and records the
//    speed and idle requests.
//
// It is thread-safe: a worker thread of the code under test may send while the
// test thread scripts and inspects. Use waitForCommands / waitForFetches to
// wait for a worker, never a sleep.
//
// Typical use:
//     NetworkConfiguration config(0, "test");
//     FakeLink link(config);
//     link.reply({'1', 0x34, 0x12});
//     auto r = KavroCommands::KavroRead1(&config, 3);
//     EXPECT_EQ((FakeLink::Bytes{'1', 3}), link.lastCommand().Data);
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

class FakeLink {
public:
    using Clock = std::chrono::steady_clock;
    using Bytes = std::vector<unsigned char>;

    // One module command as the link received it.
    struct Command {
        int Type = 0;
        int Length = 0;
        int ReplyLength = 0;
        Bytes Data;  // the Length bytes the command pointed at
        Clock::time_point At;
    };

    // One GetReply call.
    struct Fetch {
        unsigned char Echo = 0;
        bool LongReply = false;
        std::size_t CommandsBefore = 0;  // commands sent before this fetch
        Clock::time_point At;
    };

    // One scripted reply. No bytes gives a reply without a buffer.
    struct Reply {
        std::uint32_t Status = 0;
        Bytes Data;
    };

    // Builds the reply to a fetch from the last command sent (null when none).
    using Responder = std::function<Reply(const Command* last, const Fetch& fetch)>;

    explicit FakeLink(NetworkConfiguration& config);
    ~FakeLink();
    FakeLink(const FakeLink&) = delete;
    FakeLink& operator=(const FakeLink&) = delete;

    // --- scripting module replies (answered in order) ---
    void reply(Bytes data, std::uint32_t status = 0);
    void replyText(const std::string& data, std::uint32_t status = 0);  // the string's bytes
    void noReply(std::uint32_t status = 255);                           // a status and no bytes
    void setResponder(Responder responder);
    std::size_t pendingReplies() const;

    // --- scripting controller requests ---
    void setControllerIdentify(const ControllerIdentifyReply& reply);
    void setControllerInfo(const ControllerInfoReply& reply);
    void setSpeedStatus(std::uint32_t status);  // what SetSpeed returns (default 0)

    // --- inspection (copies, taken under the lock) ---
    std::vector<Command> commands() const;
    std::vector<Fetch> fetches() const;
    Command lastCommand() const;  // an empty Command when none was sent
    std::size_t commandCount() const;
    std::vector<eNetSpeed> speedRequests() const;
    int idleRequests() const;
    int identifyRequests() const;
    int infoRequests() const;
    void clearRecords();  // forget what was recorded; the script stays

    // Waits, for at most `bound`, until at least `count` commands (fetches)
    // have been recorded; true when they have.
    bool waitForCommands(std::size_t count, std::chrono::milliseconds bound) const;
    bool waitForFetches(std::size_t count, std::chrono::milliseconds bound) const;

private:
    static FakeLink* find(NetworkConfiguration* config);
    static void sendCommand(NetworkConfiguration* config, ModuleCommand* command);
    static ModuleReply getReply(NetworkConfiguration* config, unsigned char echo, bool longReply);
    static ControllerIdentifyReply identify(NetworkConfiguration* config);
    static ControllerInfoReply getInfo(NetworkConfiguration* config);
    static std::uint32_t setSpeed(NetworkConfiguration* config, eNetSpeed speed);
    static std::uint32_t setIdle(NetworkConfiguration* config);

    NetworkConfiguration& config_;
    // The table the fake replaced, put back on destruction.
    IdentifyFn savedIdentify_;
    GetInfoFn savedGetInfo_;
    SendCommandFn savedSendCommand_;
    GetReplyFn savedGetReply_;
    SetSpeedFn savedSetSpeed_;
    SetIdleFn savedSetIdle_;

    mutable std::mutex lock_;
    mutable std::condition_variable changed_;
    std::deque<Reply> script_;
    Responder responder_;
    std::vector<Command> commands_;
    std::vector<Fetch> fetches_;
    ControllerIdentifyReply identifyReply_;
    ControllerInfoReply infoReply_;
    std::uint32_t speedStatus_ = 0;
    std::vector<eNetSpeed> speedRequests_;
    int idleRequests_ = 0;
    int identifyRequests_ = 0;
    int infoRequests_ = 0;
};

}  // namespace KavroLibrary
