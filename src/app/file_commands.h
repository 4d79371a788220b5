// The calibration in hand comes and goes: a new one, one from a file, none.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/session.h"

namespace zentaq {

/// All report by boxes and leave the former state on a failure. What needs a save that runs to have ended
/// begins anew then.
class FileCommands {
 public:
    explicit FileCommands(Session& session) : session_(session) {}

    void newCalibration();  ///< mnuNew
    void open();            ///< mnuOpen
    /// The same for a file that the user has chosen from a list. One that has gone is told, and leaves the
    /// list.
    void open(const std::string& path);
    void close();  ///< mnuClose

 private:
    void newNow();
    void startNew();
    /// Without a path the user is asked for one.
    void openNow(const std::string& path = {});
    void startOpening(const std::string& path);
    enum class Next { Done, AskAgain };
    Next askAndOpen();
    Next openChosen(const std::string& path);
    struct FileStart {
        std::string bytes;
        std::uintmax_t length = 0;
        bool sample = false;
        std::string why;  ///< it could not be read
    };
    /// Nothing: the user did not wait for it.
    std::optional<FileStart> startOf(const std::string& path);
    Next openCalibration(const std::string& path);
    Next openOlder(const std::string& path, const FileStart& start);
    enum class Outcome { Whole, Corrupt, NeedsReference };
    /// Reads a file into the object of a slot, which becomes the current one. When it cannot be read there is
    /// a line in the log, and all is as before.
    Outcome read(int slot, const std::function<void(Unit&)>& file, std::string& why);
    Next tellNotRead(Outcome outcome, const std::string& path, const std::string& why);
    Next askAgain(const std::string& title, const std::string& text);
    void finishOpening(const std::string& path, const FileStart& start);
    void repairOldFields();
    void noteShortFile(std::uintmax_t length);
    void tellCutFile(const std::string& path);
    void closeNow();
    void finishClosing();

    Session& session_;
};

}  // namespace zentaq
