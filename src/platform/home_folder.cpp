#include "platform/home_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "base/errors.h"

namespace zentaq {

std::filesystem::path homeFolder() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && std::filesystem::path(home).is_absolute()) return home;
    const passwd* user = ::getpwuid(::getuid());
    if (user == nullptr) throw FileError("No home folder");
    return user->pw_dir;
}

void settleHome() {
    skipFailing([] { ::setenv("HOME", homeFolder().c_str(), 1); });
}

}  // namespace zentaq
