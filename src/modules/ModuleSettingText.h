// Texts of module settings in the settings file, and applying a loaded one.
#pragma once

#include <exception>
#include <map>
#include <string>

namespace KavroLibrary {

// A number as "%f" writes it, with '.' whatever the locale.
std::string FixedText(double value);

std::string BoolText(bool value);
// "true" or "1", in any case; anything else is false.
bool BoolFromText(const std::string& text);

// Applies the setting stored under `key`, when there is one. A text that does
// not convert, or a value the module refuses, leaves the setting as it was:
// one bad entry must not stop a network from loading.
template <typename Apply>
void ApplySetting(const std::map<std::string, std::string>& settings, const std::string& key, Apply apply) {
    const auto found = settings.find(key);
    if (found == settings.end()) return;
    try {
        apply(found->second);
    } catch (const std::exception&) {
    }
}

}  // namespace KavroLibrary
