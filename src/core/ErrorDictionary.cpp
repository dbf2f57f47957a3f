#include "core/ErrorDictionary.h"

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <mutex>

#include "KavroNumberText.h"
#include "core/Diagnostics.h"

namespace KavroLibrary {

const char* const kErrorDictionaryPath = "/usr/share/kavrolinuxlibrary/languages/ErrLang_en.dat";

std::map<std::int32_t, std::string> kavroErrorDictionary;

namespace {

// The map is filled at most once in practice, but descriptions are asked for
// from worker threads too; the lock keeps the first fill from racing a read.
std::recursive_mutex& dictionaryLock() {
    static std::recursive_mutex lock;
    return lock;
}

void storeLine(const std::string& line, const std::string& path) {
    const auto tab = line.find('\t');
    if (tab == std::string::npos || tab == 0) return;  // blank or comment-like line
    try {
        const int code = KavroNumberStrToInt(line.substr(0, tab));
        std::string text = line.substr(tab + 1);
        if (!text.empty() && text.back() == '\r') text.pop_back();
        kavroErrorDictionary[code] = text;  // a later line wins
    } catch (const std::exception&) {
        diagnostic("Unable to read the error dictionary :", path);
    }
}

}  // namespace

void loadErrorDictionaryFrom(const std::string& path) {
    std::lock_guard<std::recursive_mutex> guard(dictionaryLock());
    std::ifstream in(path);
    if (!in.is_open()) return;
    std::string line;
    while (in.good()) {
        if (!std::getline(in, line)) break;
        storeLine(line, path);
    }
}

// The fixed place first. Where it is missing (a build tree, a private prefix
// that could not write there) the copy beside the library itself: in
// PREFIX/share when the library is in PREFIX/lib or PREFIX/lib/ARCH, or in
// the build tree's share/.
void loadErrorDictionary() {
    loadErrorDictionaryFrom(kErrorDictionaryPath);
    Dl_info self{};
    if (!kavroErrorDictionary.empty() || dladdr(reinterpret_cast<void*>(&loadErrorDictionary), &self) == 0 ||
        self.dli_fname == nullptr) {
        return;
    }
    const std::string folder = std::filesystem::path(self.dli_fname).parent_path().string();
    for (const char* up : {"/", "/../", "/../../"}) {
        loadErrorDictionaryFrom(folder + up + "share/kavrolinuxlibrary/languages/ErrLang_en.dat");
        if (!kavroErrorDictionary.empty()) return;
    }
}

std::string GetErrorDescriptionInternal(int code) {
    std::lock_guard<std::recursive_mutex> guard(dictionaryLock());
    if (kavroErrorDictionary.empty()) loadErrorDictionary();
    const auto found = kavroErrorDictionary.find(code);
    if (found == kavroErrorDictionary.end()) return "Unknown Error";
    return found->second;
}

void setError(eKavroErrors& error, std::int32_t low, std::int32_t high, eKavroErrors forced, eKavroErrors reply) {
    if (forced != eKavroErrors::NoError) {
        error = forced;
        return;
    }
    if (reply != eKavroErrors::NoError) error = reply;
    const eKavroErrors current = error;
    if (current != eKavroErrors::NoError && current != eKavroErrors::UnderRange && current != eKavroErrors::OverRange) {
        return;
    }
    const bool below = low == 0x8000 || high == 0x8000;
    const bool above = low == 0xFFFF || high == 0xFFFF;
    if (below) {
        if (current == eKavroErrors::OverRange) {
            error = eKavroErrors::OverAndUnderRange;
        } else {
            error = above ? eKavroErrors::OverAndUnderRange : eKavroErrors::UnderRange;
        }
    } else if (above) {
        error = current == eKavroErrors::UnderRange ? eKavroErrors::OverAndUnderRange : eKavroErrors::OverRange;
    }
}

}  // namespace KavroLibrary
