// A calibration in hand for tests: a Unit object of any kind with a host that notes what it was told.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/number_text.h"
#include "unit/unit.h"

namespace zentaq::test {

/// What a user is told of entries: "1001 (-50 to 50%)" of one that was refused.
inline std::vector<std::string> told(const std::vector<Refusal>& refused) {
    std::vector<std::string> texts;
    for (const Refusal& refusal : refused) texts.push_back(numberText(refusal.warning) + " " + refusal.text);
    return texts;
}

inline std::string told(const EntryOutcome& outcome) {
    std::vector<Refusal> refused;
    noteRefusal(refused, outcome);
    return refused.empty() ? "" : told(refused).front();
}

class NotingHost : public UnitHost {
 public:
    void sysLog(std::string_view text) override { log.emplace_back(text); }
    void addToLastLine(std::string_view) override {}
    void displayMessage(int, std::string_view) override {}
    void inform(std::string_view) override {}
    void sendOnFly(std::string_view record) override { records.emplace_back(record); }
    std::optional<EngineFacts> engine(int, int) override { return {}; }
    std::optional<SensorFacts> mapSensor(int) override { return {}; }
    bool fahrenheit() const override { return showsFahrenheit; }
    bool firmwareKnownFromLink(int) const override { return false; }
    LinkedState& linkedState(int slot) override { return linkedStates[slot]; }
    FileHeader& header() override { return fileHeader; }
    float programVersion() const override { return 10.02F; }
    std::string applicationFolder() const override { return {}; }
    void yield() override {}
    void formsChanged() override {}

    std::vector<std::string> log;
    std::vector<std::string> records;
    bool showsFahrenheit = false;
    FileHeader fileHeader;
    std::map<int, LinkedState> linkedStates;
};

/// Firmware 5.099 with the sensor that a file without one gets: 0.05295 volts a kPa, -0.54738 volts at 0.
struct Calibration {
    explicit Calibration(int slot) : unit(*unitKindOfSlot(slot), host) {
        unit.FW_Release(5);
        host.log.clear();
    }

    NotingHost host;
    Unit unit;
};

constexpr int moffsetCell = 18;
constexpr int minDutyCell = 316;
constexpr int maxDutyCell = 317;
constexpr int afrCell = 2225;

}  // namespace zentaq::test
