// Calls every reader of a Unit object, as the pages, the tables and the command line would.
// A reader may refuse hostile cells with a Failure; anything else that comes out of it goes to the caller.
#pragma once

#include <array>
#include <string_view>

#include "base/errors.h"
#include "unit/parameter.h"
#include "unit/unit.h"

namespace zentaq::testing {

struct Answers {
    int given = 0;
    int refused = 0;
};

enum class Elements {
    AllAndBeyond,  ///< with one element on either side that does not exist
    FirstAndLast   ///< the quick way
};

class EveryReader {
 public:
    explicit EveryReader(Unit& unit, Elements elements = Elements::AllAndBeyond)
        : unit_(unit), elements_(elements) {}

    Answers run() {
        for (const Parameter& row : unit_.kind().parameters) readMember(row);
        readShape();
        readPins();
        readPressure();
        readTexts();
        return answers_;
    }

 private:
    template <typename Reader>
    void ask(Reader&& reader) {
        try {
            reader();
            ++answers_.given;
        } catch (const Failure&) {
            ++answers_.refused;
        }
    }

    int beyond() const { return elements_ == Elements::AllAndBeyond ? 1 : 0; }

    void readMember(const Parameter& row) {
        for (int i = -beyond(); i < row.count + beyond(); ++i) {
            if (elements_ == Elements::FirstAndLast && i > 0 && i < row.count - 1) continue;
            ask([&] { unit_.read(row, i); });
            ask([&] { unit_.get(row.name, i); });
            ask([&] { unit_.limits(row.name, i); });
        }
    }
    void readShape() {
        static constexpr std::array<std::string_view, 7> tables = {"ADV",  "AFR",  "SPW", "VE",
                                                                   "GPO1", "GPO2", "none"};
        for (const std::string_view table : tables) {
            for (const std::string_view what : {"ROWS", "COLS", "none"})
                ask([&] { unit_.GET_TBL_DIMENSIONS(table, what); });
            for (const std::string_view axis : {"ROW-AXIS", "COL-AXIS", "none"})
                ask([&] { unit_.GET_TBL_AXIS_TYPE(table, axis); });
            for (const std::string_view axis : {"X-Axis", "Y-Axis", "ROW-AXIS", "COL-AXIS"})
                for (int i = -beyond(); i < 16 + beyond(); ++i)
                    ask([&] { unit_.Get_GPO_Stop(i, axis, table); });
        }
        for (int cell = 2226 - beyond(); cell < 2290 + beyond(); ++cell)
            ask([&] { unit_.convertStopPointsToUnit(cell); });
    }
    void readPins() {
        for (int pin = -beyond(); pin <= unit_.kind().numGpio + beyond(); ++pin) {
            ask([&] { unit_.Get_GPIOFUNC(pin); });
            ask([&] { unit_.Get_GPO_TblNum(pin); });
            for (int i = -beyond(); i < 8 + beyond(); ++i) ask([&] { unit_.Get_GPIO_Param(pin, i); });
        }
        for (int table = 1 - beyond(); table <= 2 + beyond(); ++table)
            for (const int i : {-beyond(), 0, 255, 255 + beyond()})
                ask([&] { unit_.Get_GPIO_Table(table, i); });
    }
    void readPressure() {
        ask([&] { unit_.MAPMax(); });
        ask([&] { unit_.MAPMin(); });
        ask([&] { unit_.MAPRange(); });
        ask([&] { unit_.MAPPrecision(); });
        ask([&] { unit_.MAPUnits(); });
        for (const float value : {-1.0F, 0.0F, 2.5F, 101.3F, 1e30F}) {
            ask([&] { unit_.voltsToPressure(value); });
            ask([&] { unit_.pressureToVolts(value); });
            ask([&] { unit_.pressureToRatio(value); });
            ask([&] { unit_.voltsToKPa(value); });
            ask([&] { unit_.KpaToVolts(value); });
            ask([&] { unit_.KpaToCounts(value, true); });
            ask([&] { unit_.KpaToCounts(value, false); });
        }
    }
    void readTexts() {
        ask([&] { unit_.NOTES_TEXT(); });
        ask([&] { unit_.BiName(); });
        for (int bit = 0; bit < 8; ++bit) {
            ask([&] { unit_.Get_Control(bit); });
            ask([&] { unit_.Get_Control2(bit); });
            ask([&] { unit_.Get_Control3(bit); });
        }
        for (int i = -beyond(); i < 12 + beyond(); ++i) ask([&] { unit_.Get_ECData(i); });
    }

    Unit& unit_;
    Elements elements_;
    Answers answers_;
};

}  // namespace zentaq::testing
