// The text, or the library's error code, of what an action throws.
#pragma once

#include <exception>
#include <functional>
#include <string>

#include "KavroException.h"

// "" when the action throws nothing.
inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

// The KavroException's code; 0 when nothing is thrown, -1 for any other exception.
inline int errorCodeOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const KavroLibrary::KavroException& error) {
        return error.ErrorCode;
    } catch (const std::exception&) {
        return -1;
    }
    return 0;
}
