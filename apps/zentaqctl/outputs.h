// Where a command may write: a wrong name on a command line must not cost anybody a file.
#pragma once

#include <array>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

#include "context.h"
#include "platform/posix_handle.h"

namespace zentaq::ctl {

/// Throws FileError where something stands at the name of a file to be made. Not for an empty file, which
/// loses nothing; not for "-"; not for one of the `inputs`, which the user wants changed; and not where
/// --force was given.
/// `what` is told: "calibration".
void refuseReplacing(const Context& context, const std::string& output, std::string_view what,
                     std::initializer_list<std::string_view> inputs = {});

/// For what can be made again at any time: a file that begins as this command writes it is replaced without
/// --force, too.
void refuseReplacingOther(const Context& context, const std::string& output, std::string_view what,
                          bool (*isOwn)(std::string_view beginning));

/// Writes a finished file where nothing stands at its name, not even since another program's last step. False
/// where something does, and where --force was given: then it is to be asked again whether that may be
/// replaced.
bool wroteNew(const Context& context, const std::string& output, std::string_view content);

/// Writes a calibration for which refuseReplacing was asked before the work, and which is asked again: of two
/// commands that make one file, the second one is refused. Who calls has the lock of the name.
void writeCalibration(const Context& context, const std::string& output, std::string_view bytes,
                      std::initializer_list<std::string_view> inputs = {});
/// The same for the one in a Unit object, at the name that it has. What a longer file holds behind it stays.
void saveCalibration(const Context& context, Unit& unit, std::initializer_list<std::string_view> inputs = {});

/// Whether a file begins with a whole S-record.
bool beginsWithSRecord(std::string_view beginning);

/// A file that grows line by line. As with any stream, what cannot be written makes it fail and stay so.
class GrowingFile : public std::ostream {
 public:
    /// `file` is open for writing; `name` is told.
    GrowingFile(PosixHandle file, std::string name);
    /// Writes what is left. Throws FileError with the reason of the first write that failed.
    void finish();

 private:
    class Buffer : public std::streambuf {
     public:
        explicit Buffer(PosixHandle file);
        ~Buffer() override;
        Buffer(const Buffer&) = delete;
        Buffer& operator=(const Buffer&) = delete;
        /// 0 while nothing has failed.
        int reason() const { return reason_; }
        void close();

     protected:
        int_type overflow(int_type character) override;
        int sync() override;

     private:
        PosixHandle file_;
        std::array<char, 4096> pending_;
        int reason_ = 0;
    };

    Buffer buffer_;
    std::string name_;
};

/// Made now. Never follows a file that appeared after the first look, waits for nobody at a pipe, and takes
/// nothing that is no file.
std::unique_ptr<GrowingFile> openGrowing(const Context& context, const std::string& output,
                                         std::string_view what);

}  // namespace zentaq::ctl
