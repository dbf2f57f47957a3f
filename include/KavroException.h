// The exception that carries an error code of eKavroErrors and its text.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace KavroLibrary {

// An error of a module, a controller or a link: its code and text.
class KavroException : public std::runtime_error {
public:
    // An exception for error `code` (an eKavroErrors value) with its text.
    KavroException(int code, std::string message);
    ~KavroException() override;
    // Copyable, as exceptions are.
    KavroException(const KavroException&) = default;
    // Copyable, as exceptions are.
    KavroException& operator=(const KavroException&) = default;

    // The eKavroErrors value.
    std::int32_t ErrorCode;
    // The error's text (also what()).
    std::string Message;
};

}  // namespace KavroLibrary
