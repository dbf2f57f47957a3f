#include "NumberArguments.h"

#include <stdexcept>

namespace kavro_tool {

namespace {

template <typename T, typename Parse>
T parseWhole(const std::string& text, const std::string& what, Parse parse) {
    std::size_t used = 0;
    T value{};
    try {
        value = parse(text, &used);
    } catch (const std::exception&) {
        used = 0;
    }
    if (used == 0 || used != text.size()) throw std::invalid_argument("bad " + what + " '" + text + "'");
    return value;
}

}  // namespace

int wholeNumber(const std::string& text, const std::string& what) {
    return parseWhole<int>(text, what, [](const std::string& t, std::size_t* used) { return std::stoi(t, used); });
}

double realNumber(const std::string& text, const std::string& what) {
    return parseWhole<double>(text, what, [](const std::string& t, std::size_t* used) { return std::stod(t, used); });
}

}  // namespace kavro_tool
