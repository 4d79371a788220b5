// The failures that travel inside the core, and the two policies a command
// boundary may apply to them.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zentaq {

/// Root of every failure that the core raises on purpose.
class Failure : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// A number does not fit the integer it is turned into.
class Overflow : public Failure {
 public:
    explicit Overflow(const std::string& what = "A number is too large here, or is none") : Failure(what) {}
};

/// An index outside its array: a calibration cell, a unit slot, a legacy table.
class BoundsError : public Failure {
 public:
    explicit BoundsError(const std::string& what = "There is no element of that number") : Failure(what) {}
};

/// A text that is no number where a number is needed.
class TypeMismatch : public Failure {
 public:
    explicit TypeMismatch(const std::string& what = "A text is no number where one is needed")
        : Failure(what) {}
};

/// A file that cannot be opened, read or written. The text names the file and the reason.
class FileError : public Failure {
 public:
    using Failure::Failure;
};

/// A member that a unit kind lacks. Callers by name treat it as silence.
class NoSuchMember : public Failure {
 public:
    using Failure::Failure;
};

/// What a user is told of a failure. What the language's own library throws has words that say nothing to a
/// tuner.
std::string textOfFailure(const std::exception& failure);

/// Policy "skip the failing statement and go on". Answers whether the statement succeeded.
template <typename Statement>
bool skipFailing(Statement&& statement) {
    try {
        std::forward<Statement>(statement)();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

/// Policy "jump to the end of the command": runs the whole command and hands a failure's text to `report`.
template <typename Command, typename Report>
bool endOnFailure(Command&& command, Report&& report) {
    try {
        std::forward<Command>(command)();
        return true;
    } catch (const std::exception& failure) {
        std::forward<Report>(report)(textOfFailure(failure));
        return false;
    }
}

}  // namespace zentaq
