// Scripted faults and the request log of a simulated controller.
#include <gtest/gtest.h>

#include "SimTestClient.h"

using namespace kavrosim;
using namespace simtest;

namespace {

struct FaultRig : EthernetRig {
    FaultRig() {
        SimModule probe = SimModule::digitalProbe("GP00000001", 2);
        probe.setSignal(SimSignal::constant(1));
        addressModule(probe, 1);
        controller.clearRequestLog();
    }
    Reply read() { return client->command(addressed('L', 1), 5); }
};

const Bytes kReading{'L', 0x00, 0x20, 0, 0};

}  // namespace

// Catches a fault kind that bends the reply the wrong way, fires for other
// commands, fires too often, or leaves the link out of step.
TEST(SimFault, RepliesCanBeLostRefusedBentOrCut) {
    FaultRig rig;
    WireClient& c = *rig.client;
    rig.controller.injectFault(SimFault::errorReply(0x12, 2).only('L'));
    EXPECT_EQ('I', c.command(addressed('I', 1), 30).data.at(0));
    EXPECT_EQ((Bytes{'!', 0x12}), rig.read().data);
    EXPECT_EQ((Bytes{'!', 0x12}), rig.read().data);
    EXPECT_EQ(kReading, rig.read().data);
    EXPECT_EQ(0u, rig.controller.pendingFaults());

    rig.controller.injectFault(SimFault::wrongEcho());
    const Reply bent = rig.read();
    EXPECT_EQ(0, bent.status);
    ASSERT_EQ(5u, bent.data.size());
    EXPECT_NE('L', bent.data[0]);
    EXPECT_NE('!', bent.data[0]);
    rig.controller.injectFault(SimFault::shortReply(3));
    EXPECT_EQ((Bytes{'L', 0x00, 0x20}), rig.read().data);
    // A cut frame: the header promises more than ever arrives.
    rig.controller.injectFault(SimFault::cutFrame(3));
    c.send(Bytes{0x02, 5, 2, 'L', 1});
    EXPECT_EQ((Bytes{0, 5, 'L'}), c.receive(9, 300ms));
    EXPECT_EQ(kReading, rig.read().data);

    EXPECT_THROW(SimFault::dropReply(0), std::invalid_argument);
    EXPECT_THROW(SimFault::shortReply(-1), std::invalid_argument);
}

// Catches a refused or closed command that the module carries out anyway,
// and a dropped reply whose command is not carried out.
TEST(SimFault, RefusedAndClosedCommandsAreNotCarriedOut) {
    FaultRig rig;
    rig.controller.addModule(SimModule::digitalProbe("GP00000002", 2));
    rig.controller.injectFault(SimFault::errorReply(0x05).only('S'));
    EXPECT_EQ((Bytes{'!', 0x05}), rig.client->command(setAddress("GP00000002", 2), 2).data);
    EXPECT_EQ(0, rig.controller.module("GP00000002")->address());

    rig.controller.injectFault(SimFault::closeConnection());
    rig.client->send(concat(Bytes{0x02, 2, 13}, setAddress("GP00000002", 2)));
    EXPECT_TRUE(rig.client->closedWithin(2000ms));
    EXPECT_EQ(0, rig.controller.module("GP00000002")->address());
    rig.client = WireClient::tcp(rig.face.address());

    rig.controller.injectFault(SimFault::dropReply());
    rig.client->send(concat(Bytes{0x02, 2, 13}, setAddress("GP00000002", 2)));
    EXPECT_TRUE(rig.client->silentFor(200ms));
    EXPECT_EQ(2, rig.controller.module("GP00000002")->address());
}

// Catches faults spent on broadcasts that have no reply, a named broadcast
// that is not lost, and a refused controller speed applied anyway.
TEST(SimFault, BroadcastsAndControllerRequests) {
    FaultRig rig;
    WireClient& c = *rig.client;
    rig.controller.injectFault(SimFault::errorReply(0x07));
    c.broadcast(Bytes{'W', 0, 0});
    EXPECT_EQ((Bytes{'!', 0x07}), rig.read().data);
    rig.controller.injectFault(SimFault::dropReply().only('R'));
    c.broadcast(Bytes{'R', 0});
    EXPECT_EQ(kReading, rig.read().data) << "the lost reset left the address";

    rig.controller.injectFault(SimFault::errorReply(1).on(SimRequestKind::SetSpeed));
    rig.setControllerSpeed(5, 1);
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());
}

// Catches a request split across writes logged twice, a stray byte that
// derails the decoder, a log limit ignored, and a half-written request that
// blocks the link for good.
TEST(SimFault, RequestLogOfHostileInput) {
    FaultRig rig;
    WireClient& c = *rig.client;
    c.send(Bytes{0x02, 5});
    c.send(Bytes{2, 'L', 1});
    EXPECT_EQ(kReading, c.readReply().data);
    c.send(Bytes{0x77});  // begins no request
    rig.setControllerSpeed(0);

    const auto log = rig.controller.requestLog();
    ASSERT_EQ(3u, log.size());
    EXPECT_EQ(SimRequestKind::ModuleCommand, log[0].kind);
    EXPECT_EQ(5, log[0].replyLength);
    EXPECT_EQ((Bytes{'L', 1}), log[0].command);
    EXPECT_EQ((Bytes{0x02, 5, 2, 'L', 1}), log[0].raw);
    EXPECT_EQ(SimRequestKind::Unknown, log[1].kind);
    EXPECT_EQ((Bytes{0x77}), log[1].raw);
    EXPECT_EQ(SimRequestKind::SetSpeed, log[2].kind);

    const auto counted = rig.controller.requestCount();
    rig.controller.setRequestLogLimit(0);
    rig.read();
    EXPECT_TRUE(rig.controller.waitForRequestCount(counted + 1, 2000ms));
    EXPECT_TRUE(rig.controller.requestLog().empty());

    rig.controller.setRequestLogLimit(10);
    c.send(Bytes{0x02, 5, 2, 'L'});
    ASSERT_TRUE(rig.controller.waitForRequestCount(counted + 2, 3000ms));
    EXPECT_EQ((Bytes{0x02, 5, 2, 'L'}), rig.controller.requestLog().back().raw);
    EXPECT_EQ(kReading, rig.read().data);
}
