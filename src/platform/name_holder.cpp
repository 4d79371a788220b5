#include "platform/name_holder.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "base/shown_text.h"

namespace zentaq {

namespace {

namespace fs = std::filesystem;

/// The number of the socket in the system's table; empty where there is none.
std::string socketOf(std::string_view name) {
    constexpr std::string_view datagram = "0002";
    const std::string wanted = "@" + std::string(name);  // the first byte is 0, and shown so
    std::ifstream table("/proc/net/unix");
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line);
        std::string address, users, protocol, flags, type, state, number, path;
        words >> address >> users >> protocol >> flags >> type >> state >> number >> path;
        if (type == datagram && path == wanted) return number;
    }
    return {};
}

bool isProcess(const fs::path& folder) {
    const std::string name = folder.filename().string();
    return !name.empty() &&
           std::ranges::all_of(name, [](unsigned char letter) { return std::isdigit(letter) != 0; });
}

/// False too where this user may not look.
bool holds(const fs::path& process, const std::string& socket) {
    std::error_code error;
    fs::directory_iterator file(process / "fd", error);
    for (; !error && file != fs::directory_iterator(); file.increment(error)) {
        std::error_code gone;
        if (fs::read_symlink(file->path(), gone) == socket) return true;
    }
    return false;
}

std::string userOf(const fs::path& process) {
    struct stat about {};
    if (::stat(process.c_str(), &about) != 0) return "unknown";
    const passwd* user = ::getpwuid(about.st_uid);
    return user == nullptr ? std::to_string(about.st_uid) : user->pw_name;
}

std::string wordsFor(const fs::path& process) {
    std::string name;
    std::ifstream told(process / "comm");
    std::getline(told, name);
    return shownBriefly(name) + " (process " + process.filename().string() + ", user " +
           shownBriefly(userOf(process)) + ")";
}

}  // namespace

std::string holderOfName(std::string_view name) {
    const std::string number = socketOf(name);
    if (number.empty()) return {};
    std::error_code error;
    fs::directory_iterator process("/proc", error);
    for (; !error && process != fs::directory_iterator(); process.increment(error)) {
        if (isProcess(process->path()) && holds(process->path(), "socket:[" + number + "]"))
            return wordsFor(process->path());
    }
    return "one of another user";
}

}  // namespace zentaq
