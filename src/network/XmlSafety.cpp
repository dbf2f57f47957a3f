#include "network/XmlSafety.h"

#include <libxml/tree.h>
#include <libxml/xmlversion.h>

namespace KavroLibrary {

XmlLibrary::XmlLibrary() {
    xmlInitParser();
    LIBXML_TEST_VERSION
}

namespace {

void quietErrors(void*, const char*, ...) {}
void quietStructuredErrors(void*, xmlErrorPtr) {}

}  // namespace

QuietXmlErrors::QuietXmlErrors()
    : generic_(xmlGenericError),
      genericContext_(xmlGenericErrorContext),
      structured_(xmlStructuredError),
      structuredContext_(xmlStructuredErrorContext) {
    xmlSetGenericErrorFunc(nullptr, quietErrors);
    xmlSetStructuredErrorFunc(nullptr, quietStructuredErrors);
}

QuietXmlErrors::~QuietXmlErrors() {
    xmlSetStructuredErrorFunc(structuredContext_, structured_);
    xmlSetGenericErrorFunc(genericContext_, generic_);
}

xmlDoc* readXmlFileSafely(const std::string& path) {
    xmlDoc* document = nullptr;
    {
        const QuietXmlErrors quiet;
        document = xmlReadFile(path.c_str(), nullptr, kSafeXmlParseOptions);
    }
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
