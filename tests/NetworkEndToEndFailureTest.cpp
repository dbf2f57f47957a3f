// Networks against controllers and modules that fail: nobody listening, a
// controller that never answers, lost, cut and late replies. Each failure is
// reported as it should be, and none waits longer than its time-out.
#include <unistd.h>

#include <gtest/gtest.h>

#include "EndToEndSupport.h"
#include "KavroException.h"
#include "KavroModuleStatus.h"
#include "KavroNetworkRS232.h"
#include "NetworkTestSupport.h"
#include "commands/KavroCommands.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace e2e;

namespace {

// The Ethernet link gives up on a read after 1.5 s, the serial link after
// 1 s; the margin covers scheduling, not a second attempt.
constexpr auto kEthernetLimit = 1500ms;
constexpr auto kSerialLimit = 1000ms;
constexpr auto kMargin = 700ms;

const std::string kNoReply = "No reply from the module within the time-out.";

}  // namespace

TEST(NetworkEndToEndFailure, SilentEthernetControllerLeavesTheNetworkUnconnected) {
    {
        // Nobody listening: the connection is refused at once.
        KavroNetworkETHIM network(0, "Nobody", freeLoopbackAddress());
        CerrCapture errors;
        Stopwatch watch;
        network.Connect();
        EXPECT_LT(watch.elapsed(), kMargin);
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ("Unknown Network", network.Description());
        EXPECT_NE(std::string::npos, errors.text().find("Unable to connect to ethim")) << errors.text();
        EXPECT_NE(std::string::npos, errors.text().find("Controller GetInfo Failed\n")) << errors.text();
        EXPECT_NE(std::string::npos, errors.text().find("Unable to communicate with ethim. Sockets error number: "))
            << errors.text();
    }
    {
        // A listener that takes the connection and never answers: the
        // controller check waits out one read time-out, no more.
        std::string address;
        const int listener = listenOnFreeLoopback(kEthernetPort, address);
        ASSERT_GE(listener, 0);
        KavroNetworkETHIM network(0, "Mute", address);
        CerrCapture errors;
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
    {
        // A controller that answers get-info but not identify.
        SimController controller(SimControllerConfig::ethernet("ETHSIM0061"));
        controller.injectFault(SimFault::dropReply().on(SimRequestKind::Identify));
        SimEthernetFace face(controller);
        face.start();
        KavroNetworkETHIM network(0, "Half", face.address());
        CerrCapture errors;
        Stopwatch watch;
        network.Connect();
        EXPECT_LT(watch.elapsed(), kEthernetLimit + kMargin);
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ("Unknown Network", network.Description());
        EXPECT_EQ(0, errors.text().find("Controller Identify Failed\n")) << errors.text();

        // Once the controller answers, the same network connects.
        network.Connect();
        EXPECT_TRUE(network.IsConnected());
        EXPECT_EQ("ETHIM (ETHSIM0061)", network.Description());
    }
}

TEST(NetworkEndToEndFailure, SilentSerialControllerLeavesTheNetworkUnconnected) {
    SimController controller(SimControllerConfig::serial("SERSIM0061"));
    controller.addModule(simProbe("GP00000061", 1.0, 2.0));
    controller.injectFault(SimFault::dropReply().on(SimRequestKind::GetInfo));
    SimSerialFace line(controller);
    line.start();

    KavroNetworkRS232 network(0, "Mute", line.slavePath(), 115200);
    {
        CerrCapture errors;
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
    network.AddModule("GP00000061", "");
    KavroModule* probe = network.GetModule(0);
    EXPECT_EQ(8192, probe->ReadingInCounts());

    // A request the controller drops costs one time-out, and the line stays
    // in step.
    controller.injectFault(SimFault::closeConnection().only('L'));
    Stopwatch watch;
    EXPECT_THROW(probe->ReadingInCounts(), KavroException);
    EXPECT_LT(watch.elapsed(), kSerialLimit + kMargin);
    EXPECT_EQ(8192, probe->ReadingInCounts());
}

TEST(NetworkEndToEndFailure, LostRepliesReachTheApplication) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0062"),
                            {simProbe("GP00000062", 1.0, 2.0), simProbe("GP00000063", 2.5, 5.0)});
    KavroNetworkETHIM& network = *rig->network;
    SimController& controller = rig->controller;
    ASSERT_TRUE(network.IsConnected());
    network.AddModule("GP00000062", "");
    KavroModule* probe = network.GetModule(0);

    // A lost reply is status 255 from the command, within the time-out.
    controller.injectFault(SimFault::dropReply().only('L'));
    Stopwatch watch;
    const KavroRead2Result lost = KavroCommands::KavroRead2(network.Configuration(), 1);
    EXPECT_LT(watch.elapsed(), kEthernetLimit + kMargin);
    EXPECT_EQ(255u, lost.LinkStatus);

    // ... and the Timeout exception with its text from the module.
    controller.injectFault(SimFault::dropReply().only('L'));
    watch = Stopwatch();
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
    // The link stays in step: the next reading is the module's own.
    EXPECT_EQ(8192, probe->ReadingInCounts());

    // A reply cut inside its frame is no reply either.
    controller.injectFault(SimFault::cutFrame(4).only('L'));
    EXPECT_THROW(probe->ReadingInCounts(), KavroException);
    EXPECT_EQ(8192, probe->ReadingInCounts());

    // A lost set-address answer refuses the addition within the time-out.
    // The module took its address all the same; adding it again readdresses it.
    controller.injectFault(SimFault::dropReply().only('S'));
    watch = Stopwatch();
    EXPECT_EQ("Module Identity GP00000063. Unable to add module.",
              messageOf([&] { network.AddModule("GP00000063", ""); }));
    EXPECT_LT(watch.elapsed(), kEthernetLimit + kMargin);
    EXPECT_EQ(1, network.ModuleCount());
    network.AddModule("GP00000063", "");
    ASSERT_EQ(2, network.ModuleCount());
    EXPECT_EQ(2, controller.module("GP00000063")->address());
    EXPECT_NEAR(2.5, network.GetModule(1)->ReadingInUnits(), 1e-9);
}

