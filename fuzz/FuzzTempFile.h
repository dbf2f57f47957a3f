// The fuzz input as a file, for the parsers that read files.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

class FuzzTempFile {
public:
    FuzzTempFile(const std::uint8_t* data, std::size_t size) {
        // In memory where the system has it: a file a run is the target's cost.
        char name[] = "/dev/shm/kavro-fuzz-XXXXXX";
        int fd = mkstemp(name);
        if (fd < 0) {
            std::snprintf(name, sizeof name, "%s", "/tmp/kavro-fuzz-XXXXXX");
            fd = mkstemp(name);
        }
        if (fd < 0) return;
        path_ = name;
        std::size_t done = 0;
        while (done < size) {
            const ssize_t n = write(fd, data + done, size - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        close(fd);
    }
    ~FuzzTempFile() {
        if (!path_.empty()) unlink(path_.c_str());
    }
    FuzzTempFile(const FuzzTempFile&) = delete;
    FuzzTempFile& operator=(const FuzzTempFile&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};
