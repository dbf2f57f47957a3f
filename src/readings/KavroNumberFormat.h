// The numpunct facet that fixes '.' as the decimal point for number text.
#pragma once

#include <locale>

namespace KavroLibrary {

class kavroNumberFormat : public std::numpunct<char> {
public:
    explicit kavroNumberFormat(std::size_t refs = 0) : std::numpunct<char>(refs) {}
    ~kavroNumberFormat() override;

protected:
    char do_decimal_point() const override { return '.'; }
    char do_thousands_sep() const override { return ' '; }
};

// A fresh locale per call: the standard output's locale with our facet on
// top. The locale owns the facet (reference count zero).
std::locale kavroNumberLocale();

}  // namespace KavroLibrary
