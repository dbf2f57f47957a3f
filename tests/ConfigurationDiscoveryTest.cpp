// Networks from the controller configuration files: per-user first, then
// system-wide, the defaults of each kind, and files that are broken or
// hostile.
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <typeinfo>

#include <gtest/gtest.h>

#include "ConfigurationHome.h"
#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "KavroNetworkWIM.h"
#include "KavroNetworks.h"
#include "NetworkTestSupport.h"
#include "core/SimLoopback.h"
#include "links/NetworkConfiguration.h"

using namespace KavroLibrary;

namespace {

std::string element(const std::string& type, const std::string& children = "") {
    return "    <network controllertype=\"" + type + "\">" + children + "</network>\n";
}

// Finds the networks quietly (no USB library may be there to report).
void find(KavroNetworks& networks) {
    CerrCapture quiet;
    networks.FindNetworks();
}

}  // namespace

TEST(ConfigurationDiscovery, PerUserThenSystemWithTheDefaultsOfEachKind) {
    ConfigurationHome home;
    home.writeUserFile(
        "<?xml version=\"1.0\"?>\n<settings>\n  <networks>\n" + element("RS232IM") +
        element("RS232IM", "<networkname>Bench</networkname><comport>/dev/ttyUSB3</comport><baud>57600</baud>") +
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
        element("ETHIM", "<networkname>Shared</networkname><address>10.0.0.9</address>") +
        element("RS232IM", "<networkname>Bench</networkname><comport>/dev/ttyUSB3</comport><baud>57600</baud>")));

    KavroNetworks networks;
    find(networks);
    ASSERT_EQ(7u, networks.Count());
    struct Expected {
        const std::type_info& kind;
        std::string name;
        std::string address;
        int number;  // baud of a serial network, channel of a wireless one
    };
    const Expected expected[] = {
        {typeid(KavroNetworkRS232), "", "/dev/ttyS0", 115200},
        {typeid(KavroNetworkRS232), "Bench", "/dev/ttyUSB3", 57600},
        {typeid(KavroNetworkETHIM), "Line 1", "192.168.1.7", 0},
        {typeid(KavroNetworkWIM), "Radio", "127.0.0.1:10050", 5},
        {typeid(KavroNetworkWIM), "", "AA:BB:CC:DD:EE:FF", 9},
        {typeid(KavroNetworkETHIM), "Shared", "10.0.0.9", 0},
        // Listed in both files, added twice.
        {typeid(KavroNetworkRS232), "Bench", "/dev/ttyUSB3", 57600},
    };
    for (unsigned i = 0; i < networks.Count(); ++i) {
        KavroNetwork* network = networks.Network(i);
        const NetworkConfiguration* config = network->Configuration();
        SCOPED_TRACE("network " + std::to_string(i));
        EXPECT_EQ(expected[i].kind, typeid(*network));
        EXPECT_EQ(expected[i].name, network->NetworkName());
        EXPECT_EQ(expected[i].address, config->Address);
        EXPECT_EQ(static_cast<int>(i), config->NetworkNumber);
        EXPECT_FALSE(network->IsConnected());
        if (expected[i].kind == typeid(KavroNetworkRS232)) {
            EXPECT_EQ(expected[i].number, config->BaudRate);
        }
        if (expected[i].kind == typeid(KavroNetworkWIM)) {
            EXPECT_EQ(expected[i].number, config->WirelessChannel);
        }
    }
}

TEST(ConfigurationDiscovery, EmptyRepeatedAndWithoutHome) {
    ConfigurationHome home;
    KavroNetworks networks;
    find(networks);
    EXPECT_EQ(0u, networks.Count());
    try {
        networks.Network(0);
        ADD_FAILURE() << "no network 0";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ("Network at index does not exist.", error.what());
    }

    // Every search builds the list afresh, with new objects.
    home.writeUserFile(ConfigurationHome::settings(element("ETHIM", "<networkname>Line 1</networkname>") +
                                                   element("RS232IM", "<networkname>Bench</networkname>")));
    find(networks);
    ASSERT_EQ(2u, networks.Count());
    networks.Network(0)->setNetworkName("renamed by the application");
    find(networks);
    ASSERT_EQ(2u, networks.Count());
    EXPECT_EQ("Line 1", networks.Network(0)->NetworkName());
    EXPECT_EQ("Bench", networks.Network(1)->NetworkName());
    EXPECT_THROW(networks.Network(2), std::runtime_error);

    // Without HOME the search stops, and the old list is gone.
    unsetenv("HOME");
    EXPECT_THROW(find(networks), std::logic_error);
    EXPECT_EQ(0u, networks.Count());
}

