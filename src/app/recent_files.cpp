#include "app/recent_files.h"

#include <algorithm>
#include <filesystem>

#include "base/errors.h"
#include "base/settings_keys.h"
#include "base/text.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view escaped = "%|\n\r";
constexpr std::string_view digits = "0123456789ABCDEF";

fs::path samplesFolder(const std::string& applicationFolder) {
    return fs::path(applicationFolder) / "samples";
}

}  // namespace

std::string joinedPaths(const std::vector<std::string>& paths) {
    std::string text;
    for (const std::string& path : paths) {
        if (!text.empty()) text += '|';
        for (const char letter : path) {
            if (escaped.find(letter) == std::string_view::npos) {
                text += letter;
                continue;
            }
            const auto code = static_cast<unsigned char>(letter);
            text += {'%', digits[code / 16], digits[code % 16]};
        }
    }
    return text;
}

std::vector<std::string> partedPaths(std::string_view text) {
    std::vector<std::string> paths;
    if (text.empty()) return paths;
    for (const std::string& part : split(std::string(text), '|')) {
        std::string path;
        for (std::size_t i = 0; i < part.size(); ++i) {
            const bool code = part[i] == '%' && i + 2 < part.size();
            const std::size_t high = code ? digits.find(part[i + 1]) : std::string_view::npos;
            const std::size_t low = code ? digits.find(part[i + 2]) : std::string_view::npos;
            if (high == std::string_view::npos || low == std::string_view::npos) {
                path += part[i];
                continue;
            }
            path += static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (!path.empty()) paths.push_back(path);
    }
    return paths;
}

const std::vector<std::string>& RecentFiles::paths() const {
    if (isRead_) return paths_;
    isRead_ = true;
    paths_ = partedPaths(settings_.get(settings::forms, settings::RecentFiles));
    if (paths_.size() > most) paths_.resize(most);
    return paths_;
}

void RecentFiles::add(const std::string& path) {
    if (!fs::path(path).is_absolute()) return;
    const std::vector<std::string> former = paths();
    std::erase(paths_, path);
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > most) paths_.resize(most);
    if (paths_ != former) store();
}

void RecentFiles::remove(const std::string& path) {
    paths();
    if (std::erase(paths_, path) != 0) store();
}

// A store that takes nothing costs a list, not the command.
void RecentFiles::store() {
    skipFailing([&] { settings_.set(settings::forms, settings::RecentFiles, joinedPaths(paths_)); });
}

std::vector<std::string> sampleFiles(const std::string& applicationFolder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator file(samplesFolder(applicationFolder), error), end; !error && file != end;
         file.increment(error)) {
        const std::string path = file->path().string();
        if (upper(extensionOf(path)).starts_with(".ZQ4")) files.push_back(path);
    }
    std::ranges::sort(files);
    return files;
}

bool isSample(const std::string& path, const std::string& applicationFolder) {
    std::error_code error;
    return fs::equivalent(fs::path(path).parent_path(), samplesFolder(applicationFolder), error) && !error;
}

}  // namespace zentaq
