// USB interface modules through the library's own dlopen of libftd2xx.so,
// which finds the stand-in: enumeration, connecting, capabilities, modules
// and readings end to end.
#include <gtest/gtest.h>

#include <memory>

#include "ConfigurationHome.h"
#include "NetworkTestSupport.h"
#include "UsbStandIn.h"
#include "core/SimFault.h"
#include "links/FtdiCommunications.h"

using namespace KavroLibrary;
using kavrosim::SimFault;
using kavrosim::SimRequestKind;
using kavrosim::SimSpeed;

namespace {

// Networks found by enumeration, destroyed with the list.
struct Found {
    std::vector<KavroNetwork*> networks;
    ~Found() {
        for (KavroNetwork* network : networks) delete network;
    }
    NetworkConfiguration* config(std::size_t i) const { return networks.at(i)->Configuration(); }
};

// The device-list flags of the stand-in's device `index`.
kavrosim::DWORD listedFlags(const UsbStandIn& standIn, kavrosim::DWORD index) {
    kavrosim::DWORD count = 0, flags = 99;
    standIn.d2xx().createDeviceInfoList(&count);
    standIn.d2xx().getDeviceInfoDetail(index, &flags, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    return flags;
}

}  // namespace

// Catches devices taken that are open, on channel B, of another chip, product or type, or left open.
TEST(UsbEnumeration, OnlyFreeChannelAOfAnInterfaceModuleAnsweringUsb2) {
    UsbStandIn standIn(
        "controller usb\n"                                                          // 0 A, 1 B
        "controller usb channel-a=\"Pellaquin USBIM B\" channel-b=none\n"           // 2: wired channel says B
        "controller usb flags=1 channel-b=none\n"                                   // 3: open elsewhere
        "controller usb type=ETHI channel-b=none\n"                                 // 4: not a USB2 controller
        "controller usb chip=5 channel-b=none\n"                                    // 5: another chip
        "controller usb channel-a=\"Pellaquin USB A\" channel-b=none\n"             // 6: another product
        "controller usb channel-a=\"Pellaquin USBIM 2 A  \" identity=USBSIM0007\n"  // 7 A, 8 B
        "controller usb flags=2 channel-b=none\n"  // 9: high-speed bit only, nobody has it open
    );
    Found found;
    FTDICommunications().FindDevices(found.networks);

    ASSERT_EQ(3u, found.networks.size());
    EXPECT_EQ(0, found.config(0)->DeviceIndex);
    EXPECT_EQ(7, found.config(1)->DeviceIndex);
    EXPECT_EQ(9, found.config(2)->DeviceIndex);
    EXPECT_EQ(1, found.config(1)->NetworkNumber);
    // The one that answered another type was asked, then let go like the rest.
    EXPECT_EQ(SimRequestKind::GetInfo, standIn.controller(3).requestLog().at(0).kind);
    EXPECT_EQ(0u, standIn.controller(2).requestCount());
    for (kavrosim::DWORD i = 0; i < 9; ++i) EXPECT_EQ(i == 3 ? 1u : 0u, listedFlags(standIn, i)) << "device " << i;

    // Appended behind what the list already holds, numbered by position.
    Found more;
    more.networks.push_back(new KavroNetwork(0, "first"));
    FTDICommunications().FindDevices(more.networks);
    ASSERT_EQ(4u, more.networks.size());
    EXPECT_EQ(1, more.config(1)->NetworkNumber);
    EXPECT_EQ(2, more.config(2)->NetworkNumber);
}

// Catches wrong capabilities, speed changes not sent, a channel left open.
TEST(UsbNetwork, ConnectAddModulesReadAndChangeSpeed) {
    UsbStandIn standIn(
        "controller usb identity=USBSIM0001 firmware=150\n"
        "module probe GP02000001 range=2 signal=constant:1\n");
    ConfigurationHome home;  // no configuration files: USB only
    KavroServer server;
    server.Networks()->FindNetworks();
    ASSERT_EQ(1u, server.Networks()->Count());
    KavroNetwork* network = server.Networks()->Network(0);
    kavrosim::SimController& controller = standIn.controller(0);

    server.Networks()->ConnectAll();
    ASSERT_TRUE(network->IsConnected());
    EXPECT_EQ("USBIM (USBSIM0001)", network->Description());
    EXPECT_EQ(32, network->MaximumAllowableNumberOfModules());
    EXPECT_EQ(SimSpeed::Low, controller.busSpeed());
    NetworkConfiguration* config = network->Configuration();
    EXPECT_TRUE(config->ReadburstFlag && config->BufferedExternalSourceFlag && config->DynamicFlag &&
                config->Dynamic2Flag);
    EXPECT_FALSE(config->DynamicExternalSourceFlag);

    network->AddModule("GP02000001", "Left");
    ASSERT_EQ(1, network->ModuleCount());
    EXPECT_EQ(8192, network->GetModule(0)->ReadingInCounts());
    EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High, eNetSpeed::UltraHigh}),
              network->AvailableSpeeds());
    network->setNetSpeed(eNetSpeed::UltraHigh);
    EXPECT_EQ(SimSpeed::UltraHigh, controller.busSpeed());
    EXPECT_NEAR(1.0, network->GetModule(0)->ReadingInUnits(), 1e-9);

    // Connecting again starts from a closed channel and an empty bus.
    network->Connect();
    ASSERT_TRUE(network->IsConnected());
    EXPECT_EQ(0, network->ModuleCount());
    server.Networks()->DisconnectAll();
    EXPECT_FALSE(network->IsConnected());
    EXPECT_EQ(0u, listedFlags(standIn, 0));
}

