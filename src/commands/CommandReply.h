// A module's reply as the command layer holds it: owns the link's buffer and
// reads it only within its length, so a short or empty reply can never be read
// past its end.
#pragma once

#include <cstddef>
#include <cstdint>

#include "links/ModuleCommand.h"

namespace KavroLibrary {

class CommandReply {
public:
    explicit CommandReply(ModuleReply reply) : reply_(reply) {
        if (reply_.Data == nullptr) reply_.Length = 0;
    }
    ~CommandReply() { delete[] reply_.Data; }
    CommandReply(const CommandReply&) = delete;
    CommandReply& operator=(const CommandReply&) = delete;
    CommandReply(CommandReply&& other) noexcept : reply_(other.reply_) { other.reply_ = ModuleReply{}; }
    CommandReply& operator=(CommandReply&&) = delete;

    std::uint32_t status() const { return reply_.Status; }
    std::size_t size() const { return reply_.Length; }
    const unsigned char* bytes() const { return reply_.Data; }

    // Byte i, or 0 beyond the end.
    unsigned char at(std::size_t i) const { return i < size() ? reply_.Data[i] : 0; }
    // Little-endian numbers starting at byte i; missing bytes count as 0.
    std::uint16_t le16(std::size_t i) const { return static_cast<std::uint16_t>(le(i, 2)); }
    std::uint32_t le32(std::size_t i) const { return static_cast<std::uint32_t>(le(i, 4)); }
    std::uint64_t le64(std::size_t i) const { return le(i, 8); }

    // Copies up to `count` bytes from byte `from` on; returns how many were there.
    std::size_t copy(std::size_t from, void* target, std::size_t count) const;

    // "!" and its error byte.
    bool isRefusal() const { return size() >= 2 && at(0) == '!'; }

    // The link's status, or for a refusal that arrived whole the module's
    // error (0x2100 | error byte): a refused command never reads as done.
    std::uint32_t linkStatus() const;
    // linkStatus, and 255 for a reply that begins with neither `echo` nor
    // a refusal: the links that do not check the echo (USB) get the same
    // verdict as those that do.
    std::uint32_t echoedStatus(unsigned char echo) const;

    // The module error of a reply checked against its echo: 0 when the echo
    // came with at least `valueBytes` behind it, 0x2100 | error byte for a
    // refusal, 255 for anything else (a failed link, a wrong first byte, or a
    // reply too short to hold the command's values).
    std::uint32_t moduleError(unsigned char echo, std::size_t valueBytes) const;

private:
    std::uint64_t le(std::size_t i, std::size_t width) const {
        std::uint64_t value = 0;
        for (std::size_t k = width; k-- > 0;) value = (value << 8) | at(i + k);
        return value;
    }

    ModuleReply reply_;
};

}  // namespace KavroLibrary
