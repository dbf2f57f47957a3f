#include "commands/CommandReply.h"

#include <cstring>

#include "KavroErrors.h"

namespace KavroLibrary {

std::size_t CommandReply::copy(std::size_t from, void* target, std::size_t count) const {
    if (from >= size()) return 0;
    const std::size_t available = size() - from < count ? size() - from : count;
    std::memcpy(target, reply_.Data + from, available);
    return available;
}

std::uint32_t CommandReply::linkStatus() const {
    if (status() == 0 && isRefusal()) return static_cast<std::uint32_t>(eKavroErrors::ModuleBase) | at(1);
    return status();
}

std::uint32_t CommandReply::echoedStatus(unsigned char echo) const {
    const std::uint32_t status = linkStatus();
    if (status == 0 && size() > 0 && at(0) != echo) return static_cast<std::uint32_t>(eKavroErrors::Timeout);
    return status;
}

std::uint32_t CommandReply::moduleError(unsigned char echo, std::size_t valueBytes) const {
    constexpr auto kFailed = static_cast<std::uint32_t>(eKavroErrors::Timeout);
    if (status() != 0) return kFailed;
    if (isRefusal()) return static_cast<std::uint32_t>(eKavroErrors::ModuleBase) | at(1);
    if (size() >= 1 + valueBytes && at(0) == echo) return 0;
    return kFailed;
}

}  // namespace KavroLibrary
