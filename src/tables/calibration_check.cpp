#include "tables/calibration_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "live/ecu.h"
#include "unit/axis_order.h"
#include "unit/gpio_model.h"
#include "unit/table_kinds.h"

namespace zentaq {

namespace {

class Check {
 public:
    explicit Check(Unit& unit) : unit_(unit) {}
    std::vector<Doubt> run();

 private:
    void add(std::string_view member, std::string value, std::string why, std::string advice) {
        doubts_.push_back({std::string(member), std::move(value), std::move(why), std::move(advice)});
    }
    void axes();
    void rising(std::string_view member, std::string_view what);
    void stopsBeyondSensor();
    void bytes();
    void byteOf(const Parameter& row, int element);
    bool isUsed(const TableKind& table);
    void pressureScale();
    void zeros();
    void duty();
    void lonelyCells(std::string_view table, float most, std::string_view word);
    void engineLimits();
    void pins();
    void controlBytes();
    /// "cell 3,12", as the table window counts.
    std::string cellName(std::string_view table, int row, int column) {
        return "cell " + numberText(unit_.GET_TBL_DIMENSIONS(table, "ROWS") - row) + "," +
               numberText(column + 1);
    }

    Unit& unit_;
    std::vector<Doubt> doubts_;
};

// ---- Axes and curves

void Check::axes() {
    for (const std::string& line : axesWithoutOrder(unit_)) {
        const std::size_t colon = line.find(": ");
        const std::string axis = line.substr(0, colon);
        add(axis, colon == std::string::npos ? "" : line.substr(colon + 2),
            "the unit looks its values up in rising order", "enter the headers anew, from the lowest on");
    }
    rising("X", "volts of the EGO sensor");
    rising("BLDTBL", "speeds of the blend");
    rising("ISTMP", "temperatures of the idle");
}

void Check::rising(std::string_view member, std::string_view what) {
    const Parameter* row = unit_.find(member);
    if (row == nullptr) return;
    for (int i = 1; i < row->count; ++i) {
        const float left = unit_.read(*row, i - 1);
        const float right = unit_.read(*row, i);
        if (left < right) continue;
        return add(member, numberText(left) + " is followed by " + numberText(right),
                   "the " + std::string(what) + " do not rise", "enter them in rising order");
    }
}

void Check::stopsBeyondSensor() {
    const float low = unit_.MAPMin();
    const float high = unit_.MAPMax();
    const int rows = std::min(unit_.GET_TBL_DIMENSIONS("ADV", "ROWS"), 16);
    // An axis is stored rounded, which may step over the end of the sensor.
    constexpr float slack = 0.5F;
    for (int i = 0; i < rows; ++i) {
        const float stop = unit_.get("MAPTBL", i);
        if (stop >= low - slack && stop <= high + slack) continue;
        return add("MAPTBL", "stop " + numberText(i + 1) + ": " + numberText(stop),
                   "the sensor reads " + numberText(roundTo(low, unit_.MAPPrecision())) + " to " +
                       numberText(roundTo(high, unit_.MAPPrecision())) + " " + unit_.MAPUnits(),
                   "spread the rows over the sensor");
    }
}

// ---- Image bytes

void Check::byteOf(const Parameter& row, int element) {
    constexpr double most = 255;
    const float cell = unit_.DirectIndex(row.cell(element));
    const double number = row.image.number(unit_, cell);
    const bool word = row.image.bytes == Bytes::Word;
    const double highest = word ? 65535 : most;
    if (std::isfinite(number) && number >= 0 && number <= highest) return;
    const auto sent = static_cast<int>(std::fmod(std::fmod(number, 256) + 256, 256));
    const std::string value = row.count > 1 ? "element " + numberText(element) + ": " : "";
    add(row.name, value + numberText(unit_.read(row, element)),
        "it makes " + numberText(static_cast<float>(number)) + " in the unit, which keeps " +
            (word ? "16 bits of it" : "its low byte " + numberText(sent)),
        "enter a value nearer to the others, or look at the sensor and the figures that it is counted with");
}

void Check::bytes() {
    for (const Parameter& row : unit_.kind().parameters) {
        if (!row.hasCell() || row.image.bytes == Bytes::None || row.controlBit) continue;
        const std::size_t before = doubts_.size();
        // One line a member is enough to find it.
        for (int i = 0; i < row.count && doubts_.size() == before; ++i) skipFailing([&] { byteOf(row, i); });
    }
}

/// A pin goes by it.
bool Check::isUsed(const TableKind& table) {
    const GpioModel model(unit_);
    return std::ranges::any_of(model.Show_GPIO(), [&](const GpioPinRow& pin) {
        bool used = false;
        skipFailing([&] {
            used = model.storedCode(pin.pin) == gpio_code::fullTable &&
                   unit_.Get_GPO_TblNum(pin.pin) == table.gpoNumber;
        });
        return used;
    });
}

void Check::pressureScale() {
    if (unit_.MAPUnits() == "kPa") return;
    if (unit_.has("ACE1")) {
        add("ACE1", numberText(unit_.get("ACE1")) + " " + unit_.MAPUnits() + "/s",
            "the unit counts this threshold on a sensor in kPa",
            "try it on the engine: it may trigger earlier or later than the number says");
    }
    for (const TableKind& table : outputTables()) {
        if (!isUsed(table)) continue;
        skipFailing([&] {
            for (const auto& [kind, axis] :
                 {std::pair{"ROW-AXIS", "Y-Axis"}, std::pair{"COL-AXIS", "X-Axis"}}) {
                const std::string name = unit_.GET_TBL_AXIS_TYPE(table.name, kind);
                const bool pressure = name == "RAW MAP" || name == "BLEND MAP";
                if (!pressure || unit_.Get_GPO_Stop(15, axis, table.name) == 0) continue;
                add(table.name, std::string(axis) + ": " + name + " in " + unit_.MAPUnits(),
                    "the unit counts pressure stops of output tables in kPa",
                    "compare the table's marker with the pressure on the dashboard");
            }
        });
    }
}

// ---- Numbers

void Check::zeros() {
    for (const char* member :
         {"scale1", "CONDIV", "AVRDIV", "Register_Number", "MAP_FIL", "REV_Limiter", "ACE4"}) {
        if (!unit_.has(member) || unit_.get(member) != 0) continue;
        add(member, "0", "the unit divides by it, or nothing runs without it", "enter its value");
    }
}

void Check::duty() {
    if (!unit_.has("VE") || unit_.get("REV_Limiter") == 0) return;
    Ecu ecu;
    const float limit = unit_.get("REV_Limiter");
    const int rows = std::min(unit_.GET_TBL_DIMENSIONS("VE", "ROWS"), storedColumns);
    const int columns = std::min(unit_.GET_TBL_DIMENSIONS("VE", "COLS"), storedColumns);
    constexpr float full = 100;
    int over = 0;
    float highest = 0;
    std::string where;
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            const float rpm = unit_.get("RPMTBL", c);
            if (rpm <= 0 || rpm > limit) continue;
            const int index = r * storedColumns + c;
            ecu.Injector_Pulsewidth(unit_, index, unit_.get("MAPTBL", r), false);
            ecu.Injector_DutyCycle(unit_, rpm, index);
            const float duty = ecu.dutyPercent(index);
            if (duty < full) continue;
            ++over;
            if (duty > highest) {
                highest = duty;
                where = cellName("VE", r, c);
            }
        }
    }
    if (over == 0) return;
    add("VE", where + ": " + numberText(std::round(highest)) + " %",
        numberText(over) + (over == 1 ? " cell asks" : " cells ask") +
            " the injectors to be open all the time below the rev limit",
        "larger injectors, a lower rev limit, or less fuel there: the engine runs lean where they cannot "
        "open longer");
}

