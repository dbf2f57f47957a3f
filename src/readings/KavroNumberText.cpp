#include "KavroNumberText.h"

#include <cctype>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "readings/KavroNumberFormat.h"

namespace KavroLibrary {

kavroNumberFormat::~kavroNumberFormat() = default;

std::locale kavroNumberLocale() { return std::locale(std::cout.getloc(), new kavroNumberFormat(0)); }

namespace {

// Blanks, unit letters, '+', commas and exponents are dropped on purpose: the
// module information texts and settings files carry numbers among them.
std::string keepNumberCharacters(const std::string& text) {
    std::string kept;
    kept.reserve(text.size());
    for (char c : text) {
        if ((c >= '0' && c <= '9') || c == '-' || c == '.') kept.push_back(c);
    }
    return kept;
}

template <typename T>
T parseNumber(const std::string& text) {
    std::istringstream in(keepNumberCharacters(text));
    in.imbue(kavroNumberLocale());
    T value{};
    in >> value;
    if (in.fail()) throw std::runtime_error("Unable to parse number.");
    return value;
}

}  // namespace

int KavroNumberStrToInt(std::string text) { return parseNumber<int>(text); }

double KavroNumberStrToDouble(std::string text) { return parseNumber<double>(text); }

std::string KavroNumberDoubleToStr(double value, int precision) {
    std::ostringstream out;
    out.imbue(kavroNumberLocale());
    out.precision(precision);
    out << value;
    return out.str();
}

std::string StringTrim(std::string text) {
    for (char& c : text) {
        if (c == '\0') c = ' ';
    }
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        std::string tabs;
        for (char c : text) {
            if (c != ' ') tabs.push_back(c);
        }
        return tabs;
    }
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::vector<std::string> StringSplit(std::string text, char delimiter) {
    std::vector<std::string> tokens;
    std::string token;
    const std::size_t length = text.size();
    for (std::size_t position = 0; position <= length; ++position) {
        const char c = position < length ? text[position] : '\0';
        if (token.empty()) {
            token.push_back(c);
        } else if (position == length || c == delimiter) {
            tokens.push_back(token);
            token.clear();
        } else {
            token.push_back(c);
        }
    }
    return tokens;
}

bool StringIsNullOrWhiteSpace(const std::string& text) {
    for (char c : text) {
        if (c != ' ' && c != '\0') return false;
    }
    return true;
}

std::string StringToUpper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

}  // namespace KavroLibrary
