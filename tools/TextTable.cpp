#include "TextTable.h"

#include <algorithm>

namespace KavroLibrary {

namespace {

const char* const kGap = "  ";

std::string trimmedRight(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace

void TextTable::addRow(std::vector<std::string> cells) {
    cells.resize(columns_.size());
    rows_.push_back(std::move(cells));
}

std::string TextTable::render(const std::string& indent) const {
    std::vector<std::size_t> widths;
    for (const Column& column : columns_) widths.push_back(column.title.size());
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    auto line = [&](const std::vector<std::string>& cells) {
        std::string out = indent;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const std::string padding(widths[i] - cells[i].size(), ' ');
            if (i > 0) out += kGap;
            out += columns_[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
        }
        return trimmedRight(out) + "\n";
    };
    std::vector<std::string> titles;
    std::vector<std::string> rules;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        titles.push_back(columns_[i].title);
        rules.push_back(std::string(widths[i], '-'));
    }
    std::string out = line(titles) + line(rules);
    for (const auto& row : rows_) out += line(row);
    return out;
}

}  // namespace KavroLibrary
