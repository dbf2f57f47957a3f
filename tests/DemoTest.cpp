// The demo program end to end: it runs on the built-in simulated bus, names
// the three networks, exits 0 and leaves no temporary folder behind.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "TempDir.h"

namespace {

struct DemoRun {
    int exitCode = -1;
    std::string output;
};

// Runs the program with TMPDIR set to `tmp`; gives up (and kills it) after
// the bound.
DemoRun runDemo(const std::string& tmp, std::chrono::seconds bound) {
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out[1], 1);
        dup2(out[1], 2);
        setenv("TMPDIR", tmp.c_str(), 1);
        execl(KAVRO_BINARY_DIR "/tools/kavro-demo", "kavro-demo", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(out[1]);
    DemoRun run;
    const auto deadline = std::chrono::steady_clock::now() + bound;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd watch{out[0], POLLIN, 0};
        if (left.count() <= 0 || poll(&watch, 1, static_cast<int>(left.count())) <= 0) {
            kill(pid, SIGKILL);
            run.output += "\n(killed: still running after the bound)";
            break;
        }
        char buffer[4096];
        const ssize_t n = read(out[0], buffer, sizeof buffer);
        if (n <= 0) break;
        run.output.append(buffer, static_cast<std::size_t>(n));
    }
    close(out[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace

TEST(Demo, RunsOnTheSimulatedBusAndCleansUp) {
    TempDir tmp;
    const DemoRun run = runDemo(tmp.path().string(), std::chrono::seconds(120));
    EXPECT_EQ(0, run.exitCode) << run.output;
    for (const char* network :
         {"Network 0: Bench Ethernet  --  ETHIM (ETHSIM0001)", "Network 1: Bench RS232  --  RS232IM (SERSIM0001)",
          "Network 2: (found on USB)  --  USBIM (USBSIM0001)"}) {
        EXPECT_NE(std::string::npos, run.output.find(network)) << network << "\n" << run.output;
    }
    EXPECT_NE(std::string::npos, run.output.find("GP01000021")) << run.output;
    EXPECT_NE(std::string::npos, run.output.find("GP05000006 announced itself")) << run.output;
    EXPECT_EQ(std::string::npos, run.output.find("could not")) << run.output;
    // Its private HOME is gone.
    EXPECT_TRUE(std::filesystem::is_empty(tmp.path()));
}
