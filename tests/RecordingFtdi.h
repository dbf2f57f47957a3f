// A recording stand-in for the D2XX library: every FT_Write is kept, every
// FT_Read is answered from a script. Installed in the link's D2XX table for
// the lifetime of the object.
#pragma once

#include <deque>
#include <vector>

#include "links/FtdiApi.h"

class RecordingFtdi {
public:
    using Bytes = std::vector<unsigned char>;

    RecordingFtdi();
    ~RecordingFtdi();
    RecordingFtdi(const RecordingFtdi&) = delete;
    RecordingFtdi& operator=(const RecordingFtdi&) = delete;

    // The next FT_Read returns these bytes (cut to what it asks for).
    void scriptRead(Bytes bytes) { reads_.push_back(std::move(bytes)); }

    const std::vector<Bytes>& writes() const { return writes_; }
    const std::vector<KavroLibrary::DWORD>& readSizes() const { return readSizes_; }
    std::size_t pendingReads() const { return reads_.size(); }
    int purges() const { return purges_; }

private:
    static RecordingFtdi* current_;
    static KavroLibrary::FT_STATUS write(KavroLibrary::FT_HANDLE, void* buffer, KavroLibrary::DWORD count,
                                         KavroLibrary::LPDWORD written);
    static KavroLibrary::FT_STATUS read(KavroLibrary::FT_HANDLE, void* buffer, KavroLibrary::DWORD count,
                                        KavroLibrary::LPDWORD got);
    static KavroLibrary::FT_STATUS purge(KavroLibrary::FT_HANDLE, KavroLibrary::ULONG);

    std::deque<Bytes> reads_;
    std::vector<Bytes> writes_;
    std::vector<KavroLibrary::DWORD> readSizes_;
    int purges_ = 0;
};