/// A cell that stands out above all that touch it: where the number is that of another engine, it was
/// mistyped.
void Check::lonelyCells(std::string_view table, float most, std::string_view word) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr || !hasTable(unit_.kind(), table)) return;
    const int rows = std::min(unit_.GET_TBL_DIMENSIONS(table, "ROWS"), storedColumns);
    const int columns = std::min(unit_.GET_TBL_DIMENSIONS(table, "COLS"), storedColumns);
    const auto at = [&](int r, int c) { return unit_.get(kind->member, r * storedColumns + c); };
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            float highest = -std::numeric_limits<float>::infinity();
            for (int i = std::max(0, r - 1); i <= std::min(rows - 1, r + 1); ++i) {
                for (int j = std::max(0, c - 1); j <= std::min(columns - 1, c + 1); ++j) {
                    if (i != r || j != c) highest = std::max(highest, at(i, j));
                }
            }
            if (!(at(r, c) > highest + most)) continue;
            add(table, cellName(table, r, c) + ": " + numberText(at(r, c)),
                "it is far " + std::string(word) + " than the cells around it, at most " +
                    numberText(highest),
                "look whether it was meant, or smooth it");
        }
    }
}

void Check::engineLimits() {
    if (!unit_.has("TOOTHMAX")) return;
    const float low = unit_.get("TOOTHMIN");
    const float high = unit_.get("TOOTHMAX");
    if (low == 0 && high == 0) return;
    for (const char* member : {"TOFFSET1", "TOFFSET2"}) {
        const float teeth = unit_.has(member) ? unit_.get(member) : 0;
        if (teeth == 0 || (teeth >= low && teeth <= high)) continue;
        add(member, numberText(teeth) + " teeth",
            "the engine takes " + numberText(low) + " to " + numberText(high) + " teeth",
            "check the offset with a timing light before the engine runs");
    }
}

