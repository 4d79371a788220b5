#include "sim/memory_file.h"

#include <unistd.h>

#include <fstream>
#include <string>

#include "base/errors.h"
#include "base/file_reader.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

std::optional<std::vector<std::uint8_t>> readMemoryFile(const fs::path& path, std::size_t size) {
    // A link in a circle is there, and told by the reader.
    if (!fs::exists(fs::symlink_status(path))) return std::nullopt;
    const std::string content = readFile(path.string(), limits::simulatedMemory);
    if (content.empty()) return std::nullopt;
    if (content.size() != size) {
        throw FileError(path.string() + " holds " + std::to_string(content.size()) + " bytes instead of " +
                        std::to_string(size));
    }
    return std::vector<std::uint8_t>(content.begin(), content.end());
}

void writeMemoryFile(const fs::path& path, const std::vector<std::uint8_t>& content) {
    fs::path fresh = path;
    fresh += ".new" + std::to_string(::getpid());
    std::error_code error;
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    file.close();
    if (file) fs::rename(fresh, path, error);
    if (file && !error) return;
    std::error_code ignored;
    fs::remove(fresh, ignored);
    throw FileError("Cannot write " + path.string());
}

}  // namespace zentaq::sim
