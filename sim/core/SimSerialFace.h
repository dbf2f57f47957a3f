// The serial interface module on a pseudo-terminal: the host opens the
// slave device (slavePath(), or the optional link path) as its RS-232 line.
// The face keeps a slave descriptor of its own open, so the line survives
// hosts that close and reopen it, and sets the line raw so that nothing is
// echoed or translated before the host sets it up.
#pragma once

#include <memory>
#include <string>
#include <thread>

#include "core/SimFace.h"
#include "core/SimStopSignal.h"

namespace kavrosim {

class SimSerialFace : public SimFace {
public:
    // With a link path, start() makes a symbolic link there to the slave
    // device (replacing a stale link, never another file) and stop()
    // removes it.
    explicit SimSerialFace(SimController& controller, std::string linkPath = "");
    ~SimSerialFace() override;

    void start() override;
    void stop() override;
    bool running() const override { return thread_.joinable(); }
    // The link path when there is one, else the slave device.
    std::string location() const override;
    std::string describe() const override;

    const std::string& slavePath() const { return slavePath_; }
    const std::string& linkPath() const { return linkPath_; }

private:
    void run();
    void closeAll();

    std::string linkPath_;
    std::string slavePath_;
    int master_ = -1;
    int slave_ = -1;
    bool linked_ = false;
    std::unique_ptr<SimStopSignal> stop_;
    std::thread thread_;
};

}  // namespace kavrosim
