// libxml2 set-up shared by every reader of XML files: no network access, no
// entity expansion, no messages on standard error.
#pragma once

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <string>

namespace KavroLibrary {

// Initialises the parser and checks the library version for the duration of
// a read or write. The parser's global state is deliberately not torn down
// afterwards: the application may use libxml2 itself.
class XmlLibrary {
public:
    XmlLibrary();
};

// Keeps libxml2's messages off standard error while it lives, and then gives
// the application back the error handlers it had set (libxml2 keeps them per
// thread).
class QuietXmlErrors {
public:
    QuietXmlErrors();
    ~QuietXmlErrors();
    QuietXmlErrors(const QuietXmlErrors&) = delete;
    QuietXmlErrors& operator=(const QuietXmlErrors&) = delete;

private:
    xmlGenericErrorFunc generic_;
    void* genericContext_;
    xmlStructuredErrorFunc structured_;
    void* structuredContext_;
};

// Options for every parse: no network, no entity substitution, no DTD
// loading, errors and warnings kept quiet.
constexpr int kSafeXmlParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

// Parses a file with the safe options; null when it is missing or not
// well-formed (or declares entities, which our files never do).
xmlDoc* readXmlFileSafely(const std::string& path);

}  // namespace KavroLibrary
