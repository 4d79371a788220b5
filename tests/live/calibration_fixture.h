// A calibration in hand for tests: a Unit object of any kind with its recording host.
#pragma once

#include <string>
#include <vector>

#include "base/number_text.h"
#include "unit/recording_host.h"
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

/// Firmware 5.099 with the sensor that a file without one gets: 0.05295 volts a kPa, -0.54738 volts at 0.
struct Calibration {
    explicit Calibration(int slot) : unit(*unitKindOfSlot(slot), host) {
        host.head.currentUnit = 0;  // no file of it, which a release would move
        unit.FW_Release(5);
        host.log.clear();
    }

    RecordingHost host;
    Unit unit;
};

constexpr int moffsetCell = 18;
constexpr int minDutyCell = 316;
constexpr int maxDutyCell = 317;
constexpr int afrCell = 2225;

}  // namespace zentaq::test
