// The surroundings of a Unit object in a program without windows: no boxes, no link.
// What a user would be told is collected as text.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "refdata/database.h"
#include "unit/unit.h"
#include "unit/unit_host.h"

namespace zentaq {

/// A value that a member does not take. The text is one line: the numbered warning with the range.
class Refused : public Failure {
 public:
    using Failure::Failure;
    explicit Refused(const Refusal& refusal);
};

/// What is ignored comes with no warning: then the text tells what does not take which value.
void throwIfRefused(const EntryOutcome& outcome, std::string_view name = {}, std::string_view value = {});

/// Where reference data comes from: an open database, none, or one that is opened when it is first asked for.
/// A program that only reads cells must not wait for a database.
class DatabaseSource {
 public:
    DatabaseSource(const Database* database = nullptr)
        : database_(database) {}  // NOLINT: converts on purpose
    /// `find` throws Failure, with the reason, for no database; it is asked for every row.
    explicit DatabaseSource(std::function<const Database&()> find) : find_(std::move(find)) {}
    /// Throws Failure, with the reason, where there is none.
    const Database& get() const;

 private:
    const Database* database_ = nullptr;
    std::function<const Database&()> find_;
};

class QuietHost : public UnitHost {
 public:
    /// Without a database what needs an engine or a sensor fails, as with a database file that is missing.
    explicit QuietHost(DatabaseSource database = {}) : database_(std::move(database)) {}

    /// The boxes that a user would have seen.
    const std::vector<std::string>& told() const { return told_; }
    /// The on-the-fly records that were handed to the link.
    const std::vector<std::string>& records() const { return records_; }
    /// As if a unit on the link had told its firmware: files are moved to it. The calibration of this host is
    /// then one for that unit.
    void firmwareKnown(bool known) { firmwareKnown_ = known; }

    void sysLog(std::string_view text) override;
    void addToLastLine(std::string_view) override {}
    void displayMessage(int, std::string_view) override {}
    void inform(std::string_view text) override { told_.emplace_back(text); }
    void sendOnFly(std::string_view record) override { records_.emplace_back(record); }
    std::optional<EngineFacts> engine(int kind, int optionType) override;
    std::optional<SensorFacts> mapSensor(int id) override;
    /// Always Celsius: a program's numbers mean the same on every machine.
    bool fahrenheit() const override { return false; }
    bool firmwareKnownFromLink(int) const override { return firmwareKnown_; }
    LinkedState& linkedState(int slot) override { return linkedStates_[slot]; }
    FileHeader& header() override { return header_; }
    float programVersion() const override;
    std::string applicationFolder() const override { return "."; }
    void yield() override {}
    void formsChanged() override {}

    /// The last line written to the log, empty for none.
    const std::string& lastLogLine() const { return lastLogLine_; }

 private:
    DatabaseSource database_;
    FileHeader header_;
    std::map<int, LinkedState> linkedStates_;  ///< by slot
    bool firmwareKnown_ = false;
    std::vector<std::string> told_;
    std::vector<std::string> records_;
    std::string lastLogLine_;
};

/// Sets a member and throws Refused with the warning where it refuses, NoSuchMember where the kind lacks
/// it or it cannot be set, BoundsError on an element outside it. A basic figure takes what its cell holds
/// already.
void setOrThrow(Unit& unit, std::string_view member, const Entry& value, int element = 0);

}  // namespace zentaq
