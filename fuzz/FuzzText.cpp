// The small text parsers: number text and the settings files' unescaping.
// Byte 0 picks the parser.
#include <stdexcept>
#include <string>

#include "FuzzTarget.h"
#include "KavroNumberText.h"
#include "network/KavroXmlElement.h"

using namespace KavroLibrary;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    try {
        switch (data[0] % 4) {
            case 0:
                KavroNumberStrToInt(text);
                break;
            case 1:
                KavroNumberStrToDouble(text);
                break;
            case 2:
                StringSplit(StringTrim(text), ',');
                break;
            default:
                EscapeXML(UnEscapeXML(text));
                break;
        }
    } catch (const std::exception&) {
        // A clear refusal is the wanted outcome for bad text.
    }
    return 0;
}
