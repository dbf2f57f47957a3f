// The Ethernet and serial reply frame, and the controller answers both share.
#include <algorithm>
#include <cstring>

#include "FuzzTarget.h"
#include "links/ByteFraming.h"

using namespace KavroLibrary;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const unsigned char echo = data[0];
    const bool longReply = (data[1] & 1) != 0;
    const std::uint8_t* next = data + 2;
    std::size_t left = size - 2;
    const FrameReader reader = [&](unsigned char* buffer, int count) {
        const std::size_t n = std::min<std::size_t>(static_cast<std::size_t>(count), left);
        std::memcpy(buffer, next, n);
        next += n;
        left -= n;
        return static_cast<int>(n);
    };
    const ReplyFrame frame = ReadReplyFrame(reader, echo, longReply);
    volatile unsigned sum = 0;
    for (std::uint32_t i = 0; i < frame.Reply.Length; ++i) sum = sum + frame.Reply.Data[i];
    delete[] frame.Reply.Data;
    ParseControllerIdentify(data, static_cast<int>(size));
    ParseControllerInfo(data, static_cast<int>(size));
    return 0;
}
