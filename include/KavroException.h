// The exception that carries an error code of eKavroErrors and its text.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace KavroLibrary {

class KavroException : public std::runtime_error {
public:
    KavroException(int code, std::string message);
    ~KavroException() override;
    KavroException(const KavroException&) = default;
    KavroException& operator=(const KavroException&) = default;

    std::int32_t ErrorCode;
    std::string Message;
};

}  // namespace KavroLibrary