// ---- Pins and control bytes

void Check::pins() {
    const GpioModel model(unit_);
    for (const GpioDouble& twice : model.doubled()) {
        std::string which;
        for (const int pin : twice.pins) which += (which.empty() ? "pins " : " and ") + numberText(pin);
        add("GPIO_Func", which + ": " + unit_.GPIO_Function_Name(twice.code),
            "only one pin may have this function", "give one of them another function");
    }
}

void Check::controlBytes() {
    const auto differs = [&](std::string_view member, bool bit, bool cell, const char* what) {
        if (bit == cell) return;
        add(member, cell ? "on" : "off",
            "the unit's control byte says that " + std::string(what) + (bit ? " is on" : " is off"),
            "set it anew on its page");
    };
    if (unit_.has("DCCL_CutActive"))
        differs("DCCL_CutActive", unit_.Get_Control(1), unit_.get("DCCL_CutActive") == 1,
                "the cut of deceleration");
    if (unit_.has("AMP42")) differs("AMP42", unit_.Get_Control3(3), unit_.get("AMP42") != 0, "4 Amp");
    if (unit_.has("EGO_Type")) {
        const auto type = static_cast<int>(unit_.get("EGO_Type"));
        if (type == 1 || type == 2) differs("EGO_Type", unit_.Get_Control2(7), type == 2, "the wideband");
    }
    if (unit_.has("opt_FullCut") && unit_.get("opt_FullCut") != 0 && unit_.get("opt_ZeroAdv") != 0)
        add("opt_FullCut", "on", "zero advance at the rev limit is on as well",
            "choose one of them on the Rev Limiter page");
}

std::vector<Doubt> Check::run() {
    if (!unit_.kind().hasCalibration) return {};
    skipFailing([&] { axes(); });
    skipFailing([&] { stopsBeyondSensor(); });
    skipFailing([&] { zeros(); });
    skipFailing([&] { duty(); });
    constexpr float leaner = 1.5F;
    constexpr float earlier = 8;
    skipFailing([&] { lonelyCells("AFR", leaner, "leaner"); });
    skipFailing([&] { lonelyCells("ADV", earlier, "earlier"); });
    skipFailing([&] { engineLimits(); });
    skipFailing([&] { pins(); });
    skipFailing([&] { controlBytes(); });
    skipFailing([&] { pressureScale(); });
    bytes();
    return std::move(doubts_);
}

}  // namespace

std::string Doubt::line() const {
    return member + '\t' + value + '\t' + why + '\t' + advice;
}

std::vector<Doubt> doubtsOf(Unit& unit) {
    return Check(unit).run();
}

}  // namespace zentaq
