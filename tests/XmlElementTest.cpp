// Escaping of settings texts, element writing and reading, and the module
// settings written and read through them.
#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <utility>

#include "KavroModuleAGM.h"
#include "KavroModuleDIM.h"
#include "KavroModuleDIOM2.h"
#include "KavroModuleDP.h"
#include "KavroModuleEIM.h"
#include "KavroModuleLT.h"
#include "KavroNumberText.h"
#include "NetworkTestSupport.h"
#include "network/KavroXmlElement.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

using Elements = std::vector<std::pair<std::string, std::string>>;

// Writes a document whose root holds what `write` writes, and reads every
// child of the root back as (name, unescaped text).
Elements roundTrip(const std::function<void(xmlTextWriterPtr)>& write) {
    xmlBufferPtr buffer = xmlBufferCreate();
    xmlTextWriterPtr writer = xmlNewTextWriterMemory(buffer, 0);
    xmlTextWriterStartDocument(writer, "1.0", "UTF-8", nullptr);
    xmlTextWriterStartElement(writer, BAD_CAST "Root");
    write(writer);
    xmlTextWriterEndElement(writer);
    xmlTextWriterEndDocument(writer);
    xmlFreeTextWriter(writer);

    Elements elements;
    xmlDocPtr document = xmlReadMemory(reinterpret_cast<const char*>(xmlBufferContent(buffer)), xmlBufferLength(buffer),
                                       "memory.xml", nullptr, 0);
    xmlBufferFree(buffer);
    if (document == nullptr) return elements;
    for (xmlNodePtr node = xmlDocGetRootElement(document)->children; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_NODE) continue;
        elements.emplace_back(reinterpret_cast<const char*>(node->name), KavroReadXmlElement(node));
    }
    xmlFreeDoc(document);
    return elements;
}

Elements saved(KavroModule& module) {
    return roundTrip([&](xmlTextWriterPtr writer) {
        module.Configuration()->XmlWriter = writer;
        module.SaveXML();
        module.Configuration()->XmlWriter = nullptr;
    });
}

// The map a settings load hands a module.
std::map<std::string, std::string> settingsOf(const Elements& elements) {
    std::map<std::string, std::string> settings;
    for (const auto& [name, value] : elements) settings[StringToUpper(name)] = value;
    return settings;
}

std::vector<std::string> namesOf(const Elements& elements) {
    std::vector<std::string> names;
    for (const auto& element : elements) names.push_back(element.first);
    return names;
}

}  // namespace

TEST(EscapeXML, OnlyLettersAndDigitsStayAsTheyAre) {
    EXPECT_EQ("USBIM_x0020_x0028A1B2_x0029", EscapeXML("USBIM (A1B2)"));
    EXPECT_EQ("a_x005fb", EscapeXML("a_b"));
    EXPECT_EQ("_x00ff_x00e9_x002e", EscapeXML("\xff\xe9."));
    EXPECT_EQ("", EscapeXML(""));
    for (const std::string text : {"USBIM (A1B2)", "a_b", "_x0020", "line\nbreak\t<&>\"'", "\xc3\xa9t\xc3\xa9"}) {
        EXPECT_EQ(text, UnEscapeXML(EscapeXML(text))) << text;
    }
}

TEST(UnEscapeXML, BareUnderscoresAreRefused) {
    EXPECT_EQ("USBIM (A1B2)", UnEscapeXML("USBIM_x0020_x0028A1B2_x0029"));
    EXPECT_EQ("A", UnEscapeXML("_x41"));  // fewer than four digits end the text
    EXPECT_THROW(UnEscapeXML("a_b"), std::invalid_argument);
    EXPECT_THROW(UnEscapeXML("trailing_"), std::invalid_argument);
    EXPECT_THROW(UnEscapeXML("_xzz00"), std::invalid_argument);
    EXPECT_EQ("plain", UnEscapeXML("plain"));
}