// Catches features below firmware 150, a failed connect keeping the channel, no reset on destruction.
TEST(UsbNetwork, FirmwareBelow150KeepsTheBasicsAndAFailedCheckLetsGo) {
    UsbStandIn standIn(
        "controller usb identity=USBSIM0149 firmware=149 channel-b=none\n"
        "module probe GP02000001 range=2 signal=constant:1\n");
    kavrosim::SimController& controller = standIn.controller(0);
    auto owned = std::make_unique<KavroNetworkUSBIM>(0, 0);
    KavroNetworkUSBIM& network = *owned;

    // Not connected without an identify answer, and the channel is free again.
    standIn.limitReadWait(std::chrono::milliseconds(100));
    controller.injectFault(SimFault::dropReply().on(SimRequestKind::Identify));
    {
        DiagnosticCapture quiet;
        network.Connect();
    }
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(0u, listedFlags(standIn, 0));

    network.Connect();
    ASSERT_TRUE(network.IsConnected());
    NetworkConfiguration* config = network.Configuration();
    EXPECT_TRUE(config->ControllerFlag0);
    EXPECT_FALSE(config->BufferedExternalSourceFlag || config->ReadburstFlag || config->DynamicFlag ||
                 config->Dynamic2Flag || config->DynamicExternalSourceFlag || config->ControllerFlag6);
    network.AddModule("GP02000001", "");
    EXPECT_EQ(std::vector<eNetSpeed>{eNetSpeed::Low}, network.AvailableSpeeds());
    EXPECT_THROW(network.setNetSpeed(eNetSpeed::High), std::runtime_error);
    EXPECT_NEAR(1.0, network.GetModule(0)->ReadingInUnits(), 1e-9);

    // Destroyed while connected: the bus is reset before the channel closes.
    owned.reset();
    EXPECT_EQ(0, controller.module("GP02000001")->address());
    EXPECT_EQ(0u, listedFlags(standIn, 0));
}

// Catches talking to another controller after devices moved since the search.
TEST(UsbNetwork, ADeviceThatMovedIsNotTakenForAnother) {
    UsbStandIn standIn(
        "controller usb identity=USBSIM0011 serial=SERIALONE channel-b=none\n"
        "controller usb identity=USBSIM0012 serial=SERIALTWO channel-b=none\n");
    Found found;
    FTDICommunications().FindDevices(found.networks);
    ASSERT_EQ(2u, found.networks.size());
    // The first controller is unplugged: the second now lists as device 0.
    ASSERT_EQ(1, UsbStandIn::load("controller usb identity=USBSIM0012 serial=SERIALTWO channel-b=none\n"));
    DiagnosticCapture errors;
    found.networks[0]->Connect();
    EXPECT_FALSE(found.networks[0]->IsConnected());
    EXPECT_NE(std::string::npos, errors.text().find("SERIALONEA is no longer device 0")) << errors.text();
}
