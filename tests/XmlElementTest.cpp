// Escaping of settings texts, element writing and reading, and the module
// settings written and read through them.
#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <memory>
#include <utility>

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

// A fresh module of the same kind loaded from what `original` saves.
template <typename Module>
std::unique_ptr<Module> reloaded(Module& original) {
    auto copy = std::make_unique<Module>(original.Configuration(), 1);
    copy->LoadXML(settingsOf(saved(original)));
    return copy;
}

}  // namespace

// Only letters and digits pass; every other byte becomes _xHHHH (lower-case
// hex, a byte at a time). Names with blanks, underscores, markup and UTF-8
// make the round trip in NetworkSettings.ASavedNetworkLoadsBackWithItsModulesAndSettings.
TEST(EscapeXML, OnlyLettersAndDigitsStayAndBareUnderscoresAreRefused) {
    EXPECT_EQ("_x00ff_x00e9_x002e", EscapeXML("\xff\xe9."));
    EXPECT_EQ("", EscapeXML(""));
    EXPECT_EQ("line\nbreak_x0020", UnEscapeXML(EscapeXML("line\nbreak_x0020")));
    // Short escapes end the text; bare or malformed underscores are refused.
    EXPECT_EQ("A", UnEscapeXML("_x41"));
    for (const char* text : {"a_b", "trailing_", "_xzz00"}) EXPECT_THROW(UnEscapeXML(text), std::invalid_argument);
}

// Escaping only when asked; a stray non-UTF-8 byte must not break the document.
TEST(KavroXmlElement, WritesAndReadsTextContent) {
    const Elements elements = roundTrip([](xmlTextWriterPtr writer) {
        KavroWriteXmlElement(writer, "Escaped", "USBIM (A1B2)", true);
        KavroWriteXmlElement(writer, "Plain", std::string("a\xff") + "b", false);
        KavroWriteXmlElement(writer, "Empty", "", true);
    });
    EXPECT_EQ((Elements{{"Escaped", "USBIM (A1B2)"}, {"Plain", "a b"}, {"Empty", ""}}), elements);
}

// The element order and texts a probe saves; nothing without a running save.
TEST(ModuleSettings, CommonElementsComeFirstThenTheProbes) {
    KavroNetwork network(0, "Settings");
    KavroModuleDP probe(network.Configuration(), 1);
    EXPECT_NO_THROW(probe.SaveXML()) << "no save running";
    KavroReadType* readType = probe.ReadType();
    readType->ModuleIdText = "AB_12 34XY";
    readType->PartNumberText = "P504123A";
    readType->Description = "Digital Probe  ";
    readType->Units = "mm      ";
    readType->Stroke = 2.5;
    readType->ModuleType = eModuleType::DP;
    readType->ResolutionFactor = 4;
    probe.setModuleName("Bore gauge_1 (left)");
    EXPECT_EQ((Elements{{"Module_Identity", "AB_12 34XY"},
                        {"Module_Base_ID", "P504123A"},
                        {"Module_Name", "Bore gauge_1 (left)"},
                        {"Module_Type", "DP"},
                        {"Stroke", "2.500000"},
                        {"Device_Type", "Digital Probe"},
                        {"Units_Of_Measurement", "mm"},
                        {"Averaging", "average16"},
                        {"Resolution", "res16Bit"}}),
              saved(probe));
}

// Directions load before states; input states, bad texts and pin numbers are refused.
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

    const auto copy = reloaded(original);
    EXPECT_EQ(eDiomIoPinState::high, copy->PinState(3));
    EXPECT_EQ(eDiomInputDebounceTime::Time25ms, copy->DebounceTime());
    EXPECT_EQ(eDIOOutputMode::PNP, copy->OutputMode());
    copy->LoadXML({{"PIN_4_STATE", "high"}, {"PIN_3_STATE", "middle"}, {"OUTPUT_MODE", "TTL"}});
    EXPECT_EQ(eDiomIoPinState::low, copy->PinState(4));
    EXPECT_EQ(eDiomIoPinState::high, copy->PinState(3));
    EXPECT_EQ(eDIOOutputMode::TTL, copy->OutputMode());
}

// Saved under the names the load reads, loading sends nothing to the bus; a
// negative band is refused and the pressure flag clears the size offset.
TEST(ModuleSettings, OtherModulesSettingsSurviveSaveAndLoad) {
    FakeNetwork fake;
    KavroModuleEIM encoder(fake.config(), 1);
    encoder.setReferenceMarkMode(eReferenceMarkMode::Recall);
    encoder.setRefAction(eRefAction::ContinuousPreset);
    encoder.setQuadratureMode(eQuadratureMode::CountDIR);
    encoder.setInterfaceType(eEncoderInterfaceType::SingleEnded);
    encoder.setDynamicMasterMode(eDynamicMasterMode::Refaction_Preset);
    const auto encoderCopy = reloaded(encoder);
    EXPECT_EQ(eReferenceMarkMode::Recall, encoderCopy->ReferenceMarkMode());
    EXPECT_EQ(eRefAction::ContinuousPreset, encoderCopy->RefAction());
    EXPECT_EQ(eQuadratureMode::CountDIR, encoderCopy->QuadratureMode());
    EXPECT_EQ(eEncoderInterfaceType::SingleEnded, encoderCopy->InterfaceType());
    EXPECT_EQ(eDynamicMasterMode::Refaction_Preset, encoderCopy->DynamicMasterMode());

    KavroModuleAGM gauge(fake.config(), 1);
    gauge.setMasterMinReadingInUOM(-0.125);
    gauge.setMasterMaxReadingInUOM(0.375);
    gauge.setEndBandSizeMicrons(20.0);
    gauge.setMeasurementMode(eAGM_MeasurementMode::Absolute);
    const auto gaugeCopy = reloaded(gauge);
    EXPECT_DOUBLE_EQ(-0.125, gaugeCopy->MasterMinReadingInUOM());
    EXPECT_DOUBLE_EQ(0.375, gaugeCopy->MasterMaxReadingInUOM());
    EXPECT_EQ(eAGM_MeasurementMode::Absolute, gaugeCopy->MeasurementMode());
    EXPECT_DOUBLE_EQ(-0.145, gaugeCopy->ReadType()->SizeOffset);
    gaugeCopy->LoadXML({{"OUTPUT_READING_AS_PRESSURE", "TRUE"}, {"END_BAND_SIZE_MICRONS", "-5"}});
    EXPECT_TRUE(gaugeCopy->OutputReadingAsPressure());
    EXPECT_DOUBLE_EQ(20.0, gaugeCopy->EndBandSizeMicrons());
    EXPECT_DOUBLE_EQ(0.0, gaugeCopy->ReadType()->SizeOffset);

    KavroModuleDIM dim(fake.config(), 1);
    dim.setReadMode(eDimReadMode::ReadOnSample);
    EXPECT_EQ(eDimReadMode::ReadOnSample, reloaded(dim)->ReadMode());
    KavroModuleLT laser(fake.config(), 1);
    laser.setFilter(eFilter::Filter0Hz1);
    laser.setMeasuringRate(eMeasuringRate::rate10kHz);
    const auto laserCopy = reloaded(laser);
    EXPECT_EQ(eFilter::Filter0Hz1, laserCopy->Filter());
    EXPECT_EQ(eMeasuringRate::rate10kHz, laserCopy->MeasuringRate());
    EXPECT_TRUE(fake.bus.commands.empty());
}
