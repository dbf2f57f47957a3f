// Aligned columns of text for the command-line tools: a header, a rule
// under it, and the rows, each column as wide as its widest cell.
#pragma once

#include <string>
#include <vector>

namespace KavroLibrary {

class TextTable {
public:
    enum class Align { Left, Right };
    struct Column {
        std::string title;
        Align align = Align::Left;
    };

    explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

    // Missing cells are blank; extra cells are dropped.
    void addRow(std::vector<std::string> cells);
    // Every line starts with `indent`; no line ends in blanks.
    std::string render(const std::string& indent = "  ") const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace KavroLibrary