TEST(KavroXmlElement, WritesAndReadsTextContent) {
    const Elements elements = roundTrip([](xmlTextWriterPtr writer) {
        KavroWriteXmlElement(writer, "Escaped", "USBIM (A1B2)", true);
        KavroWriteXmlElement(writer, "Plain",
                             std::string("a\xff"
                                         "b"),
                             false);
        KavroWriteXmlElement(writer, "Empty", "", true);
    });
    EXPECT_EQ((Elements{{"Escaped", "USBIM (A1B2)"}, {"Plain", "a b"}, {"Empty", ""}}), elements);
}

TEST(ModuleSettings, NothingIsWrittenWithoutARunningSave) {
    KavroNetwork network(0, "Settings");
    KavroModuleDP probe(network.Configuration(), 1);
    EXPECT_EQ(nullptr, network.Configuration()->XmlWriter);
    EXPECT_NO_THROW(probe.SaveXML());
}

TEST(ModuleSettings, CommonElementsComeFirstThenTheProbes) {
    KavroNetwork network(0, "Settings");
    KavroModuleDP probe(network.Configuration(), 1);
    KavroReadType* readType = probe.ReadType();
    readType->ModuleIdText = "AB_12 34XY";
    readType->PartNumberText = "P504123A";
    readType->Description = "Digital Probe  ";
    readType->Units = "mm      ";
    readType->Stroke = 2.5;
    readType->ModuleType = eModuleType::DP;
    readType->ResolutionFactor = 4;
    probe.setModuleName("Bore gauge_1 (left)");

    const Elements elements = saved(probe);
    EXPECT_EQ((std::vector<std::string>{"Module_Identity", "Module_Base_ID", "Module_Name", "Module_Type", "Stroke",
                                        "Device_Type", "Units_Of_Measurement", "Averaging", "Resolution"}),
              namesOf(elements));
    const auto settings = settingsOf(elements);
    EXPECT_EQ("AB_12 34XY", settings.at("MODULE_IDENTITY"));
    EXPECT_EQ("P504123A", settings.at("MODULE_BASE_ID"));
    EXPECT_EQ("Bore gauge_1 (left)", settings.at("MODULE_NAME"));
    EXPECT_EQ("DP", settings.at("MODULE_TYPE"));
    EXPECT_EQ("2.500000", settings.at("STROKE"));
    EXPECT_EQ("Digital Probe", settings.at("DEVICE_TYPE"));
    EXPECT_EQ("mm", settings.at("UNITS_OF_MEASUREMENT"));
    EXPECT_EQ("average16", settings.at("AVERAGING"));
    EXPECT_EQ("res16Bit", settings.at("RESOLUTION"));
}

TEST(ModuleSettings, EncoderInputSettingsSurviveSaveAndLoad) {
    FakeNetwork fake;
    KavroModuleEIM original(fake.config(), 1);
    original.setReferenceMarkMode(eReferenceMarkMode::Recall);
    original.setRefAction(eRefAction::ContinuousPreset);
    original.setQuadratureMode(eQuadratureMode::CountDIR);
    original.setInterfaceType(eEncoderInterfaceType::SingleEnded);
    original.setDynamicMasterMode(eDynamicMasterMode::Refaction_Preset);
    const auto settings = settingsOf(saved(original));
    EXPECT_EQ("Refaction_Preset", settings.at("DYNAMIC_MASTER_MODE"));

    KavroModuleEIM copy(fake.config(), 1);
    copy.LoadXML(settings);
    EXPECT_EQ(eReferenceMarkMode::Recall, copy.ReferenceMarkMode());
    EXPECT_EQ(eRefAction::ContinuousPreset, copy.RefAction());
    EXPECT_EQ(eQuadratureMode::CountDIR, copy.QuadratureMode());
    EXPECT_EQ(eEncoderInterfaceType::SingleEnded, copy.InterfaceType());
    EXPECT_EQ(eDynamicMasterMode::Refaction_Preset, copy.DynamicMasterMode());
    EXPECT_EQ(eDirection::Normal, copy.Direction());
    EXPECT_TRUE(fake.bus.commands.empty());
}

