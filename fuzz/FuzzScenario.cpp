// The simulator's scenario parser.
#include <sstream>
#include <stdexcept>
#include <string>

#include "FuzzTarget.h"
#include "core/SimScenario.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    try {
        kavrosim::parseScenario(in, "fuzz");
    } catch (const std::exception&) {
        // Scenario errors are reported by exception.
    }
    return 0;
}
