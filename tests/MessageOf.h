// The text of what an action throws, or "" when it throws nothing.
#pragma once

#include <exception>
#include <functional>
#include <string>

inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}
