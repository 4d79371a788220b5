// One value, two ways in: a field of a form, and a program without windows. Both take and refuse the same.
#include <gtest/gtest.h>

#include <cmath>

#include "app/general_fields.h"
#include "app/general_fixture.h"
#include "base/number_text.h"
#include "config/basic_figures.h"
#include "config/quiet_calibration.h"
#include "tables/table_cells.h"

namespace zentaq {
namespace {

class EntryWays : public GeneralConfigForm {
 protected:
    /// The calibration of the form for a program without windows.
    std::unique_ptr<QuietCalibration> copyOfForms() {
        auto copy = std::make_unique<QuietCalibration>(unit().kind(), &*session.database);
        copy->unit.calibration(unit().calibration());
        copy->host.header() = session.header();
        return copy;
    }
    static bool taken(QuietCalibration& calibration, const std::string& member, const std::string& text) {
        try {
            setOrThrow(calibration.unit, member, text);
            return true;
        } catch (const Refused&) {
            return false;
        }
    }
    /// Below, at and above both limits, and between them.
    static std::vector<float> around(const Limits& limits) {
        if (limits.unlimited()) return {-1e6F, -1, 0, 0.5F, 1, 1e6F};
        const float step = std::max(0.01F, std::abs(limits.maximum) * 1e-3F);
        return {limits.minimum - step,
                limits.minimum,
                (limits.minimum + limits.maximum) / 2,
                limits.maximum,
                limits.maximum + step,
                -1e9F,
                1e9F};
    }
};

TEST_F(EntryWays, AFieldOfTheGeneralParametersTakesWhatTheShellTakes) {
    haveInHand();
    const Calibration before = unit().calibration();
    int refused = 0;
    for (const GeneralRow& row : generalRows()) {
        if (row.kind != FieldKind::Number) continue;
        const std::string member(row.member);
        for (const float value : around(figureLimits(unit(), row.member))) {
            const std::string text = numberText(value);
            SCOPED_TRACE(member + " " + text);
            unit().calibration(before);
            const auto copy = copyOfForms();
            const bool byForm = form.enter(row.control, text);
            EXPECT_EQ(taken(*copy, member, text), byForm);
            const int cell = unit().find(row.member)->index;
            EXPECT_EQ(copy->unit.DirectIndex(cell), unit().DirectIndex(cell));
            if (!byForm) ++refused;
        }
    }
    EXPECT_GE(refused, 4 * 10) << "each of ten fields with limits refuses four of the seven";
}

TEST_F(EntryWays, ASwitchOfTheGeneralParametersTakesOffAndOnAlone) {
    haveInHand();
    for (const char* member : {"CAMSTL", "Alcohol", "AMP42"}) {
        for (const auto& [text, good] : {std::pair("0", true), std::pair("1", true), std::pair("2", false),
                                         std::pair("-1", false), std::pair("0.5", false)}) {
            EXPECT_EQ(taken(*copyOfForms(), member, text), good) << member << ' ' << text;
        }
    }
}

TEST_F(EntryWays, FiguresHaveTheLimitsThatTheirFieldsTell) {
    haveInHand();
    struct Entered {
        const char* member;
        const char* text;
        bool good;
    };
    for (const auto& [member, text, good] : {Entered{"BHP", "5000", true},
                                             Entered{"BHP", "0", true},
                                             Entered{"BHP", "5000.5", false},
                                             Entered{"BHP", "1e9", false},
                                             Entered{"BHP", "-20", false},
                                             Entered{"INJ_Number", "1", true},
                                             Entered{"INJ_Number", "24", true},
                                             Entered{"INJ_Number", "0", false},
                                             Entered{"INJ_Number", "25", false},
                                             Entered{"INJ_Number", "4.5", false},
                                             Entered{"INJ_FlowRate", "-5", false},
                                             Entered{"INJ_FlowRate", "500", true},
                                             Entered{"INJ_FlowRate", "500.5", false},
                                             Entered{"MAX_Boost", "-1", false},
                                             Entered{"MAX_Boost", "100", true},
                                             Entered{"MAX_Boost", "101", false},
                                             Entered{"AFR", "0", false},
                                             Entered{"AFR", "-14", false},
                                             Entered{"AFR", "1", true},
                                             Entered{"AFR", "14.7", true},
                                             Entered{"AFR", "41", false}}) {
        EXPECT_EQ(taken(*copyOfForms(), member, text), good) << member << ' ' << text;
    }
}

// The writers put these beside others into one byte.
TEST_F(EntryWays, ACodeThatSharesItsByteChangesNoNeighbor) {
    haveInHand();
    struct Shared {
        const char* member;
        int highest;
    };
    for (const auto& [member, highest] :
         {Shared{"CYL_Number", 15}, Shared{"INJ_Events", 15}, Shared{"PHDSEQ", 3}, Shared{"Engine_Type", 1},
          Shared{"EGO_Type", 2}}) {
        EXPECT_TRUE(taken(*copyOfForms(), member, numberText(highest))) << member;
        EXPECT_FALSE(taken(*copyOfForms(), member, numberText(highest + 1))) << member;
        EXPECT_FALSE(taken(*copyOfForms(), member, "-1")) << member;
        EXPECT_FALSE(taken(*copyOfForms(), member, "1.5")) << member;
    }
}

TEST_F(EntryWays, ACellOfATableTakesWhatTheShellTakes) {
    haveInHand();
    const Calibration before = unit().calibration();
    for (const char* table : {"ADV", "AFR", "SPW", "VE"}) {
        const std::string member(findTable(table)->member);
        for (const float value : around(cellLimits(unit(), table, false))) {
            SCOPED_TRACE(std::string(table) + " " + numberText(value));
            unit().calibration(before);
            const auto copy = copyOfForms();
            const auto number = static_cast<float>(numberOf(numberText(value)));
            const bool here = static_cast<bool>(set_binValueByIndex(unit(), table, number, 0, false));
            EXPECT_EQ(taken(*copy, member, numberText(value)), here);
        }
    }
}

/// Every parameter with a range of its own, by the writer that the pages call.
TEST_F(EntryWays, AParameterTakesFromTheShellWhatItsWriterTakes) {
    haveInHand();
    const Calibration before = unit().calibration();
    int walked = 0;
    for (const Parameter& row : unit().kind().parameters) {
        if (row.readOnly || !row.hasCell() || std::holds_alternative<NoRange>(row.range)) continue;
        ++walked;
        for (const float value : around(unit().limits(row.name))) {
            const std::string text = numberText(value);
            SCOPED_TRACE(std::string(row.name) + " " + text);
            unit().calibration(before);
            const auto copy = copyOfForms();
            EXPECT_EQ(taken(*copy, std::string(row.name), text), static_cast<bool>(unit().write(row, text)));
            EXPECT_EQ(copy->unit.DirectIndex(row.index), unit().DirectIndex(row.index));
        }
    }
    EXPECT_GT(walked, 100);
}

}  // namespace
}  // namespace zentaq
