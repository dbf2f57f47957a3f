// The error dictionary: one text per eKavroErrors code, read from a plain-text
// file on first use, and the rule that folds reading limits into a code.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "KavroErrors.h"

namespace KavroLibrary {

// The fixed location of the English dictionary, whatever the install prefix.
extern const char* const kErrorDictionaryPath;

// Process-wide, ordered by code; entries are only ever added or replaced.
extern std::map<std::int32_t, std::string> kavroErrorDictionary;

// Fills the dictionary from the fixed path.
void loadErrorDictionary();

// Fills the dictionary from another file (tests and tools use this).
void loadErrorDictionaryFrom(const std::string& path);

// The text of a code, loading the dictionary while it is empty;
// "Unknown Error" for a code without a text.
std::string GetErrorDescriptionInternal(int code);

// Folds a forced code, a reply code and the raw range markers 0x8000 (below
// range) and 0xFFFF (above range) into `error`. A real error is never
// overwritten by a range code.
void setError(eKavroErrors& error, std::int32_t low, std::int32_t high, eKavroErrors forced, eKavroErrors reply);

}  // namespace KavroLibrary
