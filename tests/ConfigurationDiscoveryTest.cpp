// Networks from the controller configuration files: per-user first, then
// system-wide, the defaults of each kind, and hostile files.
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <typeinfo>

#include <gtest/gtest.h>

#include "ConfigurationHome.h"
#include "NetworkTestSupport.h"
#include "core/SimLoopback.h"

using namespace KavroLibrary;

namespace {

std::string element(const std::string& type, const std::string& children = "") {
    return "    <network controllertype=\"" + type + "\">" + children + "</network>\n";
}

// Finds the networks quietly (no USB library may be there to report);
// returns what was reported.
std::string find(KavroNetworks& networks) {
    DiagnosticCapture quiet;
    networks.FindNetworks();
    return quiet.text();
}

}  // namespace

// Catches wrong file order, defaults, element matching, stale lists, and a search without HOME.
TEST(ConfigurationDiscovery, PerUserThenSystemWithTheDefaultsOfEachKind) {
    ConfigurationHome home;
    KavroNetworks networks;
    find(networks);
    EXPECT_EQ(0u, networks.Count());
    EXPECT_EQ("Network at index does not exist.", messageOf([&] { networks.Network(0); }));

    const std::string bench =
        element("RS232IM", "<networkname>Bench</networkname><comport>/dev/ttyUSB3</comport><baud>57600</baud>");
    home.writeUserFile(
        "<?xml version=\"1.0\"?>\n<settings>\n  <networks>\n" + element("RS232IM") + bench +
        element("RS232IM", "<networkname>Typo</networkname><baud>fast</baud>") +
        element("USBIM", "<networkname>never from a file</networkname>") + element("ethim") + element("") +
        "    <network><networkname>no type</networkname></network>\n" +
        element("ETHIM",
                "<!-- the later address wins; names match exactly -->"
                "<networkname>Line 1</networkname><address>10.0.0.1</address><address>192.168.1.7</address>"
                "<NetworkName>ignored</NetworkName><comport>ignored</comport>") +
        element("WIM", "<networkname>Radio</networkname><address>127.0.0.1:10050</address>") +
        element("WIM", "<address>AA:BB:CC:DD:EE:FF</address><channel>9</channel>") + "  </networks>\n" +
        element("ETHIM", "<networkname>off the path</networkname>") + "</settings>\n");
    home.writeSystemFile(ConfigurationHome::settings(
        element("ETHIM", "<networkname>Shared</networkname><address>10.0.0.9</address>") + bench));

    // The entry whose baud is no number is reported once and skipped.
    const std::string reported = find(networks);
    EXPECT_NE(std::string::npos, reported.find("Skipping network entry 3 of ")) << reported;
    ASSERT_EQ(7u, networks.Count());
    struct Expected {
        const std::type_info& kind;
        std::string name, address;
        int number;  // baud of a serial network, channel of a wireless one
    };
    const Expected expected[] = {
        {typeid(KavroNetworkRS232), "", "/dev/ttyS0", 115200},
        {typeid(KavroNetworkRS232), "Bench", "/dev/ttyUSB3", 57600},
        {typeid(KavroNetworkETHIM), "Line 1", "192.168.1.7", 0},
        {typeid(KavroNetworkWIM), "Radio", "127.0.0.1:10050", 5},
        {typeid(KavroNetworkWIM), "", "AA:BB:CC:DD:EE:FF", 9},
        {typeid(KavroNetworkETHIM), "Shared", "10.0.0.9", 0},
        {typeid(KavroNetworkRS232), "Bench", "/dev/ttyUSB3", 57600},  // in both files, added twice
    };
    for (unsigned i = 0; i < networks.Count(); ++i) {
        KavroNetwork* network = networks.Network(i);
        const NetworkConfiguration* config = network->Configuration();
        SCOPED_TRACE("network " + std::to_string(i));
        EXPECT_EQ(expected[i].kind, typeid(*network));
        EXPECT_EQ(expected[i].name, network->NetworkName());
        EXPECT_EQ(expected[i].address, config->Address);
        EXPECT_EQ(static_cast<int>(i), config->NetworkNumber);
        const bool serial = expected[i].kind == typeid(KavroNetworkRS232);
        const bool wireless = expected[i].kind == typeid(KavroNetworkWIM);
        EXPECT_EQ(expected[i].number, serial ? config->BaudRate : wireless ? config->WirelessChannel : 0);
    }

    // Every search builds the list afresh; without HOME it stops and the old list is gone.
    networks.Network(2)->setNetworkName("renamed by the application");
    find(networks);
    ASSERT_EQ(7u, networks.Count());
    EXPECT_EQ("Line 1", networks.Network(2)->NetworkName());
    unsetenv("HOME");
    EXPECT_THROW(find(networks), std::logic_error);
    EXPECT_EQ(0u, networks.Count());
}

// Catches a broken user file hiding the system file, entities taken in, and any fetch from the network.
TEST(ConfigurationDiscovery, HostileFilesAddNothingAndStayOffTheNetwork) {
    ConfigurationHome home;
    std::string address;
    const int listener = kavrosim::listenOnFreeLoopback(10001, address);
    const std::string remote = "http://" + address + ":10001/";
    home.writeSystemFile(ConfigurationHome::settings(element("ETHIM", "<networkname>System</networkname>")));
    // Well-formed but for what the entities bring.
    auto named = [](const std::string& entity) {
        return element("ETHIM", "<networkname>&" + entity + ";</networkname><address>127.0.0.1</address>");
    };
    const std::string hostile[] = {
        "network controllertype=ETHIM, nothing more",
        ConfigurationHome::settings(named("x"), "<!DOCTYPE settings [<!ENTITY x SYSTEM \"" + remote + "x\">]>\n"),
        ConfigurationHome::settings(named("amp"),
                                    "<!DOCTYPE settings [<!ENTITY % p SYSTEM \"" + remote + "evil.dtd\"> %p;]>\n"),
        ConfigurationHome::settings(named("x"), "<!DOCTYPE settings [<!ENTITY x \"Line\">]>\n"),
    };
    for (const std::string& contents : hostile) {
        SCOPED_TRACE(contents);
        home.writeUserFile(contents);
        KavroNetworks networks;
        find(networks);
        ASSERT_EQ(1u, networks.Count());
        EXPECT_EQ("System", networks.Network(0)->NetworkName());
    }

    // An external DTD is named but never fetched: the document is taken.
    home.writeUserFile(ConfigurationHome::settings(element("ETHIM", "<networkname>User</networkname>"),
                                                   "<!DOCTYPE settings SYSTEM \"" + remote + "settings.dtd\">\n"));
    KavroNetworks networks;
    find(networks);
    ASSERT_EQ(2u, networks.Count());
    EXPECT_EQ("User", networks.Network(0)->NetworkName());

    pollfd knock{listener, POLLIN, 0};
    EXPECT_EQ(0, poll(&knock, 1, 0)) << "something knocked at the listener";
    close(listener);
}
