// The wireless concentrator, its device slots and the hand tools' settings,
// end to end on the simulated bus.
#include <chrono>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "SimNetworkRig.h"

using namespace KavroLibrary;
using kavrosim::SimModule;

namespace {

const char* const kScenario = R"(
controller ethernet auto
module wcm WCM0000001 scan=1 restart=0.3
tool 1 WHT_M name="Bore gauge" identity=WHTM000001 battery=80 enter=0.05 ch1=constant:1.5 text1="Dia A" ch2=constant:-0.25 ch3=constant:10.125
tool 2 WHT identity=WHT0000002 enter=0.05 ch1=constant:12.5
)";

// The location and data bytes of a configuration write.
struct FieldWrite {
    unsigned location;
    std::string data;
};

class Wireless : public ::testing::Test {
protected:
    void SetUp() override {
        std::istringstream text(kScenario);
        const kavrosim::SimScenario scenario = kavrosim::parseScenario(text, "wireless test");
        rig = std::make_unique<SimNetworkRig>(scenario.controllers[0].config, scenario.controllers[0].modules);
        rig->network->AddModule("WCM0000001", "");
        wcm = dynamic_cast<KavroModuleWCM*>(rig->network->GetModule(0));
        ASSERT_NE(nullptr, wcm);
        multi = wcm->Devices()->GetDevice(0);
        single = wcm->Devices()->GetDevice(1);
        rig->controller.clearRequestLog();
    }

    void changeWcm(const std::function<void(kavrosim::SimWcm&)>& change) {
        rig->controller.updateModule("WCM0000001", [&](SimModule& m) { change(*m.wcm()); });
    }

    std::vector<FieldWrite> fieldWrites() const {
        std::vector<FieldWrite> writes;
        for (const kavrosim::SimRequest& r : rig->logged('b')) {
            writes.push_back({kavrosim::getLe16(r.command, 2),
                              std::string(r.command.begin() + 7, r.command.begin() + 7 + r.command[6])});
        }
        return writes;
    }

    // The lines passed through to the tools, as sent.
    std::vector<std::string> linesSent() const {
        std::vector<std::string> lines;
        for (const kavrosim::SimRequest& r : rig->logged('d')) {
            lines.emplace_back(r.command.begin() + 4, r.command.end());
        }
        return lines;
    }

    std::unique_ptr<SimNetworkRig> rig;
    KavroModuleWCM* wcm = nullptr;
    WCM_Device* multi = nullptr;
    WCM_Device* single = nullptr;
};

}  // namespace

TEST_F(Wireless, SlotsAreReadWhenTheConcentratorJoins) {
    EXPECT_EQ(1u, wcm->ScanDuration());
    EXPECT_EQ(6, wcm->Devices()->DeviceCount());
    EXPECT_EQ(eWCM_DeviceType::WHT_M, multi->DeviceType());
    EXPECT_EQ("Bore gauge", multi->DeviceName());  // stored blank-padded, cached trimmed
    EXPECT_EQ("WHTM000001", multi->KavroIdentity());
    EXPECT_EQ(3, multi->NumChannels());
    EXPECT_NE(nullptr, dynamic_cast<WCM_DeviceSettings_WHTM*>(multi->Settings()));
    EXPECT_NE(nullptr, dynamic_cast<WCM_DeviceSettings_WHT*>(single->Settings()));
    WCM_Device* empty = wcm->Devices()->GetDevice(2);
    EXPECT_EQ(eWCM_DeviceType::None, empty->DeviceType());
    const WCM_DeviceSettingsBase& emptySettings = *empty->Settings();
    EXPECT_EQ(typeid(WCM_DeviceSettingsBase), typeid(emptySettings));
    EXPECT_EQ(eWCM_DeviceStatus::NotConnected, empty->ConnectionStatus());

    // Connection and battery: the hand-tools example's test, on the default scenario.
    const sWCM_ChannelData first = multi->GetChannelData(0);
    EXPECT_EQ("Dia A", first.Text);
    EXPECT_DOUBLE_EQ(1.5, first.Value);
    EXPECT_DOUBLE_EQ(10.125, multi->GetChannelData(2).Value);
}

