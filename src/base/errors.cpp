#include "base/errors.h"

#include <new>
#include <system_error>

namespace zentaq {

std::string textOfFailure(const std::exception& failure) {
    if (dynamic_cast<const Failure*>(&failure) != nullptr) return failure.what();
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) {
        return "There is not enough memory for this. Close other programs and try again.";
    }
    // Tells the system's reason and the file.
    if (dynamic_cast<const std::system_error*>(&failure) != nullptr) return failure.what();
    return std::string(
               "The program has met a fault of its own and ended this command; nothing was finished. "
               "Please report it with what you did: ") +
           failure.what();
}

}  // namespace zentaq