TEST(ModuleSettings, DiomPinsLoadDirectionsBeforeStates) {
    KavroNetwork network(0, "Settings");
    KavroModuleDIOM2 original(network.Configuration(), 1);
    original.setPinConfig(3, eDiomIoPinConfig::output);
    original.setPinState(3, eDiomIoPinState::high);
    original.setDebounceTime(eDiomInputDebounceTime::Time25ms);
    original.setOutputMode(eDIOOutputMode::PNP);
    EXPECT_THROW(original.setPinState(4, eDiomIoPinState::high), std::runtime_error);
    EXPECT_THROW(original.setPinConfig(9, eDiomIoPinConfig::output), std::runtime_error);
    EXPECT_THROW(original.PinState(0), std::runtime_error);

    KavroModuleDIOM2 copy(network.Configuration(), 1);
    copy.LoadXML(settingsOf(saved(original)));
    EXPECT_EQ(eDiomIoPinConfig::output, copy.PinConfig(3));
    EXPECT_EQ(eDiomIoPinState::high, copy.PinState(3));
    EXPECT_EQ(eDiomIoPinConfig::input, copy.PinConfig(4));
    EXPECT_EQ(eDiomInputDebounceTime::Time25ms, copy.DebounceTime());
    EXPECT_EQ(eDIOOutputMode::PNP, copy.OutputMode());

    // A state for an input pin, or a text that is no state, is skipped.
    copy.LoadXML({{"PIN_4_STATE", "high"}, {"PIN_3_STATE", "middle"}, {"OUTPUT_MODE", "TTL"}});
    EXPECT_EQ(eDiomIoPinState::low, copy.PinState(4));
    EXPECT_EQ(eDiomIoPinState::high, copy.PinState(3));
    EXPECT_EQ(eDIOOutputMode::TTL, copy.OutputMode());
}

TEST(ModuleSettings, AirGaugeDimAndLaserSettingsSurviveSaveAndLoad) {
    KavroNetwork network(0, "Settings");
    KavroModuleAGM gauge(network.Configuration(), 1);
    gauge.setMasterMinReadingInUOM(-0.125);
    gauge.setMasterMaxReadingInUOM(0.375);
    gauge.setEndBandSizeMicrons(20.0);
    gauge.setMeasurementMode(eAGM_MeasurementMode::Absolute);
    KavroModuleAGM gaugeCopy(network.Configuration(), 1);
    gaugeCopy.LoadXML(settingsOf(saved(gauge)));
    EXPECT_DOUBLE_EQ(-0.125, gaugeCopy.MasterMinReadingInUOM());
    EXPECT_DOUBLE_EQ(0.375, gaugeCopy.MasterMaxReadingInUOM());
    EXPECT_DOUBLE_EQ(20.0, gaugeCopy.EndBandSizeMicrons());
    EXPECT_FALSE(gaugeCopy.OutputReadingAsPressure());
    EXPECT_EQ(eAGM_MeasurementMode::Absolute, gaugeCopy.MeasurementMode());
    EXPECT_DOUBLE_EQ(-0.145, gaugeCopy.ReadType()->SizeOffset);
    gaugeCopy.LoadXML({{"OUTPUT_READING_AS_PRESSURE", "TRUE"}, {"END_BAND_SIZE_MICRONS", "-5"}});
    EXPECT_TRUE(gaugeCopy.OutputReadingAsPressure());
    EXPECT_DOUBLE_EQ(20.0, gaugeCopy.EndBandSizeMicrons());
    EXPECT_DOUBLE_EQ(0.0, gaugeCopy.ReadType()->SizeOffset);

    KavroModuleDIM dim(network.Configuration(), 1);
    dim.setReadMode(eDimReadMode::ReadOnSample);
    KavroModuleDIM dimCopy(network.Configuration(), 1);
    dimCopy.LoadXML(settingsOf(saved(dim)));
    EXPECT_EQ(eDimReadMode::ReadOnSample, dimCopy.ReadMode());

    KavroModuleLT laser(network.Configuration(), 1);
    laser.setFilter(eFilter::Filter0Hz1);
    laser.setMeasuringRate(eMeasuringRate::rate10kHz);
    KavroModuleLT laserCopy(network.Configuration(), 1);
    laserCopy.LoadXML(settingsOf(saved(laser)));
    EXPECT_EQ(eFilter::Filter0Hz1, laserCopy.Filter());
    EXPECT_EQ(eMeasuringRate::rate10kHz, laserCopy.MeasuringRate());
}