TEST_F(Wireless, ChannelDataIsRefreshedOnceTheDeviceIsFoundConnected) {
    auto setChannel1 = [&](double value) {
        changeWcm(
            [value](kavrosim::SimWcm& w) { w.tool(0)->channels()[0].signal = kavrosim::SimSignal::constant(value); });
    };
    setChannel1(2.5);
    EXPECT_DOUBLE_EQ(2.5, multi->GetChannelData(0).Value);
    setChannel1(3.5);
    EXPECT_DOUBLE_EQ(2.5, multi->GetChannelData(0).Value);  // the cache, until asked to read again
    multi->getAllChannelData();
    EXPECT_DOUBLE_EQ(3.5, multi->GetChannelData(0).Value);
}

TEST_F(Wireless, ReadKeepsTheChannelsTheDeviceHas) {
    struct Case {
        std::function<KavroChannelReadings()> read;
        unsigned maskSent;
        std::vector<double> values;
    };
    const Case cases[] = {
        {[&] { return multi->Read(0xFFFu); }, 0x007, {1.5, -0.25, 10.125}},
        {[&] { return multi->Read(eChannelMask::Ch3, eRead3_ControlCode::NormalFloat, eRead3_UOM::Default); },
         0x004,
         {10.125}},
        {[&] { return multi->ReadAllChannels(eRead3_ControlCode::NormalInt7DPs, eRead3_UOM::Inches); },
         0x007,
         {1.5 / 25.4, -0.25 / 25.4, 10.125 / 25.4}},
        {[&] { return single->ReadAllChannels(); }, 0x001, {12.5}},
    };
    for (const Case& c : cases) {
        rig->controller.clearRequestLog();
        const KavroChannelReadings readings = c.read();
        ASSERT_EQ(1u, rig->logged('a').size());
        EXPECT_EQ(c.maskSent, kavrosim::getLe16(rig->logged('a')[0].command, 4));
        ASSERT_EQ(static_cast<int>(c.values.size()), readings.ReadingCount());
        for (int i = 0; i < readings.ReadingCount(); ++i) {
            EXPECT_NEAR(c.values[static_cast<std::size_t>(i)], readings[i].Value, 1e-7);
            EXPECT_EQ(eKavroErrors::NoError, readings[i].Error);
        }
    }

    rig->controller.clearRequestLog();
    EXPECT_EQ("Invalid Channel Mask value. No channels selected.", messageOf([&] { multi->Read(0x1000u); }));
    EXPECT_TRUE(rig->logged('a').empty());
    // The concentrator's refusal carries its reason.
    changeWcm([](kavrosim::SimWcm& w) { w.tool(0)->setSchedule({{0, kavrosim::SimToolState::NotConnected}}); });
    EXPECT_EQ(0u, messageOf([&] { multi->Read(1u); }).find("Unable to get reading "));
}

TEST_F(Wireless, NameAndIdentityAreWrittenByTheirRules) {
    multi->setDeviceName("AB");
    multi->setKavroIdentity("");
    const std::vector<FieldWrite> writes = fieldWrites();
    ASSERT_EQ(2u, writes.size());
    EXPECT_EQ(1003u, writes[0].location);
    EXPECT_EQ("AB" + std::string(18, ' '), writes[0].data);
    EXPECT_EQ(1004u, writes[1].location);
    EXPECT_EQ("", writes[1].data);
    EXPECT_EQ("AB", multi->DeviceName());
    EXPECT_EQ("AB", multi->getName());
    EXPECT_EQ("", multi->getKavroIdentity());

    rig->controller.clearRequestLog();
    EXPECT_EQ("Kavro identity must be 10 characters or 0 characters.",
              messageOf([&] { multi->setKavroIdentity("WHTM00001"); }));
    EXPECT_TRUE(rig->controller.requestLog().empty());
    multi->setKavroIdentity("WHTM000009");
    EXPECT_EQ("WHTM000009", multi->getKavroIdentity());
}

TEST_F(Wireless, ANewTypeBringsNewSettings) {
    WCM_DeviceSettingsBase* before = single->Settings();
    single->getDeviceType();
    EXPECT_EQ(before, single->Settings());  // unchanged type, same object
    changeWcm([](kavrosim::SimWcm& w) { w.setTool(1, kavrosim::SimHandTool(kavrosim::SimToolType::WhtM)); });
    EXPECT_EQ(eWCM_DeviceType::WHT_M, single->getDeviceType());
    EXPECT_NE(nullptr, dynamic_cast<WCM_DeviceSettings_WHTM*>(single->Settings()));
}

