#include "app/patience.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <system_error>

#include "app/recent_files.h"
#include "app/session.h"
#include "base/text.h"

namespace zentaq {

namespace {

class Ending {
 public:
    void tell() {
        const std::lock_guard lock(mutex_);
        came_ = true;
        changed_.notify_all();
    }
    bool came() {
        const std::lock_guard lock(mutex_);
        return came_;
    }
    bool comesWithin(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, time, [this] { return came_; });
    }

 private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool came_ = false;
};

}  // namespace

bool waitPatiently(Session& session, const std::string& what, const std::function<void()>& work) {
    SideWork* side = session.platform().side;
    if (side == nullptr) {
        work();
        return true;
    }
    const auto ending = std::make_shared<Ending>();
    side->begin([ending, work] {
        work();
        ending->tell();
    });
    if (ending->comesWithin(std::chrono::milliseconds(momentMs))) return true;
    session.dialogs().show({.title = "Waiting for the Disk",
                            .text = what + " . . .\nThe disk has not answered yet. Cancel gives it up.",
                            .icon = Icon::Information,
                            .buttons = Buttons::Cancel,
                            .stands = [ending] { return !ending->came(); }});
    if (ending->came()) return true;
    session.sysLog(what + ": given up, the disk did not answer.");
    return false;
}

std::optional<FileLook> lookAt(Session& session, const std::string& path) {
    const auto found = std::make_shared<FileLook>();
    const auto look = [found, path, current = session.CurrentFile, folder = session.applicationFolder()] {
        std::error_code error;
        found->there = std::filesystem::exists(path, error);
        found->sample = isSample(path, folder);
        found->inHand = std::filesystem::equivalent(path, current, error) && !error;
    };
    if (!waitPatiently(session, "Looking for " + fileNameOf(path), look)) return {};
    return *found;
}

}  // namespace zentaq
