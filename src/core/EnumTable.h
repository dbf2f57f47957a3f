// Table look-up shared by every enumeration's text conversions.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace KavroLibrary {

template <typename E>
struct EnumRow {
    E value;
    const char* text;
};

// First row with the value wins; a value outside the table has no text.
template <typename E, std::size_t N>
std::string enumToString(const EnumRow<E> (&rows)[N], E value) {
    for (const auto& row : rows) {
        if (row.value == value) return row.text;
    }
    return std::string();
}

// Exact, case-sensitive match of the whole text (an embedded NUL never matches).
template <typename E, std::size_t N>
E enumFromString(const EnumRow<E> (&rows)[N], const std::string& text) {
    for (const auto& row : rows) {
        if (text == row.text) return row.value;
    }
    throw std::runtime_error("StringToEnum Conversion Error");
}

}  // namespace KavroLibrary
