#include "base/errors.h"

#include <filesystem>
#include <new>
#include <system_error>

namespace zentaq {

std::string textOfFailure(const std::exception& failure) {
    if (dynamic_cast<const Failure*>(&failure) != nullptr) return failure.what();
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) {
        return "There is not enough memory for this. Close other programs and try again.";
    }
    if (const auto* files = dynamic_cast<const std::filesystem::filesystem_error*>(&failure)) {
        const std::string path = files->path1().string();
        return (path.empty() ? std::string("A file or folder") : path) + ": " + files->code().message();
    }
    // Tells the system's reason.
    if (dynamic_cast<const std::system_error*>(&failure) != nullptr) return failure.what();
    return std::string(
               "The program has met a fault of its own and ended this command; nothing was finished. "
               "Please report it with what you did: ") +
           failure.what();
}

}  // namespace zentaq
