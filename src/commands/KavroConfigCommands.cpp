// Configuration memory: block read and write with their checksums, and the
// typed wrappers for single values.
#include <cstring>
#include <stdexcept>

#include "commands/CheckSum.h"
#include "commands/CommandExchange.h"
#include "commands/KavroCommands.h"

namespace KavroLibrary {

namespace {

constexpr int kBlockBytes = 32;
constexpr int kWriteLength = 41;
constexpr std::size_t kReadReplyLength = 36;

// Reads `width` bytes little-endian from the start of a block of a good read.
template <typename T>
std::uint32_t readValue(NetworkConfiguration* config, int addr, int location, T& value) {
    const KavroConfigReadResult block = KavroCommands::KavroConfigRead(config, addr, location, 0);
    std::uint64_t raw = 0;
    if (block.LinkStatus == 0 && block.DataLength >= static_cast<int>(sizeof(T))) {
        for (std::size_t k = sizeof(T); k-- > 0;) raw = (raw << 8) | block.Data[k];
    }
    delete[] block.Data;
    value = static_cast<T>(raw);
    return block.LinkStatus;
}

// Writes the value little-endian in its natural width.
template <typename T>
KavroValueResult writeValue(NetworkConfiguration* config, int addr, int location, T value) {
    unsigned char bytes[sizeof(T)];
    const auto raw = static_cast<std::uint64_t>(value);
    for (std::size_t k = 0; k < sizeof(T); ++k) bytes[k] = static_cast<unsigned char>(raw >> (8 * k));
    return KavroCommands::KavroConfigWrite(config, addr, location, 0, bytes, sizeof(T));
}

}  // namespace

KavroConfigReadResult KavroCommands::KavroConfigRead(NetworkConfiguration* config, int addr, int location,
                                                     int secondWord) {
    unsigned char data[6] = {
        'c', lowByte(addr), lowByte(location), lowByte(location >> 8), lowByte(secondWord), lowByte(secondWord >> 8)};
    const CommandReply reply =
        exchange(config, CommandWithReply, data, sizeof data, static_cast<int>(kReadReplyLength), 'c');

    KavroConfigReadResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus != 0 || reply.size() != kReadReplyLength) return result;
    const int count = reply.at(1);
    // A count beyond the block can only come from a corrupt reply.
    if (count > kBlockBytes) {
        result.LinkStatus = static_cast<std::uint32_t>(eKavroErrors::Checksum);
        return result;
    }
    if (count > 0) {
        result.Data = new unsigned char[count];
        reply.copy(2, result.Data, static_cast<std::size_t>(count));
        result.DataLength = count;
    }
    if (!checkSumHolds(reply.bytes(), 34, reply.le16(34))) {
        result.LinkStatus = static_cast<std::uint32_t>(eKavroErrors::Checksum);
    }
    return result;
}

KavroValueResult KavroCommands::KavroConfigWrite(NetworkConfiguration* config, int addr, int location, int secondWord,
                                                 unsigned char* data, int count) {
    if (count > kBlockBytes) throw std::runtime_error("KavroConfigWrite data bytes exceeded");
    if (count < 0 || (count > 0 && data == nullptr)) throw std::runtime_error("KavroConfigWrite data bytes missing");
    unsigned char block[kWriteLength] = {'b',
                                         lowByte(addr),
                                         lowByte(location),
                                         lowByte(location >> 8),
                                         lowByte(secondWord),
                                         lowByte(secondWord >> 8),
                                         static_cast<unsigned char>(count)};
    if (count > 0) std::memcpy(block + 7, data, static_cast<std::size_t>(count));
    const std::uint16_t sum = CheckSum(block, kWriteLength - 2);
    block[39] = static_cast<unsigned char>(sum);
    block[40] = static_cast<unsigned char>(sum >> 8);
    const CommandReply reply = exchange(config, CommandWithReply, block, kWriteLength, 2, 'b');

    KavroValueResult result;
    result.LinkStatus = reply.linkStatus();
    if (result.LinkStatus == 0 && reply.size() == 2) result.Value = reply.at(1);
    return result;
}

std::uint32_t KavroCommands::KavroConfigRead_Byte(NetworkConfiguration* config, int addr, int location,
                                                  unsigned char& value) {
    return readValue(config, addr, location, value);
}

std::uint32_t KavroCommands::KavroConfigRead_UInt16(NetworkConfiguration* config, int addr, int location,
                                                    unsigned short& value) {
    return readValue(config, addr, location, value);
}

std::uint32_t KavroCommands::KavroConfigRead_Int(NetworkConfiguration* config, int addr, int location, int& value) {
    return readValue(config, addr, location, value);
}

std::uint32_t KavroCommands::KavroConfigRead_UInt(NetworkConfiguration* config, int addr, int location,
                                                  unsigned int& value) {
    return readValue(config, addr, location, value);
}

std::uint32_t KavroCommands::KavroConfigRead_Int64(NetworkConfiguration* config, int addr, int location,
                                                   std::int64_t& value) {
    return readValue(config, addr, location, value);
}

std::string KavroCommands::KavroConfigRead_String(NetworkConfiguration* config, int addr, int location) {
    const KavroConfigReadResult block = KavroConfigRead(config, addr, location, 0);
    std::string text;
    if (block.LinkStatus == 0 && block.DataLength > 0) {
        text.assign(reinterpret_cast<const char*>(block.Data), static_cast<std::size_t>(block.DataLength));
    }
    delete[] block.Data;
    return text;
}

KavroValueResult KavroCommands::KavroConfigWrite_Byte(NetworkConfiguration* config, int addr, int location,
                                                      unsigned char value) {
    return writeValue(config, addr, location, value);
}

KavroValueResult KavroCommands::KavroConfigWrite_UInt16(NetworkConfiguration* config, int addr, int location,
                                                        unsigned short value) {
    return writeValue(config, addr, location, value);
}

KavroValueResult KavroCommands::KavroConfigWrite_Int(NetworkConfiguration* config, int addr, int location, int value) {
    return writeValue(config, addr, location, value);
}

KavroValueResult KavroCommands::KavroConfigWrite_UInt(NetworkConfiguration* config, int addr, int location,
                                                      unsigned int value) {
    return writeValue(config, addr, location, value);
}

KavroValueResult KavroCommands::KavroConfigWrite_Int64(NetworkConfiguration* config, int addr, int location,
                                                       std::int64_t value) {
    return writeValue(config, addr, location, value);
}

KavroValueResult KavroCommands::KavroConfigWrite_String(NetworkConfiguration* config, int addr, int location,
                                                        std::string value) {
    // Sizes beyond an int still count as too long, not as a wrapped-around count.
    const int count = value.size() > kBlockBytes ? kBlockBytes + 1 : static_cast<int>(value.size());
    return KavroConfigWrite(config, addr, location, 0, reinterpret_cast<unsigned char*>(value.data()), count);
}

}  // namespace KavroLibrary
