#include "network/XmlSafety.h"

#include <libxml/tree.h>
#include <libxml/xmlversion.h>

namespace KavroLibrary {

XmlLibrary::XmlLibrary() {
    xmlInitParser();
    LIBXML_TEST_VERSION
}

namespace {

// Silences libxml2's generic error output for this thread while parsing.
void quietErrors(void*, const char*, ...) {}

}  // namespace

xmlDoc* readXmlFileSafely(const std::string& path) {
    xmlSetGenericErrorFunc(nullptr, quietErrors);
    xmlDoc* document = xmlReadFile(path.c_str(), nullptr, kSafeXmlParseOptions);
    xmlSetGenericErrorFunc(nullptr, nullptr);
    if (document == nullptr) return nullptr;
    // Settings and configuration files never declare entities; a document
    // that does is refused rather than expanded.
    if (document->intSubset != nullptr &&
        (document->intSubset->entities != nullptr || document->intSubset->pentities != nullptr)) {
        xmlFreeDoc(document);
        return nullptr;
    }
    return document;
}

}  // namespace KavroLibrary
