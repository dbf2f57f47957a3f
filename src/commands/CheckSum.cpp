#include "commands/CheckSum.h"

#include "commands/KavroCommands.h"

namespace KavroLibrary {

std::uint16_t CheckSum(const unsigned char* data, int length) {
    std::uint16_t sum = 0;
    for (int i = 0; data != nullptr && i < length; ++i) sum = static_cast<std::uint16_t>(sum + data[i]);
    return static_cast<std::uint16_t>(0x10000 - sum);
}

bool checkSumHolds(const unsigned char* data, int length, std::uint16_t stored) {
    return CheckSum(data, length) == stored;
}

}  // namespace KavroLibrary
