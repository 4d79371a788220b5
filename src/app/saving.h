// Saves of the window program: the bytes are made at once, and a FileWriter brings them to the disk while the
// windows go on. One save runs at a time; commands that need its end wait for it here, and those that come
// while a file is being read.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/flag_scope.h"
#include "unit/file_writer.h"

namespace zentaq {

class Session;

class Saving {
 public:
    using Ended = std::function<void(const FileSaved&)>;

    /// Without a writer saves are done at once.
    Saving(Session& session, FileWriter* writer);

    bool running() const { return static_cast<bool>(ended_); }
    /// When the save that runs began, by the monotonic clock.
    std::int64_t beganUs() const { return beganUs_; }
    /// Begins a save. `ended` is run from the event loop, or before this returns where the writer is done by
    /// then. It may begin the next save.
    void begin(FileSave save, Ended ended);
    /// For the span of an opening. The calibration in hand is neither the former nor the next one, and the
    /// reading lets events in.
    FlagScope beginReading() { return FlagScope(reading_); }
    bool reading() const { return reading_; }
    /// Looks whether the save, or the reading, has ended; with each tick.
    void poll();
    /// Answers true while a save runs or a file is being read: the command of this name then begins anew when
    /// that has ended, once, however often it was given. Else the command goes on.
    bool putsOff(std::string_view name, std::function<void()> command);
    /// The same for a command that minds no save.
    bool putsOffWhileReading(std::string_view name, std::function<void()> command);
    /// The program ends: nothing begins anew.
    void dropWaiting() { waiting_.clear(); }

 private:
    struct Waiting {
        std::string name;
        std::function<void()> command;
    };

    void finish(const FileSaved& saved);
    bool mayGoOn() const;
    void goOn();
    void runWaiting();
    void run(const std::string& name, const std::function<void()>& command);

    Session& session_;
    InlineFileWriter inline_;
    FileWriter& writer_;
    Ended ended_;  ///< empty while no save runs
    std::int64_t beganUs_ = 0;
    std::optional<FileSaved> saved_;  ///< how it ended, until what follows may run
    bool posted_ = false;             ///< what follows is in the event loop
    bool reading_ = false;
    bool runsWaiting_ = false;
    std::vector<Waiting> waiting_;
};

}  // namespace zentaq
