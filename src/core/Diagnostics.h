// The library's one way to write a diagnostic line (see KavroDiagnostics.h).
#pragma once

#include <sstream>
#include <string>

namespace KavroLibrary {

// Hands `line` (without its line feed) to the application's handler, or
// writes it to standard error with a line feed. Never throws.
void writeDiagnostic(const std::string& line) noexcept;

// One line made of the parts as a stream would write them.
template <typename... Parts>
void diagnostic(const Parts&... parts) noexcept {
    try {
        std::ostringstream line;
        (line << ... << parts);
        writeDiagnostic(line.str());
    } catch (...) {
        // Out of memory for a message: the message is the one thing to drop.
    }
}

}  // namespace KavroLibrary
