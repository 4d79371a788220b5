#include "base/file_type.h"

#include <cerrno>
#include <cstring>

#include "base/errors.h"

namespace zentaq {

std::string otherThanFile(const struct stat& status) {
    if (S_ISREG(status.st_mode)) return {};
    if (S_ISDIR(status.st_mode)) return std::strerror(EISDIR);
    if (S_ISFIFO(status.st_mode)) return "it is a pipe, not a file";
    if (S_ISSOCK(status.st_mode)) return "it is a socket, not a file";
    return "it is a device, not a file";
}

void refuseOtherThanFile(const std::string& path) {
    struct stat status {};
    std::string trouble;
    if (::stat(path.c_str(), &status) == 0) {
        trouble = otherThanFile(status);
    } else if (errno != ENOENT) {
        trouble = std::strerror(errno);
    }
    if (!trouble.empty()) throw FileError("Cannot write " + path + ": " + trouble);
}

}  // namespace zentaq
