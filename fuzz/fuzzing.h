// What the fuzz targets share: a check that ends the run with its text, and files that need no disk.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace zentaq::fuzzing {

/// Ends the run, so that the input is kept, when something that must hold does not.
inline void require(bool holds, std::string_view what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

/// A file in memory with a path to open it by.
class MemoryFile {
 public:
    explicit MemoryFile(std::string_view content) : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
        require(descriptor_ >= 0, "a file in memory can be made");
        while (!content.empty()) {
            const ssize_t written = ::write(descriptor_, content.data(), content.size());
            require(written > 0, "a file in memory can be written");
            content.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
    int descriptor_;
};

/// A folder for files that are saved, in memory where the system has such a place; gone with the process.
class ScratchFolder {
 public:
    ScratchFolder() {
        std::string name = std::filesystem::is_directory("/dev/shm") ? "/dev/shm/zentaq-fuzz-XXXXXX"
                                                                     : "/tmp/zentaq-fuzz-XXXXXX";
        require(::mkdtemp(name.data()) != nullptr, "a scratch folder can be made");
        path_ = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
    std::string path_;
};

inline std::string_view textOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace zentaq::fuzzing
