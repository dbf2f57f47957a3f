// Saving a network's set-up to a settings file and loading it back: the
// same modules re-addressed in document order, each with its settings.
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlwriter.h>

#include "KavroNetwork.h"
#include "KavroNumberText.h"
#include "ModuleBuffered.h"
#include "links/NetworkConfiguration.h"
#include "modules/ModuleSettingText.h"
#include "network/KavroXmlElement.h"
#include "network/NetworkSettings.h"
#include "network/XmlSafety.h"

namespace KavroLibrary {

namespace {

const char* const kWriteError = "Error Writing XML document";
const char* const kReadError = "Error Reading XML document";
const std::string kModulePrefix = "MODULE_";

void checkWritten(int result) {
    if (result < 0) throw std::runtime_error(kWriteError);
}

void startElement(xmlTextWriterPtr writer, const std::string& name) {
    checkWritten(xmlTextWriterStartElement(writer, BAD_CAST name.c_str()));
}

void endElement(xmlTextWriterPtr writer) { checkWritten(xmlTextWriterEndElement(writer)); }

std::string upperName(const xmlNode* node) { return StringToUpper(reinterpret_cast<const char*>(node->name)); }

bool isElement(const xmlNode* node) { return node->type == XML_ELEMENT_NODE; }

// The writer lives in the link record while a save runs, so that the
// modules' own SaveXML can reach it; it is freed and cleared on every path.
class SaveWriter {
public:
    SaveWriter(NetworkConfiguration* config, const std::string& path) : config_(config), writer_(open(path)) {
        if (writer_ == nullptr) throw std::runtime_error(kWriteError);
        config_->XmlWriter = writer_;
    }
    ~SaveWriter() {
        config_->XmlWriter = nullptr;
        xmlFreeTextWriter(writer_);
    }
    SaveWriter(const SaveWriter&) = delete;
    SaveWriter& operator=(const SaveWriter&) = delete;
    xmlTextWriterPtr get() const { return writer_; }

private:
    // A file that cannot be created is our exception, not libxml2's lines
    // on standard error.
    static xmlTextWriterPtr open(const std::string& path) {
        const QuietXmlErrors quiet;
        return xmlNewTextWriterFilename(path.c_str(), 0);
    }

    NetworkConfiguration* config_;
    xmlTextWriterPtr writer_;
};

struct DocumentFree {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

// Every child element of a module element, by upper-case name, unescaped;
// of two with the same name the later wins.
std::map<std::string, std::string> moduleSettings(xmlNodePtr moduleNode) {
    std::map<std::string, std::string> settings;
    for (xmlNodePtr child = moduleNode->children; child != nullptr; child = child->next) {
        if (isElement(child)) settings[upperName(child)] = KavroReadXmlElement(child);
    }
    return settings;
}

// Every element's text unescapes: checked before anything changes, so that a
// hand-edited value cannot empty the network halfway through a load.
bool everyTextReads(xmlNodePtr node) {
    for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
        if (!isElement(child)) continue;
        try {
            KavroReadXmlElement(child);
        } catch (const std::invalid_argument&) {
            return false;
        }
        if (!everyTextReads(child)) return false;
    }
    return true;
}

std::string settingOrEmpty(const std::map<std::string, std::string>& settings, const std::string& key) {
    const auto found = settings.find(key);
    return found == settings.end() ? std::string() : found->second;
}

}  // namespace

void SaveNetworkInfo(xmlTextWriterPtr writer, NetworkConfiguration* config) {
    startElement(writer, "Network_Information");
    KavroWriteXmlElement(writer, "Network_Type", eNetworkType_ToString(config->NetworkType), true);
    KavroWriteXmlElement(writer, "Network_Speed", eNetSpeed_ToString(config->NetSpeed), true);
    char count[32];
    std::snprintf(count, sizeof count, "%lu", static_cast<unsigned long>(config->Modules.size()));
    KavroWriteXmlElement(writer, "Module_Count", count, true);
    KavroWriteXmlElement(writer, "Network_Name", config->Description, true);
    endElement(writer);
}

void loadnetwork(KavroNetwork* network, xmlNodePtr node, eNetSpeed& speed) {
    for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
        if (!isElement(child)) continue;
        const std::string name = upperName(child);
        if (name == "NETWORK_NAME") {
            network->Configuration()->Description = KavroReadXmlElement(child);
        } else if (name == "NETWORK_SPEED") {
            speed = eNetSpeed_FromString(KavroReadXmlElement(child));
        }
    }
}

