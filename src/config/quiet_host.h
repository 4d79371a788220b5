// The surroundings of a Unit object in a program without windows: no boxes, no link.
// What a user would be told is collected as text.
#pragma once

#include <string>
#include <string_view>
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
};

class QuietHost : public UnitHost {
 public:
    /// Without a database engines and sensors are unknown, as with a database file that is missing.
    explicit QuietHost(const Database* database = nullptr) : database_(database) {}

    /// The warnings of refused values, one line each.
    const std::vector<std::string>& refusals() const { return refusals_; }
    /// The boxes that a user would have seen.
    const std::vector<std::string>& told() const { return told_; }
    /// The on-the-fly records that were handed to the link.
    const std::vector<std::string>& records() const { return records_; }
    /// As if a unit on the link had told its firmware: files are moved to it.
    void firmwareKnown(bool known) { firmwareKnown_ = known; }

    bool checkInput(int code, std::string_view value) override;
    bool checkRange(float value, float minimum, float maximum, std::string_view rangeText) override;
    void sysLog(std::string_view text) override;
    void addToLastLine(std::string_view) override {}
    void displayMessage(int, std::string_view) override {}
    void displayWarning(int code, std::string_view text) override;
    void inform(std::string_view text) override { told_.emplace_back(text); }
    void sendOnFly(std::string_view record) override { records_.emplace_back(record); }
    std::optional<EngineFacts> engine(int kind, int optionType) override;
    std::optional<SensorFacts> mapSensor(int id) override;
    /// Always Celsius: a program's numbers mean the same on every machine.
    bool fahrenheit() const override { return false; }
    bool firmwareKnownFromLink() const override { return firmwareKnown_; }
    FileHeader& header() override { return header_; }
    float programVersion() const override;
    std::string applicationFolder() const override { return "."; }
    void yield() override {}
    void formsChanged() override {}

    /// The last line written to the log, empty for none.
    const std::string& lastLogLine() const { return lastLogLine_; }

 private:
    bool refuse(int code, std::string_view text);

    const Database* database_;
    FileHeader header_;
    bool firmwareKnown_ = false;
    std::vector<std::string> refusals_;
    std::vector<std::string> told_;
    std::vector<std::string> records_;
    std::string lastLogLine_;
};

/// Sets a member and throws Refused with the warning where it refuses, NoSuchMember where the kind lacks
/// it or it cannot be set, BoundsError on an element outside it.
void setOrThrow(Unit& unit, QuietHost& host, std::string_view member, const Entry& value, int element = 0);

}  // namespace zentaq
