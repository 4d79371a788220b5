// The calibration files that the user had in hand last, newest first. They outlast the program.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings_store.h"

namespace zentaq {

class RecentFiles {
 public:
    static constexpr std::size_t most = 9;

    explicit RecentFiles(SettingsStore& settings) : settings_(settings) {}

    const std::vector<std::string>& paths() const;
    /// To the front, wherever it stood. A path that is not whole is no place to come back to.
    void add(const std::string& path);
    void remove(const std::string& path);

 private:
    void store();

    SettingsStore& settings_;
    mutable std::vector<std::string> paths_;
    mutable bool isRead_ = false;
};

/// Paths as one text, and back: '|' between them, and what would be taken for that escaped by '%'.
std::string joinedPaths(const std::vector<std::string>& paths);
std::vector<std::string> partedPaths(std::string_view text);

/// The sample calibrations that come with the program, by name.
std::vector<std::string> sampleFiles(const std::string& applicationFolder);
/// Whether a path is one of these: they are never written over.
bool isSample(const std::string& path, const std::string& applicationFolder);

}  // namespace zentaq
