#include "network/KavroXmlElement.h"

#include <cstdio>
#include <stdexcept>

namespace KavroLibrary {

namespace {

bool isPlainCharacter(unsigned char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string EscapeXML(std::string text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (isPlainCharacter(code)) {
            escaped.push_back(c);
        } else {
            char codeText[8];
            std::snprintf(codeText, sizeof codeText, "_x%04x", code);
            escaped += codeText;
        }
    }
    return escaped;
}

std::string UnEscapeXML(std::string text) {
    std::string plain;
    plain.reserve(text.size());
    std::size_t position = 0;
    while (position < text.size()) {
        if (text[position] != '_') {
            plain.push_back(text[position]);
            ++position;
            continue;
        }
        // The character after the underscore (the 'x') is not looked at; up
        // to four hexadecimal digits follow it.
        unsigned long code = 0;
        int digits = 0;
        for (std::size_t at = position + 2; at < text.size() && at < position + 6; ++at) {
            const int value = hexValue(text[at]);
            if (value < 0) break;
            code = code * 16 + static_cast<unsigned long>(value);
            ++digits;
        }
        if (digits == 0) throw std::invalid_argument("UnEscapeXML: an underscore without an escape code");
        plain.push_back(static_cast<char>(code));
        position += 6;
    }
    return plain;
}

void KavroWriteXmlElement(xmlTextWriterPtr writer, std::string name, std::string value, bool escape) {
    for (char& c : value) {
        if (static_cast<unsigned char>(c) == 255) c = ' ';
    }
    if (escape) value = EscapeXML(value);
    if (xmlTextWriterWriteElement(writer, BAD_CAST name.c_str(), BAD_CAST value.c_str()) < 0) {
        throw std::runtime_error("Error Writing XML document");
    }
}

std::string KavroReadXmlElement(xmlNodePtr node) {
    if (node == nullptr || node->children == nullptr) return "";
    xmlChar* content = xmlNodeGetContent(node->children);
    if (content == nullptr) return "";
    std::string text(reinterpret_cast<const char*>(content));
    xmlFree(content);
    return UnEscapeXML(text);
}

}  // namespace KavroLibrary
