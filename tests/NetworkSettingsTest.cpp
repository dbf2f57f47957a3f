// Settings files: a saved network loads back onto the bus with the same
// modules in the same order and their settings; files written by hand load
// by the loader's rules; broken and hostile files leave the network alone.
#include <gtest/gtest.h>


#include <libxml/xmlerror.h>

#include "SimNetworkRig.h"
#include "TempDir.h"

using namespace KavroLibrary;
using namespace kavrosim;
using namespace std::chrono_literals;

namespace {

std::string repeated(const std::string& text, std::size_t times) {
    std::string out;
    for (std::size_t i = 0; i < times; ++i) out += text;
    return out;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    if (at == std::string::npos) throw std::runtime_error("no " + from);
    return text.replace(at, from.size(), to);
}

void applicationXmlErrors(void*, const char*, ...) {}

KavroModuleDP& probeAt(KavroNetwork& network, unsigned int index) {
    auto* probe = dynamic_cast<KavroModuleDP*>(network.GetModule(index));
    if (probe == nullptr) throw std::runtime_error("no probe at " + std::to_string(index));
    return *probe;
}

}  // namespace

TEST(NetworkSettings, ASavedNetworkLoadsBackWithItsModulesAndSettings) {
    SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0301");
    config.typeCode = "ETH2";
    SimNetworkRig rig(
        config, {simProbe("GP00000301", 1.0), simProbe("GP00000302", 0.5), SimModule::linearEncoder("LE00000303")});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000301", "Left probe_1");
    network.AddModule("GP00000302", "Right <top> & \"bottom\" \xc3\xa9t\xc3\xa9");
    network.AddModule("LE00000303", "");
    probeAt(network, 0).setAveraging(eAveraging::average64);
    probeAt(network, 0).setResolution(eResolution::res16Bit);
    network.GetModule(1)->Buffered()->setOTUs(80);
    network.setNetSpeed(eNetSpeed::High);
    const std::string description = network.Description();

    TempDir folder;
    EXPECT_EQ("Error Writing XML document",
              messageOf([&] { network.Save((folder.path() / "no such folder" / "network.xml").string()); }));
    EXPECT_EQ(nullptr, network.Configuration()->XmlWriter) << "a failed save lets its writer go";
    const std::string path = (folder.path() / "network.xml").string();
    network.Save(path);
    const std::string saved = TempDir::read(path);
    for (const char* element :
         {"<Network_ETHIM_x00202_x0020_x0028ETHSIM0301_x0029>", "<Module_Name>Left_x0020probe_x005f1</Module_Name>",
          "<Network_Speed>High</Network_Speed>", "<Module_Count>3</Module_Count>", "<OTUs>80</OTUs>", "<Bufferred",
          "<Module_2>"}) {
        EXPECT_NE(std::string::npos, saved.find(element)) << element << "\n" << saved;
    }

    // The modules forget their settings and the network its modules.
    rig.controller.updateModule("GP00000301", [](SimModule& module) {
        module.setAveraging(16);
        module.setResolutionBits(14);
    });
    network.Disconnect();
    rig.connect();
    network.Configuration()->Description = "Elsewhere";

    network.Load(path);
    ASSERT_EQ(3, network.ModuleCount());
    EXPECT_EQ("LE00000303", network.GetModule(2)->ModuleID());
    EXPECT_EQ("Left probe_1", network.GetModule(0)->ModuleName());
    EXPECT_EQ("Right <top> & \"bottom\" \xc3\xa9t\xc3\xa9", network.GetModule(1)->ModuleName());
    EXPECT_EQ(eAveraging::average64, probeAt(network, 0).Averaging());
    EXPECT_EQ(eResolution::res16Bit, probeAt(network, 0).Resolution());
    EXPECT_EQ(64, rig.controller.module("GP00000301")->averaging()) << "sent to the bus";
    EXPECT_EQ(16, rig.controller.module("GP00000301")->resolutionBits());
    EXPECT_EQ(80, network.GetModule(1)->Buffered()->OTUs());
    EXPECT_EQ(3, rig.controller.module("LE00000303")->address());
    EXPECT_EQ(description, network.Description());
    EXPECT_EQ(eNetSpeed::High, network.NetSpeed());
    EXPECT_EQ(SimSpeed::High, rig.controller.busSpeed());
    EXPECT_NEAR(1.0, network.GetModule(0)->ReadingInUnits(), 1e-3);
}

