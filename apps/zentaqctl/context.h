// What the commands of zentaqctl share: where answers go, in which form, where reference data comes from.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "base/file_reader.h"
#include "config/database_host.h"
#include "config/quiet_calibration.h"
#include "unit/file_lock.h"

namespace zentaq::ctl {

/// What is written to `out` and `notes` reaches a terminal only as it may be shown.
struct Context {
    DatabaseSource
        database;  ///< opened when it is first asked for; without it engines and sensors are unknown
    std::ostream& out;
    std::ostream& notes;  ///< what a user must know though the command was done
    std::ostream& data;   ///< the standard output for text that is read back: nothing is escaped
    bool json = false;
    bool force = false;  ///< a file that is there already may be replaced, one that was cut may be taken
    std::string trace;   ///< file for the wire trace of a command of the link; empty for none
};

/// A command that is neither refused nor fails ends with an exit status of its own.
class CommandEnd : public Failure {
 public:
    CommandEnd(const std::string& what, int exitStatus) : Failure(what), status(exitStatus) {}
    int status;
};

/// A file that was cut is told in the notes; a command that makes another calibration or bytes for a unit of
/// it refuses it unless `force` is given.
enum class CutFile { Told, Refused };
std::unique_ptr<QuietCalibration> openCalibration(const Context& context, const std::string& file,
                                                  CutFile cut = CutFile::Told);
/// Notes it where a file has lost cells of its end.
void noteCutOff(const Context& context, const std::string& file, const UnitKind& kind, int cellsCutOff);
/// Why a file that has lost cells of its end is not taken.
std::string cutFileRefusal(const std::string& file, const UnitKind& kind, int cellsCutOff);
/// Notes the axes of tables that do not rise.
void noteAxes(const Context& context, const std::string& file, Unit& unit);

/// Writes the boxes that the windows would have shown, one line each.
void tell(const Context& context, const QuietHost& host);

/// A calibration on its way from a file to the same or another file. The name of the target goes into the
/// calibration at once, as in the windows, so that whatever is changed afterwards stays.
class Change {
 public:
    /// An empty output means `file` itself. Throws Failure for "-": a calibration does not go to a terminal.
    /// The file that will be written is locked from before the read.
    Change(const Context& context, const std::string& file, const std::string& output);
    QuietCalibration& calibration() { return *calibration_; }
    void save();

 private:
    const Context& context_;
    std::string file_;
    std::string output_;
    FileLock lock_;
    std::unique_ptr<QuietCalibration> calibration_;
};

/// The whole of a file; "-" is the standard input.
std::string readInput(const std::string& file, const FileLimit& limit);
/// To a file, or to the standard output where the name is "-" or empty.
void writeOutput(const Context& context, const std::string& file, std::string_view content);
/// Throws Failure for "-" as the name of a calibration to write.
void refuseStandardOutput(const std::string& file);
/// Notes it where a file has the extension of another unit kind than the calibration in it.
void noteForeignExtension(const Context& context, const UnitKind& kind, const std::string& file);
/// Notes which of the first `count` cells of a file hold what no entry gives: its bytes in a unit are others.
void noteOutOfRange(const Context& context, const std::string& file, Unit& unit, int count);
/// Throws Failure when the output would take the place of the input, which is of another form.
void refuseSameFile(const std::string& output, const std::string& input);

}  // namespace zentaq::ctl
