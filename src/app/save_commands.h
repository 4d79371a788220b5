// Saves of the calibration in hand: under its name or a new one, and the questions in front of a save.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/session.h"

namespace zentaq {

/// A file that the user gives the calibration in hand.
struct ChosenFile {
    std::string path;
    bool sample = false;  ///< one of the program's own
    bool inHand = false;  ///< CurrentFile, maybe by another name
};

/// Nothing where the user has thought better of it.
std::optional<ChosenFile> askCalibrationFile(Session& session, const std::string& suggestedName = {},
                                             int filterIndex = 1);

/// All report by boxes and leave the former state on a failure. What needs a save that runs to have ended
/// begins anew then.
class SaveCommands {
 public:
    explicit SaveCommands(Session& session) : session_(session) {}

    void save();    ///< mnuSave: nothing without a current file
    void saveAs();  ///< mnuSaveAs

    /// Told whether the file is whole on the disk, behind the boxes about it: when the save has ended.
    using Saved = std::function<void(bool saved)>;
    /// Saves the calibration in hand to its file, or asks for one.
    void saveInHand(const Saved& then);
    /// Asks "Save changes?" if there are any, saves, and goes on. It does not go on when the user wanted to
    /// save and it failed: everything stays as it is.
    void offerToSave(std::function<void()> goOn);
    /// Saves to the current file, one of the older generation under a new name.
    void saveCurrent(const Saved& then);

 private:
    void saveNow();
    void saveAsNow();
    void saveUnderNewName(const Saved& then);
    /// The calibration that a box in front of a save is about.
    struct InHand {
        const Unit* unit = nullptr;
        std::string file;
        int cellsCutOff = 0;

        bool operator==(const InHand&) const = default;
    };
    InHand inHand();
    /// False, with a line in the log: another calibration, or another save, has come meanwhile.
    bool isStillInHand(const InHand& asked);
    /// Asks, where the file in hand was cut, whether to save it all the same.
    bool maySaveCutFile();
    void takeName(const ChosenFile& file);
    /// What is written, what is known of the file, and what follows.
    struct SaveJob {
        Unit::FileContent content;
        FileSave save;
        float formerCode = 0;       ///< of the calibration's firmware
        std::uint64_t changes = 0;  ///< of the user's, so far
        std::function<void()> stored;
        Saved then;
    };
    /// Saves under the name that the Unit object has. `stored` is run before the user is told of the end.
    void saveChecked(std::optional<std::string> known, const std::function<void()>& stored,
                     const Saved& then);
    void saveEnded(SaveJob& job, const FileSaved& saved);
    void tellNotSaved(const std::string& why);
    bool mayOverwriteChange(const std::string& path);

    Session& session_;
};

}  // namespace zentaq
