// Element-level writing and reading of the settings file, and the escaping
// that keeps any text usable as element content and in element names.
#pragma once

#include <string>

#include <libxml/tree.h>
#include <libxml/xmlwriter.h>

namespace KavroLibrary {

// Letters and digits stay; every other character becomes "_x" and its code as
// four lower-case hexadecimal digits ("_x0020" for a blank).
std::string EscapeXML(std::string text);

// Reverses EscapeXML. Throws std::invalid_argument for an underscore that is
// not followed by an escape.
std::string UnEscapeXML(std::string text);

// Writes one element with text content; bytes 255 become blanks. Throws
// std::runtime_error("Error Writing XML document") when the writer fails.
void KavroWriteXmlElement(xmlTextWriterPtr writer, std::string name, std::string value, bool escape);

// The unescaped text content of an element, or "" when it has none.
std::string KavroReadXmlElement(xmlNodePtr node);

}  // namespace KavroLibrary
