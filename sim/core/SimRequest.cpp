#include "core/SimRequest.h"

#include <algorithm>
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
        case SimRequestKind::DynamicStart:
            return "dynamic-start";
        case SimRequestKind::DynamicRead:
            return "dynamic-read";
        case SimRequestKind::DynamicStop:
            return "dynamic-stop";
        case SimRequestKind::Unknown:
            break;
    }
    return "unknown";
}

namespace {

std::string hexBytes(const Bytes& bytes) {
    std::string text = "[";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%02X", bytes[i]);
        text += (i == 0 ? "" : " ") + std::string(hex);
    }
    return text + "]";
}

}  // namespace

std::string SimAnswer::describe() const {
    std::string text;
    if (delay.count() > 0) text += "after " + std::to_string(delay.count()) + " ms ";
    switch (action) {
        case Action::Silent:
            return text + "nothing";
        case Action::Close:
            return text + "close";
        case Action::Reply:
            break;
    }
    // A dynamic packet is long: its head says what it is.
    if (data.size() > 64) {
        text += "status " + std::to_string(status) + " " + hexBytes(Bytes(data.begin(), data.begin() + 16)) + " ... (" +
                std::to_string(data.size()) + " bytes)";
    } else {
        text += "status " + std::to_string(status) + " " + hexBytes(data);
    }
    if (cutAt) text += " cut to " + std::to_string(*cutAt) + " bytes";
    return text;
}

std::string SimRequest::describe() const {
    std::string text = requestKindName(kind);
    if (kind == SimRequestKind::ModuleCommand) {
        text += " type " + std::to_string(type) + " reply " + std::to_string(replyLength);
        if (!command.empty()) {
            const char code = static_cast<char>(command[0]);
            text += " '" + std::string(1, code >= ' ' && code <= '~' ? code : '?') + "'";
        }
    } else if (!block.empty()) {
        text += " " + hexBytes(Bytes(block.begin(), block.begin() + std::min<std::size_t>(block.size(), 7)));
    } else if (kind == SimRequestKind::SetSpeed) {
        text += " " + std::to_string(speedValue);
    }
    return text + " " + hexBytes(raw);
}

}  // namespace kavrosim
