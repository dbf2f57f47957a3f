// The Ethernet and serial network objects: their link tables and what a
// failed connect leaves behind.
#include <pty.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "LinkTestSupport.h"
#include "NetworkTestSupport.h"
#include "core/SimLoopback.h"
#include "links/EthernetLink.h"
#include "links/SerialLink.h"
#include "network/InitNetwork.h"

using namespace KavroLibrary;

TEST(KavroNetworkETHIM, ConstructionFillsTheLinkTable) {
    KavroNetworkETHIM network(2, "Cell 2", "192.0.2.10");
    NetworkConfiguration* config = network.Configuration();
    EXPECT_EQ("192.0.2.10", config->Address);
    EXPECT_EQ("ETHIM (Unknown)", config->ControllerName);
    EXPECT_EQ(eNetworkType::ETHIM, network.NetworkType());
    EXPECT_EQ(2, config->NetworkNumber);
    EXPECT_EQ("Cell 2", network.NetworkName());
    EXPECT_EQ(&ETHIMKavroIdentifyController, config->Identify);
    EXPECT_EQ(&ETHIMKavroGetInfoController, config->GetInfo);
    EXPECT_EQ(&ETHIMSendModuleCommand, config->SendCommand);
    EXPECT_EQ(&ETHIMReadModuleResponse, config->GetReply);
    EXPECT_EQ(&SetControllerSpeedETHIM, config->SetSpeed);
    EXPECT_EQ(&SetControllerIdleETHIM, config->SetIdle);
    EXPECT_EQ(&StartDynamicETHIM, config->StartDynamic);
    EXPECT_EQ(&InitNetwork, config->InitNetworkHook);
    EXPECT_EQ(&ResetAllSpeeds, config->ResetAllSpeedsHook);
}

TEST(KavroNetworkETHIM, UnreachableControllerLeavesTheNetworkUnconnected) {
    KavroNetworkETHIM network(0, "Nobody", kavrosim::freeLoopbackAddress());
    CerrCapture errors;
    network.Connect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ(-1, network.Configuration()->SocketFd);
    EXPECT_NE(std::string::npos, errors.text().find("Unable to communicate with ethim. Sockets error number: "));
    EXPECT_EQ("Unknown Network", network.Description());
    network.Disconnect();
    EXPECT_FALSE(network.IsConnected());
}

TEST(KavroNetworkRS232, ConstructionFillsTheLinkTable) {
    KavroNetworkRS232 network(1, "Bench", "/dev/ttyS7", 57600);
    NetworkConfiguration* config = network.Configuration();
    EXPECT_EQ("/dev/ttyS7", config->Address);
    EXPECT_EQ(57600, config->BaudRate);
    EXPECT_EQ("RS232IM_Mk2 (Unknown)", config->ControllerName);
    EXPECT_EQ(eNetworkType::RS232IM_Mk2, network.NetworkType());
    EXPECT_EQ(&RS232KavroIdentifyController, config->Identify);
    EXPECT_EQ(&RS232KavroGetInfoController, config->GetInfo);
    EXPECT_EQ(&RS232SendModuleCommand, config->SendCommand);
    EXPECT_EQ(&RS232ReadModuleResponse, config->GetReply);
    EXPECT_EQ(&SetControllerSpeedRS232, config->SetSpeed);
    EXPECT_EQ(&SetControllerIdleRS232, config->SetIdle);
    EXPECT_EQ(&StartDynamicRS232, config->StartDynamic);
}

TEST(KavroNetworkRS232, MissingDeviceLeavesTheNetworkUnconnected) {
    KavroNetworkRS232 network(0, "Nobody", "/nonexistent/kavro-tty", 115200);
    CerrCapture errors;
    network.Connect();
    EXPECT_FALSE(network.IsConnected());
    EXPECT_EQ("Unable to open /nonexistent/kavro-tty\n", errors.text());
    EXPECT_EQ(-1, network.Configuration()->SocketFd);
}

namespace {

// Plays a serial controller of firmware 1.51 on the far end of a
// pseudo-terminal: answers get-info, identify and speed requests and records
// every request, until it has answered `speedRequests` speed requests.
void serveController(int fd, int speedRequests, std::vector<Bytes>& requests) {
    int speeds = 0;
    while (speeds < speedRequests) {
        const Bytes kind = readBytes(fd, 1);
        if (kind.empty()) return;
        Bytes request = kind;
        if (kind[0] == 'B' || kind[0] == 'I' || kind[0] == 0x0A) {
            const Bytes rest = readBytes(fd, 2);
            request.insert(request.end(), rest.begin(), rest.end());
        } else if (kind[0] == 0x00) {
            const Bytes length = readBytes(fd, 1);
            if (length.empty()) return;
            const Bytes rest = readBytes(fd, length[0]);
            request.insert(request.end(), length.begin(), length.end());
            request.insert(request.end(), rest.begin(), rest.end());
        }
        requests.push_back(request);
        if (kind[0] == 'B') {
            Bytes answer(43, ' ');
            answer[0] = 0;
            std::memcpy(&answer[3], "232I", 4);
            answer[7] = 151;
            answer[8] = 0;
            std::memcpy(&answer[11], "L016", 4);
            writeBytes(fd, answer);
        } else if (kind[0] == 'I') {
            Bytes answer(32, ' ');
            answer[0] = 0;
            std::memcpy(&answer[3], "SERIAL0001P700001AIM  1.51 ", 27);
            writeBytes(fd, answer);
        } else if (kind[0] == 0x0A) {
            writeBytes(fd, {0x00, 0x00});
            ++speeds;
        }
    }
}

}  // namespace

TEST(KavroNetworkRS232, ConnectInitialisesAndResetsAtEverySpeed) {
    int controller = -1;
    int terminal = -1;
    char name[128] = {};
    ASSERT_EQ(0, openpty(&controller, &terminal, name, nullptr, nullptr));
    std::vector<Bytes> requests;
    std::thread peer(serveController, controller, 4, std::ref(requests));

    {
        KavroNetworkRS232 network(0, "Bench", name, 115200);
        network.Connect();
        EXPECT_TRUE(network.IsConnected());
        EXPECT_EQ("RS232IM (SERIAL0001)", network.Description());
        EXPECT_EQ(16, network.MaximumAllowableNumberOfModules());
        EXPECT_EQ((std::vector<eNetSpeed>{eNetSpeed::Low, eNetSpeed::High}), network.AvailableSpeeds());
        EXPECT_GE(network.Configuration()->SocketFd, 0);
        network.Disconnect();
        EXPECT_FALSE(network.IsConnected());
        EXPECT_EQ(-1, network.Configuration()->SocketFd);
    }
    peer.join();
    const Bytes reset{0x00, 0x02, 'R', 0x00};
    const std::vector<Bytes> expected{
        {'B', 0, 0}, {'I', 0, 0}, {0x0A, 6, 0}, reset, {0x0A, 6, 5}, reset, {0x0A, 6, 0}, reset, {0x0A, 6, 0},
    };
    EXPECT_EQ(expected, requests);
    close(controller);
    close(terminal);
}
