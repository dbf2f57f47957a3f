#include "network/ConfigurationFiles.h"

#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <cstdlib>
#include <stdexcept>

#include "KavroNetworkETHIM.h"
#include "KavroNetworkRS232.h"
#include "KavroNetworkWIM.h"
#include "KavroNumberText.h"
#include "core/Diagnostics.h"
#include "network/XmlSafety.h"

namespace KavroLibrary {

const char* const kUserConfigurationFile = "/.PellaquinMetrology/kavrolibrarysettings.xml";
const char* const kSystemConfigurationFile = "/etc/kavrolibrarysettings.xml";

namespace {

std::string& systemFileOverride() {
    static std::string path;
    return path;
}

std::string nodeText(xmlNode* node) {
    xmlChar* content = xmlNodeGetContent(node);
    if (content == nullptr) return std::string();
    std::string text(reinterpret_cast<const char*>(content));
    xmlFree(content);
    return text;
}

struct NetworkEntry {
    std::string name;
    std::string comport = "/dev/ttyS0";
    std::string baud;
    std::string address;
    std::string channel;
};

// Children are matched by exact name; a repeated child replaces the earlier.
NetworkEntry readEntry(xmlNode* node) {
    NetworkEntry entry;
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (child->type != XML_ELEMENT_NODE || child->name == nullptr) continue;
        const std::string name(reinterpret_cast<const char*>(child->name));
        if (name == "networkname") {
            entry.name = nodeText(child);
        } else if (name == "comport") {
            entry.comport = nodeText(child);
        } else if (name == "baud") {
            entry.baud = nodeText(child);
        } else if (name == "address") {
            entry.address = nodeText(child);
        } else if (name == "channel") {
            entry.channel = nodeText(child);
        }
    }
    return entry;
}

int numberOr(const std::string& text, int fallback) {
    if (text.empty()) return fallback;
    return KavroNumberStrToInt(text);
}

}  // namespace

void addNetwork(xmlNode* node, std::vector<KavroNetwork*>& networks) {
    xmlChar* attribute = xmlGetProp(node, reinterpret_cast<const xmlChar*>("controllertype"));
    if (attribute == nullptr) return;
    const std::string type(reinterpret_cast<const char*>(attribute));
    xmlFree(attribute);
    const int number = static_cast<int>(networks.size());
    if (type == "RS232IM") {
        const NetworkEntry entry = readEntry(node);
        const int baud = numberOr(entry.baud, 115200);
        networks.push_back(new KavroNetworkRS232(number, entry.name, entry.comport, baud));
    } else if (type == "ETHIM") {
        const NetworkEntry entry = readEntry(node);
        networks.push_back(new KavroNetworkETHIM(number, entry.name, entry.address));
    } else if (type == "WIM") {
        const NetworkEntry entry = readEntry(node);
        const int channel = numberOr(entry.channel, 5);
        networks.push_back(new KavroNetworkWIM(number, entry.name, entry.address, channel));
    }
}

void readSingleConfigurationFile(std::string path, std::vector<KavroNetwork*>& networks) {
    XmlLibrary library;
    xmlDoc* document = readXmlFileSafely(path);
    if (document == nullptr) return;  // missing or not well-formed: silently skipped
    xmlXPathContext* context = xmlXPathNewContext(document);
    xmlXPathObject* found = nullptr;
    if (context != nullptr) {
        found = xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>("/settings/networks/network"), context);
    }
    if (found != nullptr && found->nodesetval != nullptr) {
        for (int i = 0; i < found->nodesetval->nodeNr; ++i) {
            // One bad entry (a baud that is no number) must not hide the
            // others, nor the USB controllers searched for afterwards.
            try {
                addNetwork(found->nodesetval->nodeTab[i], networks);
            } catch (const std::exception& error) {
                diagnostic("Skipping network entry ", i + 1, " of ", path, ": ", error.what());
            }
        }
    }
    xmlXPathFreeObject(found);
    xmlXPathFreeContext(context);
    xmlFreeDoc(document);
}

void readConfigurationFiles(std::vector<KavroNetwork*>& networks) {
    const char* home = std::getenv("HOME");
    if (home == nullptr) throw std::logic_error("HOME is not set: cannot find the per-user controller configuration");
    readSingleConfigurationFile(std::string(home) + kUserConfigurationFile, networks);
    const std::string& system = systemFileOverride();
    readSingleConfigurationFile(system.empty() ? kSystemConfigurationFile : system, networks);
}

void setSystemConfigurationFileForTests(const std::string& path) { systemFileOverride() = path; }

}  // namespace KavroLibrary
