#include "core/SimRequest.h"

#include <cstdio>

namespace kavrosim {

std::string requestKindName(SimRequestKind kind) {
    switch (kind) {
        case SimRequestKind::ModuleCommand:
            return "module";
        case SimRequestKind::Identify:
            return "identify";
        case SimRequestKind::GetInfo:
            return "get-info";
        case SimRequestKind::SetSpeed:
            return "set-speed";
        case SimRequestKind::Idle:
            return "idle";
        case SimRequestKind::Unknown:
            break;
    }
    return "unknown";
}

std::string SimRequest::describe() const {
    std::string text = requestKindName(kind);
    if (kind == SimRequestKind::ModuleCommand) {
        text += " type " + std::to_string(type) + " reply " + std::to_string(replyLength);
        if (!command.empty()) {
            const char code = static_cast<char>(command[0]);
            text += " '" + std::string(1, code >= ' ' && code <= '~' ? code : '?') + "'";
        }
    } else if (kind == SimRequestKind::SetSpeed) {
        text += " " + std::to_string(speedValue);
    }
    text += " [";
    for (std::size_t i = 0; i < raw.size(); ++i) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%02X", raw[i]);
        text += (i == 0 ? "" : " ") + std::string(hex);
    }
    return text + "]";
}

}  // namespace kavrosim
