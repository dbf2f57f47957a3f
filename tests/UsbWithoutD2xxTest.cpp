// A machine without libftd2xx: USB enumeration finds nothing, everything
// else works, and the missing library is reported once per process.
#include <dlfcn.h>

#include <cstdlib>
#include <sstream>

#include <gtest/gtest.h>

#include "ConfigurationHome.h"
#include "NetworkTestSupport.h"

using namespace KavroLibrary;

namespace {

// 0 when all is as it should be; the locals are gone before the child exits.
int findWithoutD2xx() {
    if (void* installed = dlopen("libftd2xx.so", RTLD_NOW)) {
        dlclose(installed);  // this machine has one: nothing to show
        return 0;
    }
    ConfigurationHome home;
    home.writeUserFile(
        ConfigurationHome::settings("    <network controllertype=\"ETHIM\"><address>127.0.0.1</address></network>\n"));
    DiagnosticCapture captured;
    KavroNetworks networks;
    for (int search = 1; search <= 2; ++search) {
        networks.FindNetworks();
        if (networks.Count() != 1) return search;
    }
    KavroNetworkUSBIM usb(0, 0);
    usb.Connect();
    if (usb.IsConnected()) return 3;
    std::istringstream lines(captured.text());
    int reports = 0;
    for (std::string line; std::getline(lines, line);) reports += line.find("libftd2xx") != std::string::npos;
    return reports == 1 ? 0 : 4;
}

}  // namespace

// Catches a crash or a lost network without the library, and a report repeated per search.
TEST(UsbWithoutD2xx, NothingFoundAndReportedOnce) {
    // A fresh process: no test before this one has loaded a D2XX library.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(findWithoutD2xx()), testing::ExitedWithCode(0), "");
}
