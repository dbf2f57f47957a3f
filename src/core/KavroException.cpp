#include "KavroException.h"

#include <utility>

namespace KavroLibrary {

KavroException::KavroException(int code, std::string message)
    : std::runtime_error(message), ErrorCode(code), Message(std::move(message)) {}

KavroException::~KavroException() = default;

}  // namespace KavroLibrary
