// Networks against controllers and modules that fail: nobody listening, a
// controller that never answers, lost, cut and late replies. Each failure is
// reported as it should be, and none waits longer than its time-out.
#include <unistd.h>

#include <gtest/gtest.h>

#include "NetworkTestSupport.h"
#include "SimNetworkRig.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace std::chrono_literals;

namespace {

// The Ethernet link gives up on a read after 1.5 s, the serial link after
// 1 s; the margin covers scheduling, not a second attempt.
constexpr auto kEthernetLimit = 1500ms;
constexpr auto kSerialLimit = 1000ms;
constexpr auto kMargin = 700ms;

const std::string kNoReply = "No reply from the module within the time-out.";

}  // namespace

// Catches a connect that hangs, retries, claims success or leaks its socket when the controller is absent or mute.
TEST(NetworkEndToEndFailure, SilentEthernetControllerLeavesTheNetworkUnconnected) {
    {
        // Nobody listening: refused at once.
        KavroNetworkETHIM network(0, "Nobody", freeLoopbackAddress());
        DiagnosticCapture errors;
        Stopwatch watch;
        network.Connect();
        EXPECT_LT(watch.elapsed(), kMargin);
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ(-1, network.Configuration()->SocketFd);
        EXPECT_EQ("Unknown Network", network.Description());
        // The link's own lines are EthernetLinkTest's.
        EXPECT_NE(std::string::npos, errors.text().find("Controller GetInfo Failed\n")) << errors.text();
        network.Disconnect();  // after a failed connect: harmless
        EXPECT_FALSE(network.IsConnected());
    }
    {
        // Connection taken but never answered: one read time-out, no more.
        std::string address;
        const int listener = listenOnFreeLoopback(kEthernetPort, address);
        ASSERT_GE(listener, 0);
        KavroNetworkETHIM network(0, "Mute", address);
        DiagnosticCapture errors;
        Stopwatch watch;
        network.Connect();
        const auto waited = watch.elapsed();
        EXPECT_GE(waited, kEthernetLimit);
        EXPECT_LT(waited, kEthernetLimit + kMargin);
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ(0, errors.text().find("Controller GetInfo Failed\n"
                                        "Unable to communicate with ethim. Sockets error number: "))
            << errors.text();
        EXPECT_EQ(std::string::npos, errors.text().find("Unable to connect")) << errors.text();
        close(listener);
    }
}

// Catches a serial connect that waits past its time-out, or a line left out of step by a lost reply.
TEST(NetworkEndToEndFailure, SilentSerialControllerLeavesTheNetworkUnconnected) {
    SimController controller(SimControllerConfig::serial("SERSIM0061"));
    controller.addModule(simProbe("GP00000061", 1.0, 2.0));
    controller.injectFault(SimFault::dropReply().on(SimRequestKind::GetInfo));
    SimSerialFace line(controller);
    line.start();

    KavroNetworkRS232 network(0, "Mute", line.slavePath(), 115200);
    EXPECT_EQ(eNetworkType::RS232IM_Mk2, network.NetworkType());
    {
        DiagnosticCapture errors;
        Stopwatch watch;
        network.Connect();
        const auto waited = watch.elapsed();
        EXPECT_GE(waited, kSerialLimit);
        EXPECT_LT(waited, kSerialLimit + kMargin);
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ("Controller GetInfo Failed\n", errors.text());
    }
    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    EXPECT_EQ("RS232IM (SERSIM0061)", network.Description());
}

// Catches a lost reply reported as anything but the time-out (in the exception
// and in the module's status), and a late answer within the time-out taken as lost.
TEST(NetworkEndToEndFailure, LostAndLateReplies) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0062"), {simProbe("GP00000062", 1.0, 2.0)});
    ASSERT_TRUE(rig.network->IsConnected());
    rig.network->AddModule("GP00000062", "");
    KavroModule* probe = rig.network->GetModule(0);

    rig.controller.injectFault(SimFault::dropReply().only('L'));
    Stopwatch watch;
    try {
        probe->ReadingInCounts();
        ADD_FAILURE() << "expected the time-out";
    } catch (const KavroException& error) {
        EXPECT_EQ(static_cast<int>(eKavroErrors::Timeout), error.ErrorCode);
        EXPECT_EQ(kNoReply, error.Message);
        EXPECT_EQ(kNoReply, error.what());
    }
    EXPECT_LT(watch.elapsed(), kEthernetLimit + kMargin);
    EXPECT_EQ(255, probe->ModuleStatus()->ErrorCode());
    EXPECT_EQ(kNoReply, probe->ModuleStatus()->ErrorString());

    rig.controller.injectFault(SimFault::delay(300ms).only('L'));
    watch = Stopwatch();
    EXPECT_EQ(8192, probe->ReadingInCounts());
    EXPECT_GE(watch.elapsed(), 300ms);
    EXPECT_LT(watch.elapsed(), 300ms + kMargin);
}