TEST_F(Wireless, RestartEndsOnTheFlagOrAfterTheScanDuration) {
    using Clock = std::chrono::steady_clock;
    auto start = Clock::now();
    wcm->Restart();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
    EXPECT_FALSE(wcm->getRestartFlag());
    ASSERT_EQ(1u, fieldWrites().size());
    EXPECT_EQ(6u, fieldWrites()[0].location);

    // A flag that never clears: more than one whole second must pass.
    changeWcm([](kavrosim::SimWcm& w) { w.setRestartSeconds(60); });
    start = Clock::now();
    wcm->Restart();
    const auto took = Clock::now() - start;
    EXPECT_GE(took, std::chrono::seconds(2));
    EXPECT_LT(took, std::chrono::seconds(4));
    EXPECT_TRUE(wcm->getRestartFlag());
}

TEST_F(Wireless, CommandsGoOutTrimmedWithOneLineEnd) {
    WCM_DeviceSettingsBase* settings = multi->Settings();
    for (const char* command : {"  GetOffTime  ", "GetOffTime\n", "GetOffTime\r\n"}) {
        rig->controller.clearRequestLog();
        EXPECT_EQ(">>>OffTime 10", settings->SendCommand(command, true));
        EXPECT_EQ((std::vector<std::string>{"GetOffTime\r\n"}), linesSent()) << command;
        // Configuration mode was entered for the command and left again.
        const std::vector<FieldWrite> writes = fieldWrites();
        ASSERT_EQ(2u, writes.size());
        EXPECT_EQ(1091u, writes[0].location);
        EXPECT_EQ(std::string(1, '\1'), writes[0].data);
        EXPECT_EQ(std::string(1, '\0'), writes[1].data);
    }
    EXPECT_EQ("", settings->SendCommand("SetOffTime 5", false));
    EXPECT_EQ("No CommandSetting value given.", messageOf([&] { settings->SendCommand("   ", true); }));
}

TEST_F(Wireless, RefusedCommandsLeaveTheConfigurationModeAlone) {
    struct Case {
        WCM_Device* device;
        const char* command;
        bool permitted;
    };
    WCM_Device* empty = wcm->Devices()->GetDevice(2);
    const Case cases[] = {
        {multi, "SetWSC 1", false},         {multi, "SetStreamRate 10", false}, {multi, "SetBluetoothClass 1", false},
        {single, "SET DELAY 5", false},     {empty, "GetOffTime", false},       {single, "SET OFFTIME 5", true},
        {multi, "GetBluetoothClass", true},
    };
    for (const Case& c : cases) {
        rig->controller.clearRequestLog();
        const std::string message = messageOf([&] { c.device->Settings()->SendCommand(c.command, true); });
        if (c.permitted) {
            EXPECT_EQ("", message) << c.command;
        } else {
            EXPECT_EQ("Command not permitted via WCM.", message) << c.command;
            EXPECT_TRUE(rig->controller.requestLog().empty()) << c.command;
        }
    }
}

TEST_F(Wireless, AToolAlreadyInConfigurationModeGetsNoModeWrite) {
    WCM_DeviceSettingsBase* settings = multi->Settings();
    settings->setConfigMode(true);
    ASSERT_TRUE(waitFor([&] { return settings->EnteredConfigMode(); }, std::chrono::seconds(2)));
    rig->controller.clearRequestLog();
    EXPECT_EQ(">>>Buzzer TagTaken", settings->SendCommand("GetBuzzer", true));
    EXPECT_TRUE(fieldWrites().empty());
    EXPECT_TRUE(settings->ConfigMode());
}

TEST_F(Wireless, TheModeIsRestoredWhenSendingOrTheReplyFails) {
    WCM_DeviceSettingsBase* settings = multi->Settings();
    changeWcm([](kavrosim::SimWcm& w) { w.tool(0)->setFault(kavrosim::SimToolFault::ReplyNeverCompletes); });
    EXPECT_EQ("Pass through Rx timed out. ", messageOf([&] { settings->SendCommand("GetOffTime", true); }));
    EXPECT_FALSE(settings->ConfigMode());

    changeWcm([](kavrosim::SimWcm& w) { w.tool(0)->setFault(kavrosim::SimToolFault::None); });
    rig->controller.injectFault(kavrosim::SimFault::errorReply(0xD0).only('d'));
    EXPECT_EQ("Unable to send pass through command. ", messageOf([&] { settings->SendCommand("GetOffTime", true); }));
    EXPECT_FALSE(settings->ConfigMode());
}

