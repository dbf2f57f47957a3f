// What the tool prints: tables for people, CSV or JSON lines for programs,
// one record per reading; and a progress line on standard error.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace kavro_tool {

enum class Format { Table, Csv, Json };

struct Record {
    std::string time;  // ISO 8601, UTC, milliseconds
    std::string network;
    int address = 0;
    std::string identity;
    double value = 0;
    std::string units;
    std::string status;         // "ok" or the error's name
    std::vector<double> extra;  // values of the writer's extra columns, in order
};

// Writes records as they come: CSV with a header line, JSON one object a
// line, a table as aligned columns (flushed per record, so that a stopped
// run leaves every record written).
class RecordWriter {
public:
    // `extra` names columns that follow status (difference mode's min and
    // max, say); every record then carries a value for each.
    RecordWriter(std::FILE* out, Format format, std::vector<std::string> extra = {})
        : out_(out), format_(format), extra_(std::move(extra)) {}
    void write(const Record& record);
    void flush() { std::fflush(out_); }

private:
    std::FILE* out_;
    Format format_;
    std::vector<std::string> extra_;
    bool headed_ = false;
};

// The time now (or at `when`), as records carry it.
std::string timeStamp();
std::string timeStamp(std::chrono::system_clock::time_point when);
// JSON string literal of `text`.
std::string jsonText(const std::string& text);
// CSV field of `text` (quoted when it needs to be).
std::string csvField(const std::string& text);

// A progress line on standard error, only when it is a terminal.
void progress(const std::string& line);
void progressDone();

// Rows of text in aligned columns, the first row the heading.
void printTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows);

}  // namespace kavro_tool