TEST(ConfigurationDiscovery, HostileFilesAddNothingAndStayOffTheNetwork) {
    ConfigurationHome home;
    std::string address;
    const int listener = kavrosim::listenOnFreeLoopback(10001, address);
    const std::string remote = "http://" + address + ":10001/";
    const std::string secret = home.dir.write("secret.txt", "SECRET");
    home.writeSystemFile(ConfigurationHome::settings(element("ETHIM", "<networkname>System</networkname>")));
    const std::string valid = ConfigurationHome::settings(element("ETHIM", "<networkname>User</networkname>"));

    std::string laughs = "<!DOCTYPE settings [\n<!ENTITY a \"laugh laugh laugh laugh \">\n";
    for (char level = 'b'; level <= 'j'; ++level) {
        const std::string lower(1, static_cast<char>(level - 1));
        laughs += "<!ENTITY " + std::string(1, level) + " \"";
        for (int i = 0; i < 10; ++i) laughs += "&" + lower + ";";
        laughs += "\">\n";
    }
    laughs += "]>\n";
    // Each would be well-formed, so that only its entities keep it out.
    auto named = [](const std::string& entity) {
        return element("ETHIM", "<networkname>&" + entity + ";</networkname><address>127.0.0.1</address>");
    };
    const std::pair<std::string, std::string> hostile[] = {
        {"not XML", "network controllertype=ETHIM, nothing more"},
        {"truncated", valid.substr(0, valid.size() / 2)},
        {"binary", std::string("\0\xff\xfe<settings>", 14)},
        {"external entity",
         ConfigurationHome::settings(named("ext"), "<!DOCTYPE settings [<!ENTITY ext SYSTEM \"" + remote + "x\">]>\n")},
        {"local file entity",
         ConfigurationHome::settings(named("ext"),
                                     "<!DOCTYPE settings [<!ENTITY ext SYSTEM \"file://" + secret + "\">]>\n")},
        {"external parameter entity",
         ConfigurationHome::settings(
             named("amp"), "<!DOCTYPE settings [<!ENTITY % remote SYSTEM \"" + remote + "evil.dtd\"> %remote;]>\n")},
        {"internal entity", ConfigurationHome::settings(named("x"), "<!DOCTYPE settings [<!ENTITY x \"Line\">]>\n")},
        {"nested entities", ConfigurationHome::settings(named("j"), laughs)},
    };
    for (const auto& [what, contents] : hostile) {
        SCOPED_TRACE(what);
        home.writeUserFile(contents);
        KavroNetworks networks;
        find(networks);
        EXPECT_EQ(1u, networks.Count());
        if (networks.Count() > 0) {
            EXPECT_EQ("System", networks.Network(networks.Count() - 1)->NetworkName());
        }
    }

    // An external DTD is named but never fetched: the document itself is
    // harmless and its network is taken.
    home.writeUserFile(ConfigurationHome::settings(element("ETHIM", "<networkname>User</networkname>"),
                                                   "<!DOCTYPE settings SYSTEM \"" + remote + "settings.dtd\">\n"));
    KavroNetworks networks;
    find(networks);
    ASSERT_EQ(2u, networks.Count());
    EXPECT_EQ("User", networks.Network(0)->NetworkName());

    // Nothing ever knocked at the listener.
    pollfd knock{listener, POLLIN, 0};
    EXPECT_EQ(0, poll(&knock, 1, 0));
    close(listener);
}
