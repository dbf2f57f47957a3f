// Numbers the user typed: the whole text must be the number, else
// std::invalid_argument naming what was wanted ("bad baud rate '9k6'").
#pragma once

#include <string>

namespace kavro_tool {

int wholeNumber(const std::string& text, const std::string& what);
double realNumber(const std::string& text, const std::string& what);

}  // namespace kavro_tool
