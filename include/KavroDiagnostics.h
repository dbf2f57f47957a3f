// Where the library's diagnostic lines go. The library writes a few fixed
// lines (a controller that does not answer, a D2XX library that is missing,
// a notification thread that ended on an error); by default they go to
// standard error, one line each.
#pragma once

#include <functional>
#include <string>

namespace KavroLibrary {

// Receives one diagnostic line, without its line feed.
using DiagnosticHandler = std::function<void(const std::string& line)>;

// Routes every later diagnostic line to `handler`; an empty handler sends
// them to standard error again. Safe to call from any thread. The handler is
// called on whichever thread of the library wrote the line (the application's
// own, a notification thread, a dynamic run's threads), must not throw (what
// it throws is dropped) and may be running while the handler is replaced.
void setDiagnosticHandler(DiagnosticHandler handler);

}  // namespace KavroLibrary