TEST_F(Wireless, MultiChannelToolSettings) {
    auto* tool = dynamic_cast<WCM_DeviceSettings_WHTM*>(multi->Settings());
    ASSERT_NE(nullptr, tool);
    // Each property: set, then read back; or only read.
    struct Case {
        const char* name;
        std::function<void()> set;
        std::function<bool()> holds;
    };
    const Case cases[] = {
        {"BluetoothClass", [] {}, [&] { return tool->BluetoothClass() == 2; }},
        {"Button1Function", [&] { tool->setButton1Function(eWHT_M_ButtonFunction::PowerOff); },
         [&] { return tool->Button1Function() == eWHT_M_ButtonFunction::PowerOff; }},
        {"Button2Function", [&] { tool->setButton2Function(eWHT_M_ButtonFunction::None); },
         [&] { return tool->Button2Function() == eWHT_M_ButtonFunction::None; }},
        {"Buzzer", [&] { tool->setBuzzerFunction(eWHT_M_BuzzerFunction::Off); },
         [&] { return tool->BuzzerFunction() == eWHT_M_BuzzerFunction::Off; }},
        {"DisplayMode", [&] { tool->setDisplayMode(eWHT_M_DisplayMode::Text); },
         [&] { return tool->DisplayMode() == eWHT_M_DisplayMode::Text; }},
        // The tool confirms without ">>>": naming the setting is enough.
        {"DisplayOrientation", [&] { tool->setDisplayOrientation(eWHT_DisplayOrientation::Clockwise2); },
         [&] { return tool->DisplayOrientation() == eWHT_DisplayOrientation::Clockwise2; }},
        {"LED1Function", [&] { tool->setLED1Function(eWHT_M_LEDFunction::AllOk); },
         [&] { return tool->LED1Function() == eWHT_M_LEDFunction::AllOk; }},
        {"LED2Function", [&] { tool->setLED2Function(eWHT_M_LEDFunction::Off); },
         [&] { return tool->LED2Function() == eWHT_M_LEDFunction::Off; }},
        {"LED3Function", [&] { tool->setLED3Function(eWHT_M_LEDFunction::Streaming); },
         [&] { return tool->LED3Function() == eWHT_M_LEDFunction::Streaming; }},
        // The tool confirms with a bare ">>>OffTime".
        {"OffTime", [&] { tool->setOffTime(30); }, [&] { return tool->OffTime() == 30; }},
        {"DisplayedResolution", [&] { tool->SetDisplayedResolution(2, 4); },
         [&] { return tool->GetDisplayedResolution(2) == 4 && tool->GetDisplayedResolution(1) == 3; }},
        {"FactorySettings", [&] { tool->ResetFactorySettings(); }, [&] { return tool->OffTime() == 10; }},
    };
    for (const Case& c : cases) {
        EXPECT_EQ("", messageOf(c.set)) << c.name;
        EXPECT_TRUE(c.holds()) << c.name;
    }
    rig->controller.clearRequestLog();
    tool->SetDisplayedResolution(1, 2);
    tool->Button1Function();
    EXPECT_EQ((std::vector<std::string>{"SetDisplayedResolution 1 2\r\n", "GetButton1Function\r\n"}), linesSent());

    // Replies that do not start as expected: getters give 0, setters refuse,
    // except the orientation, whose confirmation need only name it.
    changeWcm([](kavrosim::SimWcm& w) { w.tool(0)->setFault(kavrosim::SimToolFault::WrongPrefix); });
    EXPECT_EQ(0, tool->OffTime());
    EXPECT_EQ(eWHT_M_LEDFunction::Off, tool->LED1Function());
    EXPECT_EQ("Unable to set OffTime. ", messageOf([&] { tool->setOffTime(5); }));
    EXPECT_EQ("Unable to set button function. ",
              messageOf([&] { tool->setButton2Function(eWHT_M_ButtonFunction::Tag); }));
    EXPECT_EQ("Unable to set display resolution. ", messageOf([&] { tool->SetDisplayedResolution(1, 1); }));
    EXPECT_EQ("Unable to ResetFactorySettings. ", messageOf([&] { tool->ResetFactorySettings(); }));
    EXPECT_EQ("", messageOf([&] { tool->setDisplayOrientation(eWHT_DisplayOrientation::Standard); }));
}