TEST(NetworkEndToEndFailure, LateAnswersAndControllersThatHangUp) {
    auto rig = connectedRig(SimControllerConfig::ethernet("ETHSIM0064"), {simProbe("GP00000064", 1.0, 2.0)});
    KavroNetworkETHIM& network = *rig->network;
    ASSERT_TRUE(network.IsConnected());
    network.AddModule("GP00000064", "");
    KavroModule* probe = network.GetModule(0);

    // An answer that comes late but within the time-out is taken as soon as
    // it arrives.
    rig->controller.injectFault(SimFault::delay(300ms).only('L'));
    Stopwatch watch;
    EXPECT_EQ(8192, probe->ReadingInCounts());
    EXPECT_GE(watch.elapsed(), 300ms);
    EXPECT_LT(watch.elapsed(), 300ms + kMargin);

    // The controller closes the connection (it restarted): that read is lost
    // at once, and the next one goes out on a new connection.
    rig->controller.injectFault(SimFault::closeConnection().only('L'));
    watch = Stopwatch();
    EXPECT_THROW(probe->ReadingInCounts(), KavroException);
    EXPECT_LT(watch.elapsed(), kMargin);
    EXPECT_EQ(8192, probe->ReadingInCounts());
    EXPECT_EQ(2u, rig->face.connectionsAccepted());
    EXPECT_TRUE(network.IsConnected());

    // The controller is gone: reads fail at once, and the network knows it
    // is no longer connected.
    rig->face.stop();
    CerrCapture errors;
    watch = Stopwatch();
    EXPECT_THROW(probe->ReadingInCounts(), KavroException);
    EXPECT_THROW(probe->ReadingInCounts(), KavroException);
    EXPECT_LT(watch.elapsed(), kMargin);
    EXPECT_FALSE(network.IsConnected());
    EXPECT_NE(std::string::npos, errors.text().find("Unable to connect to ethim")) << errors.text();
}
