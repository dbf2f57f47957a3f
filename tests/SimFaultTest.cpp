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

TEST(SimFault, RepliesCanBeLostRefusedBentOrCut) {
    FaultRig rig;
    WireClient& c = *rig.client;

    rig.controller.injectFault(SimFault::dropReply());
    c.send(Bytes{0x02, 5, 2, 'L', 1});
    EXPECT_TRUE(c.silentFor(300ms));
    EXPECT_EQ(kReading, rig.read().data) << "the next exchange is in step again";

    // Counted, and only for the named command.
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

    rig.controller.injectFault(SimFault::delay(150ms));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(kReading, rig.read().data);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 150ms);
}

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
    EXPECT_EQ(kReading, rig.read().data);
    EXPECT_EQ(2u, rig.face.connectionsAccepted());

    // A dropped reply is lost on the way back: the module did act.
    rig.controller.injectFault(SimFault::dropReply());
    rig.client->send(concat(Bytes{0x02, 2, 13}, setAddress("GP00000002", 2)));
    EXPECT_TRUE(rig.client->silentFor(200ms));
    EXPECT_EQ(2, rig.controller.module("GP00000002")->address());
}

TEST(SimFault, BroadcastsAndControllerRequests) {
    FaultRig rig;
    WireClient& c = *rig.client;
    // A fault without a command code waits for a command that has a reply.
    rig.controller.injectFault(SimFault::errorReply(0x07));
    c.broadcast(Bytes{'W', 0, 0});
    EXPECT_EQ((Bytes{'!', 0x07}), rig.read().data);
    // Named, a broadcast can be lost before it reaches the modules.
    rig.controller.injectFault(SimFault::dropReply().only('R'));
    c.broadcast(Bytes{'R', 0});
    EXPECT_EQ(kReading, rig.read().data);

    rig.controller.injectFault(SimFault::dropReply().on(SimRequestKind::Identify));
    c.send(text(std::string("I\0\0", 3)));
    EXPECT_TRUE(c.silentFor(200ms));
    rig.controller.injectFault(SimFault::errorReply(9).on(SimRequestKind::GetInfo));
    c.send(text(std::string("B\0\0", 3)));
    const Bytes info = c.receive(45);
    ASSERT_EQ(45u, info.size());
    EXPECT_EQ(9, info[0]);
    rig.controller.injectFault(SimFault::errorReply(1).on(SimRequestKind::SetSpeed));
    rig.setControllerSpeed(5, 1);
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());

    EXPECT_THROW(SimFault::dropReply(0), std::invalid_argument);
    EXPECT_THROW(SimFault::shortReply(-1), std::invalid_argument);
}

TEST(SimFault, RequestLogKeepsRawAndDecodedRequests) {
    FaultRig rig;
    WireClient& c = *rig.client;
    c.send(text(std::string("I\0\0", 3)));
    c.receive(34);
    rig.read();
    c.broadcast(Bytes{'W', 0, 10});
    // A frame written in two pieces is one request.
    c.send(Bytes{0x02, 5});
    c.send(Bytes{2, 'L', 1});
    EXPECT_EQ(kReading, c.readReply().data);
    c.send(Bytes{0x77});  // begins no request
    rig.setControllerSpeed(0);

    const auto log = rig.controller.requestLog();
    ASSERT_EQ(6u, log.size());
    EXPECT_EQ(SimRequestKind::Identify, log[0].kind);
    EXPECT_EQ((Bytes{'I', 0, 0}), log[0].raw);
    EXPECT_EQ(SimRequestKind::ModuleCommand, log[1].kind);
    EXPECT_EQ(0, log[1].type);
    EXPECT_EQ(5, log[1].replyLength);
    EXPECT_EQ((Bytes{'L', 1}), log[1].command);
    EXPECT_EQ((Bytes{0x02, 5, 2, 'L', 1}), log[1].raw);
    EXPECT_EQ(1, log[2].type);
    EXPECT_EQ((Bytes{'W', 0, 10}), log[2].command);
    EXPECT_EQ((Bytes{0x02, 5, 2, 'L', 1}), log[3].raw);
    EXPECT_EQ(SimRequestKind::Unknown, log[4].kind);
    EXPECT_EQ((Bytes{0x77}), log[4].raw);
    EXPECT_EQ(SimRequestKind::SetSpeed, log[5].kind);
    EXPECT_LE(log[0].received, log[5].received);

    const auto counted = rig.controller.requestCount();
    rig.controller.clearRequestLog();
    EXPECT_TRUE(rig.controller.requestLog().empty());
    rig.read();
    EXPECT_TRUE(rig.controller.waitForRequestCount(counted + 1, 2000ms));
    EXPECT_EQ(1u, rig.controller.requestLog().size());
    rig.controller.setRequestLogLimit(0);
    rig.read();
    EXPECT_TRUE(rig.controller.requestLog().empty());

    // A request that stops half-way is dropped after a pause and logged.
    rig.controller.setRequestLogLimit(10);
    c.send(Bytes{0x02, 5, 2, 'L'});
    ASSERT_TRUE(rig.controller.waitForRequestCount(counted + 3, 3000ms));
    EXPECT_EQ((Bytes{0x02, 5, 2, 'L'}), rig.controller.requestLog().back().raw);
    EXPECT_EQ(kReading, rig.read().data);
}
