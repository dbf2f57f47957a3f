#include "RecordingFtdi.h"

#include <algorithm>
#include <cstring>

using namespace KavroLibrary;

RecordingFtdi* RecordingFtdi::current_ = nullptr;

RecordingFtdi::RecordingFtdi() {
    current_ = this;
    FtdiApi table;
    table.Write = &RecordingFtdi::write;
    table.Read = &RecordingFtdi::read;
    table.Purge = &RecordingFtdi::purge;
    ftdiInstall(&table);
}

RecordingFtdi::~RecordingFtdi() {
    ftdiInstall(nullptr);
    current_ = nullptr;
}

FT_STATUS RecordingFtdi::write(FT_HANDLE, void* buffer, DWORD count, LPDWORD written) {
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    current_->writes_.emplace_back(bytes, bytes + count);
    *written = count;
    return FT_OK;
}

FT_STATUS RecordingFtdi::read(FT_HANDLE, void* buffer, DWORD count, LPDWORD got) {
    current_->readSizes_.push_back(count);
    *got = 0;
    if (current_->reads_.empty()) return FT_OK;
    Bytes next = std::move(current_->reads_.front());
    current_->reads_.pop_front();
    const DWORD n = std::min<DWORD>(count, static_cast<DWORD>(next.size()));
    std::memcpy(buffer, next.data(), n);
    *got = n;
    return FT_OK;
}

FT_STATUS RecordingFtdi::purge(FT_HANDLE, ULONG) {
    ++current_->purges_;
    return FT_OK;
}