void KavroNetwork::Save(std::string path) {
    XmlLibrary library;
    SaveWriter writer(config_.get(), path);
    xmlTextWriterSetIndent(writer.get(), 1);
    checkWritten(xmlTextWriterStartDocument(writer.get(), "1.0", "UTF-8", nullptr));
    startElement(writer.get(), "Network_" + EscapeXML(Description()));
    std::vector<KavroModule*> modules;
    {
        // The count written is that of the list saved, even while a
        // notification adds a module.
        std::lock_guard<std::mutex> guard(modulesLock_);
        SaveNetworkInfo(writer.get(), config_.get());
        modules = config_->Modules;
    }

    startElement(writer.get(), "Modules");
    for (std::size_t index = 0; index < modules.size(); ++index) {
        KavroModule* module = modules[index];
        startElement(writer.get(), "Module_" + std::to_string(index));
        module->SaveXML();
        if (module->BufferedCapable()) {
            KavroWriteXmlElement(writer.get(), "OTUs", std::to_string(module->Buffered()->OTUs()), false);
            KavroWriteXmlElement(writer.get(), "Reading_Interval",
                                 std::to_string(module->Buffered()->ReadingInterval()), false);
            KavroWriteXmlElement(writer.get(), "Bufferred", "", false);
        }
        if (module->DynamicCapable()) KavroWriteXmlElement(writer.get(), "Dynamic", "", false);
        endElement(writer.get());
    }
    endElement(writer.get());
    endElement(writer.get());
    checkWritten(xmlTextWriterEndDocument(writer.get()));
}

void KavroNetwork::Load(std::string path) {
    XmlLibrary library;
    const std::unique_ptr<xmlDoc, DocumentFree> document(readXmlFileSafely(path));
    xmlNodePtr root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr || !everyTextReads(root)) throw std::runtime_error(kReadError);

    ClearModules();
    eNetSpeed speed = eNetSpeed::Low;
    for (xmlNodePtr section = root->children; section != nullptr; section = section->next) {
        if (!isElement(section)) continue;
        const std::string name = upperName(section);
        if (name == "NETWORK_INFORMATION") {
            loadnetwork(this, section, speed);
            continue;
        }
        if (name != "MODULES") continue;
        for (xmlNodePtr element = section->children; element != nullptr; element = element->next) {
            if (!isElement(element) || upperName(element).compare(0, kModulePrefix.size(), kModulePrefix) != 0) {
                continue;
            }
            // Module elements beyond what the controller takes are skipped.
            if (ModuleCount() >= MaximumAllowableNumberOfModules()) continue;
            const std::map<std::string, std::string> settings = moduleSettings(element);
            AddModule(settingOrEmpty(settings, "MODULE_IDENTITY"), settingOrEmpty(settings, "MODULE_NAME"));
            KavroModule* module = GetModule(static_cast<unsigned int>(ModuleCount() - 1));
            module->LoadXML(settings);
            // The buffered interval travels with the marker element; a value
            // the module refuses keeps the one it has.
            if (module->BufferedCapable() && settings.count("BUFFERRED") != 0) {
                ApplySetting(settings, "OTUS", [module](const std::string& text) {
                    module->Buffered()->setOTUs(KavroNumberStrToInt(text));
                });
            }
        }
    }
    if (SpeedAvailable(speed)) setNetSpeed(speed);
}

}  // namespace KavroLibrary
