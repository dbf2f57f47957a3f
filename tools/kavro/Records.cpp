#include "Records.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>

namespace kavro_tool {

std::string timeStamp() { return timeStamp(std::chrono::system_clock::now()); }

std::string timeStamp(std::chrono::system_clock::time_point now) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                  utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<int>(millis));
    return text;
}

std::string jsonText(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

namespace {

std::string fixed(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", value);
    return text;
}

}  // namespace

void RecordWriter::write(const Record& r) {
    const std::string value = fixed(r.value);
    std::string extraNames, extraValues;
    for (std::size_t i = 0; i < extra_.size(); ++i) {
        const std::string v = fixed(i < r.extra.size() ? r.extra[i] : 0.0);
        switch (format_) {
            case Format::Csv:
                extraNames += "," + extra_[i];
                extraValues += "," + v;
                break;
            case Format::Json:
                extraValues += "," + jsonText(extra_[i]) + ":" + v;
                break;
            case Format::Table:
                char cell[64];
                std::snprintf(cell, sizeof cell, "  %14s", extra_[i].c_str());
                extraNames += cell;
                std::snprintf(cell, sizeof cell, "  %14s", v.c_str());
                extraValues += cell;
                break;
        }
    }
    switch (format_) {
        case Format::Csv:
            if (!headed_)
                std::fprintf(out_, "time,network,address,identity,value,units,status%s\n", extraNames.c_str());
            std::fprintf(out_, "%s,%s,%d,%s,%s,%s,%s%s\n", r.time.c_str(), csvField(r.network).c_str(), r.address,
                         csvField(r.identity).c_str(), value.c_str(), csvField(r.units).c_str(),
                         csvField(r.status).c_str(), extraValues.c_str());
            break;
        case Format::Json:
            std::fprintf(out_,
                         "{\"time\":%s,\"network\":%s,\"address\":%d,\"identity\":%s,\"value\":%s,\"units\":%s,"
                         "\"status\":%s%s}\n",
                         jsonText(r.time).c_str(), jsonText(r.network).c_str(), r.address, jsonText(r.identity).c_str(),
                         value.c_str(), jsonText(r.units).c_str(), jsonText(r.status).c_str(), extraValues.c_str());
            break;
        case Format::Table: {
            const int statusWidth = extra_.empty() ? 0 : 12;  // no trailing blanks without extra columns
            if (!headed_)
                std::fprintf(out_, "%-24s  %-12s  %4s  %-10s  %14s  %-6s  %-*s%s\n", "time", "network", "addr",
                             "identity", "value", "units", statusWidth, "status", extraNames.c_str());
            std::fprintf(out_, "%-24s  %-12s  %4d  %-10s  %14s  %-6s  %-*s%s\n", r.time.c_str(), r.network.c_str(),
                         r.address, r.identity.c_str(), value.c_str(), r.units.c_str(), statusWidth, r.status.c_str(),
                         extraValues.c_str());
            break;
        }
    }
    headed_ = true;
}

void progress(const std::string& line) {
    if (!isatty(2)) return;
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
}

void progressDone() {
    if (isatty(2)) std::fprintf(stderr, "\r\033[K");
}

void printTable(std::FILE* out, const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) line += std::string(widths[i] - row[i].size() + 2, ' ');
        }
        std::fprintf(out, "%s\n", line.c_str());
    }
}

}  // namespace kavro_tool
