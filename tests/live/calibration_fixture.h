// A calibration in hand for tests: a Unit object of any kind with a host that applies the shared checks and
// notes what it was told.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "unit/unit.h"

namespace zentaq::test {

class NotingHost : public UnitHost {
 public:
    bool checkInput(int code, std::string_view value) override {
        const bool refused = (code == 1000 && !isNumeric(value)) || (code == 1003 && trimmed(value).empty());
        if (refused) refusals.push_back("input " + numberText(code));
        return refused;
    }
    bool checkRange(float value, float minimum, float maximum, std::string_view rangeText) override {
        const bool refused = value < minimum || value > maximum;
        if (refused) refusals.push_back("range " + std::string(rangeText));
        return refused;
    }
    void sysLog(std::string_view text) override { log.emplace_back(text); }
    void addToLastLine(std::string_view) override {}
    void displayMessage(int, std::string_view) override {}
    void displayWarning(int code, std::string_view) override {
        refusals.push_back("warning " + numberText(code));
    }
    void inform(std::string_view) override {}
    void sendOnFly(std::string_view record) override { records.emplace_back(record); }
    std::optional<EngineFacts> engine(int, int) override { return {}; }
    std::optional<SensorFacts> mapSensor(int) override { return {}; }
    bool fahrenheit() const override { return showsFahrenheit; }
    bool firmwareKnownFromLink(int) const override { return false; }
    FileHeader& header() override { return fileHeader; }
    float programVersion() const override { return 10.02F; }
    std::string applicationFolder() const override { return {}; }
    void yield() override {}
    void formsChanged() override {}

    std::vector<std::string> refusals;
    std::vector<std::string> log;
    std::vector<std::string> records;
    bool showsFahrenheit = false;
    FileHeader fileHeader;
};

/// Firmware 5.099 with the sensor that a file without one gets: 0.05295 volts a kPa, -0.54738 volts at 0.
struct Calibration {
    explicit Calibration(int slot) : unit(*unitKindOfSlot(slot), host) {
        unit.FW_Release(5);
        host.refusals.clear();
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
