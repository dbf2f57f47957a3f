// The library's main job on the built-in default: for now, the library's
// identity and a few error texts.
#include <KavroLibrary.h>

#include <iostream>

#include "core/ErrorDictionary.h"

int main() {
    using namespace KavroLibrary;
    // The library reads its texts from the fixed installed path; a source
    // checkout that is not installed uses the copy beside the sources.
    if (GetErrorDescriptionInternal(0) == "Unknown Error") {
        loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    }
    std::cout << "KavroLibrary error texts\n";
    for (auto code : {eKavroErrors::NoError, eKavroErrors::Timeout, eKavroErrors::UnderRange,
                      eKavroErrors::OverRange, eKavroErrors::BUFFER_FULL}) {
        std::cout << "  " << static_cast<int>(code) << " " << eKavroErrors_ToString(code) << ": "
                  << GetErrorDescriptionInternal(static_cast<int>(code)) << "\n";
    }
    return 0;
}