TEST_F(Wireless, SingleChannelToolSettingsAndLimits) {
    auto* tool = dynamic_cast<WCM_DeviceSettings_WHT*>(single->Settings());
    ASSERT_NE(nullptr, tool);
    tool->setDisplayUnits(eRead3_UOM::Inches);
    tool->setPresetValue(-1.25);
    tool->setMeasurementMode(eWHT_MeasurementMode::Preset);
    EXPECT_EQ(eRead3_UOM::Inches, tool->DisplayUnits());
    EXPECT_DOUBLE_EQ(-1.25, tool->PresetValue());
    EXPECT_EQ(eWHT_MeasurementMode::Preset, tool->MeasurementMode());
    EXPECT_EQ(10, tool->OffTime());

    // The reading, 12.5 mm, against the limits the tool checks.
    WHT_Limits* limits = tool->Limits();
    limits->Upper()->setValue(12.0);
    EXPECT_EQ(eWCM_DeviceLimitState::Ok, limits->State());  // not checked yet
    limits->Upper()->setEnabled(true);
    EXPECT_TRUE(limits->Upper()->Enabled());
    EXPECT_DOUBLE_EQ(12.0, limits->Upper()->Value());
    EXPECT_EQ(eWCM_DeviceLimitState::Upper, limits->State());
    limits->setLED(eWHT_LimitLED::Red);
    EXPECT_EQ(eWHT_LimitLED::Red, limits->LED());

    changeWcm([](kavrosim::SimWcm& w) { w.tool(1)->setFault(kavrosim::SimToolFault::WrongPrefix); });
    EXPECT_EQ(0, tool->OffTime());
    EXPECT_EQ("Unable to set OffTime. ", messageOf([&] { tool->setOffTime(3); }));
}

// The simulated concentrator's clock is the caller's, so its timing and its
// faults are checked at chosen moments without waiting.
TEST(SimWcm, ConfigurationModeFollowsTheClockAndTheFaults) {
    using namespace std::chrono;
    using kavrosim::SimToolFault;
    using kavrosim::SimToolState;
    auto fieldWrite = [](unsigned location, std::uint8_t value) {
        kavrosim::Bytes command{'b', 1};
        kavrosim::putLe16(command, location);
        kavrosim::putLe16(command, 0);
        command.push_back(1);
        command.push_back(value);
        command.resize(39, 0);
        kavrosim::putLe16(command, kavrosim::complementSum16(command, 0, 39));
        return command;
    };
    struct Case {
        SimToolFault fault;
        SimToolState stateInMode;
        bool entersMode;
    };
    const Case cases[] = {
        {SimToolFault::None, SimToolState::Connected, true},
        {SimToolFault::NeverEntersConfigMode, SimToolState::Connected, false},
        {SimToolFault::ConnectionError, SimToolState::Error, false},
    };
    for (const Case& c : cases) {
        kavrosim::SimWcm wcm;
        const auto t0 = kavrosim::SimWcm::Clock::now();
        kavrosim::SimHandTool tool(kavrosim::SimToolType::WhtM);
        tool.setSchedule({{0, SimToolState::NotConnected}, {1, SimToolState::Connected}});
        tool.setEnterDelay(0.3);
        tool.setFault(c.fault);
        wcm.setTool(0, tool);
        EXPECT_EQ(SimToolState::NotConnected, wcm.state(0, t0));
        EXPECT_EQ(SimToolState::Connected, wcm.state(0, t0 + seconds(2)));
        ASSERT_EQ((kavrosim::Bytes{'b', 0}), wcm.execute(fieldWrite(1091, 1), t0 + seconds(2)));
        EXPECT_FALSE(wcm.inConfigMode(0, t0 + milliseconds(2200)));
        EXPECT_EQ(c.entersMode, wcm.inConfigMode(0, t0 + milliseconds(2400)));
        EXPECT_EQ(c.stateInMode, wcm.state(0, t0 + milliseconds(2400)));
        wcm.execute(fieldWrite(1091, 0), t0 + seconds(3));
        EXPECT_EQ(SimToolState::Connected, wcm.state(0, t0 + seconds(3)));
    }
}
