#include "core/SimSerialFace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "core/SimStreamPump.h"

namespace kavrosim {

namespace {

std::runtime_error failure(const std::string& what) {
    return std::runtime_error("serial face: " + what + ": " + std::strerror(errno));
}

}  // namespace

SimSerialFace::SimSerialFace(SimController& controller, std::string linkPath)
    : SimFace(controller), linkPath_(std::move(linkPath)) {}

SimSerialFace::~SimSerialFace() { stop(); }

std::string SimSerialFace::location() const { return linkPath_.empty() ? slavePath_ : linkPath_; }

std::string SimSerialFace::describe() const {
    std::string text = "serial " + slavePath_;
    if (!linkPath_.empty()) text += " (link " + linkPath_ + ")";
    return text;
}

void SimSerialFace::start() {
    if (running()) return;
    auto stop = std::make_unique<SimStopSignal>();
    try {
        master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master_ < 0) throw failure("posix_openpt");
        if (grantpt(master_) != 0 || unlockpt(master_) != 0) throw failure("unlocking the pseudo-terminal");
        char name[128];
        if (ptsname_r(master_, name, sizeof name) != 0) throw failure("ptsname");
        slavePath_ = name;
        slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (slave_ < 0) throw failure("opening " + slavePath_);
        termios line{};
        if (tcgetattr(slave_, &line) != 0) throw failure("reading the line settings");
        cfmakeraw(&line);
        if (tcsetattr(slave_, TCSANOW, &line) != 0) throw failure("setting the line raw");
        const int flags = fcntl(master_, F_GETFL);
        if (flags < 0 || fcntl(master_, F_SETFL, flags | O_NONBLOCK) != 0) throw failure("fcntl");
        if (!linkPath_.empty()) {
            struct stat existing {};
            if (lstat(linkPath_.c_str(), &existing) == 0) {
                if (!S_ISLNK(existing.st_mode)) {
                    errno = EEXIST;
                    throw failure("will not replace " + linkPath_ + ", which is not a symbolic link");
                }
                unlink(linkPath_.c_str());
            }
            if (symlink(slavePath_.c_str(), linkPath_.c_str()) != 0) throw failure("linking " + linkPath_);
            linked_ = true;
        }
    } catch (...) {
        closeAll();
        throw;
    }
    stop_ = std::move(stop);
    thread_ = std::thread(&SimSerialFace::run, this);
}

void SimSerialFace::stop() {
    if (!running()) return;
    stop_->raise();
    thread_.join();
    stop_.reset();
    closeAll();
}

void SimSerialFace::closeAll() {
    if (linked_) {
        // Remove the link only while it still points at this face's line.
        char target[256];
        const ssize_t length = readlink(linkPath_.c_str(), target, sizeof target - 1);
        if (length >= 0 && std::string(target, static_cast<std::size_t>(length)) == slavePath_) {
            unlink(linkPath_.c_str());
        }
        linked_ = false;
    }
    if (slave_ >= 0) close(slave_);
    if (master_ >= 0) close(master_);
    slave_ = -1;
    master_ = -1;
}

void SimSerialFace::run() {
    while (!stop_->raised()) {
        const SimPumpEnd end = pumpStream({master_, false}, controller(), SimStreamDialect::Serial, *stop_);
        if (end == SimPumpEnd::Stopped) return;
        if (end == SimPumpEnd::CloseRequested) {
            // A line cannot be closed on the host: the controller drops
            // what it received and answers nothing.
            std::uint8_t discard[4096];
            while (read(master_, discard, sizeof discard) > 0) {
            }
            continue;
        }
        // The line reported an error; do not spin while it lasts.
        stop_->waitFor(std::chrono::milliseconds(50));
    }
}

}  // namespace kavrosim