TEST(NetworkSettings, AHandWrittenFileLoadsByTheLoadersRules) {
    SimControllerConfig config = SimControllerConfig::ethernet("ETHSIM0302");
    config.typeCode = "ETH2";
    config.limitText = "L002";
    SimNetworkRig rig(config);
    rig.controller.addModule(simProbe("GP00000311", 1.0));
    SimModule older = simProbe("GP00000312", 1.0);
    older.setGeneration(2);  // no UltraHigh
    rig.controller.addModule(older);
    rig.connect();
    KavroNetwork& network = *rig.network;

    // Any case; document order, not the numbers in the names; module
    // elements past the controller's limit are never tried (their modules
    // are not on the bus), however many megabytes of them follow; a bad
    // resolution text is skipped.
    std::string text = R"(<?xml version="1.0"?>
<anything>
  <network_information>
    <network_speed>UltraHigh</network_speed>
    <NETWORK_name>Bench_x00201</NETWORK_name>
  </network_information>
  <Elsewhere><Module_0><Module_Identity>GP00009998</Module_Identity></Module_0></Elsewhere>
  <modules>
    <module_3>
      <module_identity>GP00000311</module_identity>
      <MODULE_NAME>First_x0020in_x0020file</MODULE_NAME>
      <Averaging>average4</Averaging>
      <Resolution>res99Bit</Resolution>
      <resolution>res18Bit</resolution>
    </module_3>
    <Notes>not a module</Notes>
    <MODULE_1><Module_Identity>GP00000312</Module_Identity></MODULE_1>
    <Module_2><Module_Identity>GP00009999</Module_Identity></Module_2>
)";
    for (int index = 4; text.size() < 10 * 1024 * 1024; ++index) {
        const std::string name = "Module_" + std::to_string(index);
        text += "<" + name + "><Module_Identity>GP00009999</Module_Identity></" + name + ">\n";
    }
    text += "</modules>\n</anything>\n";
    TempDir folder;
    const auto start = std::chrono::steady_clock::now();
    network.Load(folder.write("hand.xml", text));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    ASSERT_EQ(2, network.ModuleCount());
    EXPECT_EQ("GP00000311", network.GetModule(0)->ModuleID());
    EXPECT_EQ("First in file", network.GetModule(0)->ModuleName());
    EXPECT_EQ(1, rig.controller.module("GP00000311")->address());
    EXPECT_EQ("GP00000312", network.GetModule(1)->ModuleID());
    EXPECT_EQ(eAveraging::average4, probeAt(network, 0).Averaging());
    EXPECT_EQ(eResolution::res18Bit, probeAt(network, 0).Resolution()) << "the later of two same names wins";
    EXPECT_EQ("Bench 1", network.Description());
    EXPECT_EQ(eNetSpeed::Low, network.NetSpeed()) << "a speed one module lacks is not restored";
    EXPECT_EQ(SimSpeed::Low, rig.controller.busSpeed());
}

TEST(NetworkSettings, BrokenOrHostileFilesLeaveTheNetworkAlone) {
    SimNetworkRig rig(SimControllerConfig::ethernet("ETHSIM0303"), {simProbe("GP00000321", 1.0)});
    KavroNetwork& network = *rig.network;
    network.AddModule("GP00000321", "Stays");
    KavroModule* module = network.GetModule(0);
    const std::string description = network.Description();
    // The application's own libxml2 handlers survive our reads and writes.
    int applicationContext = 0;
    const xmlGenericErrorFunc applicationHandler = applicationXmlErrors;
    xmlSetGenericErrorFunc(&applicationContext, applicationHandler);

    TempDir folder;
    network.Save(folder.write("good.xml", ""));
    const std::string good = TempDir::read((folder.path() / "good.xml").string());
    std::string laughs = "<?xml version=\"1.0\"?>\n<!DOCTYPE r [\n<!ENTITY a \"aaaaaaaaaa\">\n";
    for (char name = 'b'; name <= 'k'; ++name) {
        laughs += std::string("<!ENTITY ") + name + " \"" + repeated("&" + std::string(1, name - 1) + ";", 10);
        laughs += "\">\n";
    }
    laughs += "]>\n<r><Network_Information><Network_Name>&k;</Network_Name></Network_Information></r>\n";
    const std::string unclosed = "<Module_0><Module_Identity>GP00000321</Module_Identity>\n";
    const std::vector<std::pair<std::string, std::string>> files = {
        {"truncated.xml", good.substr(0, good.size() / 2)},
        // External and parameter entities: ConfigurationDiscoveryTest, through the same reader.
        {"laughs.xml", laughs},
        {"underscore.xml", replaced(good, ">Stays<", ">St_ays<")},
        {"deep.xml", repeated("<d>", 5000) + repeated("</d>", 5000)},
        {"unclosed.xml", "<?xml version=\"1.0\"?>\n<Network_X><Modules>\n" +
                             repeated(unclosed, 10 * 1024 * 1024 / unclosed.size() + 1)},
    };
    rig.controller.clearRequestLog();
    for (const auto& [name, contents] : files) {
        const auto start = std::chrono::steady_clock::now();
        const std::string path = folder.write(name, contents);
        EXPECT_EQ("Error Reading XML document", messageOf([&] { network.Load(path); })) << name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 20s) << name;
    }
    EXPECT_EQ("Error Reading XML document", messageOf([&] { network.Load((folder.path() / "missing.xml").string()); }));

    ASSERT_EQ(1, network.ModuleCount());
    EXPECT_EQ(module, network.GetModule(0));
    EXPECT_EQ("Stays", module->ModuleName());
    EXPECT_EQ(description, network.Description());
    EXPECT_TRUE(rig.controller.requestLog().empty()) << "the bus was not touched";
    EXPECT_TRUE(xmlGenericError == applicationHandler && xmlGenericErrorContext == &applicationContext);
    xmlSetGenericErrorFunc(nullptr, nullptr);
    EXPECT_EQ(1, rig.controller.module("GP00000321")->address());
}
