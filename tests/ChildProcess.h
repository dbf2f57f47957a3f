// Runs one of the project's programs as a child process, reading what it
// writes to its standard output and error through one pipe.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

class ChildProcess {
public:
    ChildProcess(const std::string& program, std::vector<std::string> args) : args_(std::move(args)) {
        args_.insert(args_.begin(), program);
        // Everything the child needs is built before the fork: other threads
        // of the test may hold the allocator's lock at that moment.
        std::vector<char*> argv;
        for (std::string& arg : args_) argv.push_back(arg.data());
        argv.push_back(nullptr);
        int out[2];
        if (pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe2 failed");
        pid_ = fork();
        if (pid_ < 0) throw std::runtime_error("fork failed");
        if (pid_ == 0) {
            dup2(out[1], 1);
            dup2(out[1], 2);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(out[1]);
        fd_ = out[0];
    }
    ~ChildProcess() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        close(fd_);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Output until `marker` appears or the output ends, within the bound.
    std::string readUntil(const std::string& marker,
                          std::chrono::milliseconds bound = std::chrono::milliseconds(10000)) {
        const auto deadline = std::chrono::steady_clock::now() + bound;
        while (output_.find(marker) == std::string::npos) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            pollfd watch{fd_, POLLIN, 0};
            if (left.count() <= 0 || poll(&watch, 1, static_cast<int>(left.count())) <= 0) break;
            char buffer[512];
            const ssize_t n = read(fd_, buffer, sizeof buffer);
            if (n <= 0) {
                ended_ = true;
                break;
            }
            output_.append(buffer, static_cast<std::size_t>(n));
        }
        return output_;
    }

    // All the output, once it has ended (within the bound).
    std::string output(std::chrono::milliseconds bound = std::chrono::milliseconds(10000)) {
        return readUntil(std::string("\x01(end)"), bound);
    }

    // The exit status once the output has ended; -1 when the child did not
    // end within the bound and had to be killed.
    int exitStatus() {
        output();
        if (!ended_) kill(pid_, SIGKILL);
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    void signal(int number) { kill(pid_, number); }

private:
    std::vector<std::string> args_;
    pid_t pid_ = -1;
    int fd_ = -1;
    std::string output_;
    bool ended_ = false;
};
