// Failure paths a long-running station meets: networks dropped mid-run,
// refusals, reconnects, hand-edited files.
#include <gtest/gtest.h>

#include "KavroException.h"
#include "KavroModule.h"
#include "KavroModuleDP.h"
#include "LinkRig.h"
#include "KavroNetwork.h"
#include "ModeTestRig.h"
#include "ModuleBuffered.h"
#include "ModuleDifference.h"
#include "NetworkBuffered.h"
#include "NetworkDifference.h"

using namespace KavroLibrary;
using namespace kavrosim;

TEST(FailurePath, DroppingANetworkMidRunStopsTheModeOnTheBus) {
    for (const bool buffered : {false, true}) {
        ModeTestRig rig({modeProbe("GPDROP0001", 2, 3, SimSignal::constant(0.5))});
        if (buffered) {
            rig.module(0)->Buffered()->setMode(eBufferedMode::Sync);
            rig.module(0)->Buffered()->setEnabled(true);
            rig.network->Buffered()->Start();
        } else {
            rig.module(0)->Difference()->setEnabled(true);
            rig.network->Difference()->Start();
        }
        rig.clearLog();
        rig.network.reset();  // must not end the process
        // The mode was stopped before the bus was reset.
        const std::string codes = rig.commandCodes(2);
        const char stop = buffered ? 'W' : 'H';
        ASSERT_NE(std::string::npos, codes.find(stop)) << codes;
        EXPECT_LT(codes.find(stop), codes.find('R')) << codes;
    }
}

// A refusal is the module's error on every link; the cached setting stays.
TEST(FailurePath, RefusedSetModeIsTheModulesErrorOnEveryLink) {
    for (const LinkKind kind : {LinkKind::Usb, LinkKind::Ethernet, LinkKind::Serial}) {
        SCOPED_TRACE(linkName(kind));
        LinkRig rig(kind, {modeProbe("GPREFUSE01", 2, 3, SimSignal::constant(0.5))});
        ASSERT_TRUE(rig.network->IsConnected());
        rig.network->AddModule("GPREFUSE01", "");
        auto* probe = dynamic_cast<KavroModuleDP*>(rig.network->GetModule(0));
        ASSERT_NE(nullptr, probe);
        const eAveraging before = probe->Averaging();
        const eAveraging wanted = before == eAveraging::average4 ? eAveraging::average8 : eAveraging::average4;
        rig.controller().injectFault(SimFault::errorReply(0x05).only('V'));
        try {
            probe->setAveraging(wanted);
            ADD_FAILURE() << "a refused set-mode must not count as done";
        } catch (const KavroException& error) {
            EXPECT_EQ(0x2105, error.ErrorCode);
        }
        EXPECT_EQ(before, probe->Averaging());
        probe->setAveraging(wanted);
        EXPECT_EQ(wanted, probe->Averaging());
    }
}

// A controller that restarted while nobody listened: connecting again starts
// from an empty module list, not from modules the bus no longer knows.
TEST(FailurePath, ConnectAfterAFailedReconnectStartsClean) {
    LinkRig rig(LinkKind::Ethernet, {modeProbe("GPRECON001", 2, 3, SimSignal::constant(0.5))});
    ASSERT_TRUE(rig.network->IsConnected());
    rig.network->AddModule("GPRECON001", "");
    const std::string address = rig.face->location();
    rig.face->stop();
    EXPECT_THROW(rig.network->GetModule(0)->ReadingInCounts(), KavroException);
    EXPECT_FALSE(rig.network->IsConnected());
    rig.face = std::make_unique<SimEthernetFace>(rig.controller(), address);
    rig.face->start();
    rig.network->Connect();
    ASSERT_TRUE(rig.network->IsConnected());
    EXPECT_EQ(0, rig.network->ModuleCount());
    rig.network->AddModule("GPRECON001", "");
    EXPECT_EQ(4096, rig.network->GetModule(0)->ReadingInCounts());
}
