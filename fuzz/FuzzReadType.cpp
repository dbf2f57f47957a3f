// The reading decoder, fed a module's identify and get-info answers as any
// module might give them: bytes 0 to 5 are the probe range, the get-info
// error flag, the firmware number and the stroke code; the rest is the part
// number, the type text and the information text, split at line feeds. The
// decoder and the conversions must never throw, whatever the texts say.
#include <algorithm>
#include <string>

#include "FuzzTarget.h"
#include "readings/KavroReadType.h"

using namespace KavroLibrary;

namespace {

// The next field of `text` up to a line feed (or its end).
std::string field(const std::string& text, std::size_t& at) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string out = at < text.size() ? text.substr(at, end - at) : std::string();
    at = end + 1;
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 6) return 0;
    const std::string text(reinterpret_cast<const char*>(data + 6), size - 6);
    std::size_t at = 0;
    const std::string partNumber = field(text, at);
    const std::string typeText = field(text, at);
    const std::string infoText = field(text, at);

    KavroReadType decoder;
    decoder.SetupIdentify("FUZZ000001", partNumber, "1.50 ", data[0]);
    const int infoError = (data[1] & 1) != 0 ? 0x2103 : 0;
    decoder.SetupGetInfo(infoError, typeText, data[1] >> 4, 0, data[2] | (data[3] << 8), data[4] | (data[5] << 8),
                         infoText);
    decoder.Process();
    decoder.UpdateFullScale();
    const double value = decoder.Read(123);
    (void)decoder.ReadDyn(0x7FFFFF);
    (void)decoder.ReadSum(123456789, 7);
    (void)decoder.ConvertReadingToCounts(value);
    return 0;
}
