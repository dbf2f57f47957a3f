// Locale-independent number text and small string helpers.
//
// Every number the library reads from or writes to text goes through these, so
// that files and text protocols use '.' as the decimal point whatever locale
// the application has set.
#pragma once

#include <string>
#include <vector>

namespace KavroLibrary {

// Keeps only '0'-'9', '-' and '.', then extracts one number; throws
// std::runtime_error("Unable to parse number.") when none can be extracted.
int KavroNumberStrToInt(std::string text);
// As KavroNumberStrToInt(), for a decimal number.
double KavroNumberStrToDouble(std::string text);

// General notation with `precision` significant digits; '.' as decimal point.
std::string KavroNumberDoubleToStr(double value, int precision);

// NULs become blanks; blanks and tabs are cut from both ends (an all-blank
// text loses its blanks but keeps any tabs).
std::string StringTrim(std::string text);

// Splits at the delimiter; a token always takes its first character whatever
// it is, so a repeated delimiter starts the next token.
std::vector<std::string> StringSplit(std::string text, char delimiter);

// True when every character is a blank or a NUL (an empty text is true).
bool StringIsNullOrWhiteSpace(const std::string& text);

// The text in upper case, byte by byte as std::toupper does.
std::string StringToUpper(std::string text);

}  // namespace KavroLibrary
