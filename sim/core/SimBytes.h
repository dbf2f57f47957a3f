// Byte strings as they travel on the wire, with the little-endian helpers
// the module commands use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kavrosim {

using Bytes = std::vector<std::uint8_t>;

inline void putLe16(Bytes& out, unsigned value) {
    out.push_back(static_cast<std::uint8_t>(value & 0xFF));
    out.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
}

inline void putLe32(Bytes& out, std::uint32_t value) {
    putLe16(out, value & 0xFFFF);
    putLe16(out, value >> 16);
}

inline void putText(Bytes& out, const std::string& text) { out.insert(out.end(), text.begin(), text.end()); }

inline unsigned getLe16(const Bytes& in, std::size_t at) {
    return static_cast<unsigned>(in.at(at)) | (static_cast<unsigned>(in.at(at + 1)) << 8);
}

inline std::uint32_t getLe32(const Bytes& in, std::size_t at) {
    return static_cast<std::uint32_t>(getLe16(in, at)) | (static_cast<std::uint32_t>(getLe16(in, at + 2)) << 16);
}

// The 16-bit word that makes the sum of the bytes plus the word 0 modulo
// 65536: the checksum of configuration blocks.
inline unsigned complementSum16(const Bytes& bytes, std::size_t from, std::size_t to) {
    unsigned sum = 0;
    for (std::size_t i = from; i < to; ++i) sum += bytes.at(i);
    return (0x10000 - (sum & 0xFFFF)) & 0xFFFF;
}

}  // namespace kavrosim
