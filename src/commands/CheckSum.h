// The 16-bit block checksum of configuration, buffered and pipe transfers.
#pragma once

#include <cstdint>

namespace KavroLibrary {

// True when the block and its stored checksum word sum to 0 modulo 65536.
bool checkSumHolds(const unsigned char* data, int length, std::uint16_t stored);

}  // namespace KavroLibrary
