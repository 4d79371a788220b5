// A calibration of any unit kind with its recording host, and the preconditions of a table line.
#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "unit/expectations/expectation_table.h"
#include "unit/recording_host.h"
#include "unit/unit.h"

namespace zentaq::testing {

struct KindCalibration {
    RecordingHost host;
    Unit unit;

    explicit KindCalibration(const UnitKind& kind, int release = 5) : unit(kind, host) {
        host.head.currentUnit = kind.fileKind;
        unit.FW_Release(release);
        unit.FW_Build(99);
        // Ratios of 0 have no byte.
        for (int i = 0; unit.has("Y") && i < 10; ++i) unit.store("Y", 14.64F, i);
        for (int i = 0; unit.has("Get_AFR") && i < 256; ++i) unit.store("Get_AFR", 14.64F, i);
        unit.get("AFR");      // repairs its cell
        unit.get("MAP_BAR");  // repairs both of its cells
        host.forget();
    }

    /// The calibration that a line of the table starts from.
    KindCalibration(const UnitKind& kind, const Expectation& row) : KindCalibration(kind, releaseOf(row)) {
        for (const std::string& fact : row.given) apply(fact);
        host.forget();
    }

    std::vector<float> cells() const {
        std::vector<float> all;
        for (int i = 0; i < Unit::cellCount; ++i) all.push_back(unit.DirectIndex(i));
        return all;
    }
    std::array<int, 3> controlBytes() const {
        return {unit.controlByte(0), unit.controlByte(1), unit.controlByte(2)};
    }
    std::vector<float> image() {
        unit.ConvertData();
        return {unit.ImageData().begin(), unit.ImageData().end()};
    }

 private:
    static int releaseOf(const Expectation& row) {
        for (const std::string& fact : row.given) {
            if (fact.starts_with("FW=")) return std::stoi(fact.substr(3));
        }
        return 5;
    }
    void apply(const std::string& fact) {
        if (fact == "pic18") return unit.hasPIC18(true);
        if (fact == "fahrenheit") {
            host.isFahrenheit = true;
            return;
        }
        const auto [what, value] = table_reading::halves(fact);
        if (what == "FW") return;
        if (what == "units") return unit.MAPUnits(value);
        if (what == "bytes") return setControlBytes(value);
        if (what == "engine") return setTeeth(value);
        if (what.starts_with("cell ")) {
            return unit.AssignDirectIndex(table_reading::numberFrom(value), std::stoi(what.substr(5)));
        }
        const auto bracket = what.find('[');
        const int element = bracket == std::string::npos ? 0 : std::stoi(what.substr(bracket + 1));
        if (!unit.set(what.substr(0, bracket), value, element)) {
            throw std::runtime_error("precondition refused: " + fact);
        }
    }
    void setControlBytes(const std::string& text) {
        const auto bytes = table_reading::split(text, " ");
        for (int i = 0; i < 3; ++i) {
            unit.controlByte(i, static_cast<std::uint8_t>(std::stoi(bytes.at(static_cast<std::size_t>(i)))));
        }
    }
    void setTeeth(const std::string& text) {
        const auto teeth = table_reading::split(text, " to ");
        const int kind = static_cast<int>(unit.kind().fileKind);
        host.engines[{kind, 0}] = {.toothMin = table_reading::numberFrom(teeth.at(0)),
                                   .toothMax = table_reading::numberFrom(teeth.at(1))};
    }
};

}  // namespace zentaq::testing
