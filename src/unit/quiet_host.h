// The surroundings of a Unit object in a program without windows: no boxes, no link, no reference data.
// What a user would be told is collected as text.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "unit/unit_host.h"

namespace zentaq {

class QuietHost : public UnitHost {
 public:
    /// The boxes that a user would have seen.
    const std::vector<std::string>& told() const { return told_; }
    void tell(std::string_view text) { told_.emplace_back(text); }
    /// The on-the-fly records that were handed to the link.
    const std::vector<std::string>& records() const { return records_; }
    /// As if a unit on the link had told its firmware: files are moved to it. The calibration of this host is
    /// then one for that unit.
    void firmwareKnown(bool known) { firmwareKnown_ = known; }
    /// The last line written to the log, empty for none.
    const std::string& lastLogLine() const { return lastLogLine_; }

    void sysLog(std::string_view text) override { lastLogLine_ = text; }
    void addToLastLine(std::string_view) override {}
    void heard(const UnitNews& news) override {
        if (news.event != UnitEvent::Saved) tell(textOf(news));
    }
    void sendOnFly(std::string_view record) override { records_.emplace_back(record); }
    std::optional<EngineFacts> engine(int, int) override { throw Failure(noReference); }
    std::optional<SensorFacts> mapSensor(int) override { throw Failure(noReference); }
    /// Always Celsius: a program's numbers mean the same on every machine.
    bool fahrenheit() const override { return false; }
    bool firmwareKnownFromLink(int) const override { return firmwareKnown_; }
    LinkedState& linkedState(int slot) override { return linkedStates_[slot]; }
    FileHeader& header() override { return header_; }
    std::string applicationFolder() const override { return folder_; }
    void applicationFolder(const std::string& path) { folder_ = path; }
    void yield() override {}
    void formsChanged() override {}

 protected:
    static constexpr const char* noReference = "There is no reference database";

 private:
    FileHeader header_;
    std::map<int, LinkedState> linkedStates_;  ///< by slot
    bool firmwareKnown_ = false;
    std::vector<std::string> told_;
    std::vector<std::string> records_;
    std::string lastLogLine_;
    std::string folder_ = ".";
};

}  // namespace zentaq
