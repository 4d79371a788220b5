// One axis a kind for the battery curve: what live values scale by, pages show, new calibrations are made
// for.
#include <gtest/gtest.h>

#include <cmath>

#include "config/display.h"
#include "config/new_calibration.h"
#include "config/quiet_calibration.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

/// A full byte: 255 * 0.067432 = 17.195 and 255 * 0.078431 = 20.000.
struct Axis {
    const UnitKind& kind;
    double top;
    const char* shownTop;
    int normalCell;  ///< the one nearest to 13.6 volts
};
const std::vector<Axis>& axes() {
    static const std::vector<Axis> all = {{orbaKind(), 17.195, "17.2", 15},
                                          {orbLiteKind(), 20, "20.0", 13},
                                          {orbcKind(), 20, "20.0", 13},
                                          {orbdKind(), 20, "20.0", 13},
                                          {orbd6Kind(), 20, "20.0", 13}};
    return all;
}

class BatteryCurve : public refdata::ReferenceDatabase {
 protected:
    Database database = open();

    /// Microseconds of a new calibration at some volts, between its cells as a unit reads them.
    double timeAt(const Axis& axis, double volts) {
        QuietCalibration made(axis.kind, &database);
        startNewCalibration(made.unit);
        loadDefaults(made.unit, database, startingFigures(database, axis.kind));
        const double place = volts / axis.top * 19;
        const int low = static_cast<int>(place);
        const double first = made.unit.get("BATCom", low);
        return first + (place - low) * (made.unit.get("BATCom", low + 1) - first);
    }
};

TEST_F(BatteryCurve, ANewCalibrationHasNothingAtTheVoltsOfARunningEngine) {
    constexpr double stepOfTheUnit = 8;
    for (const Axis& axis : axes()) {
        SCOPED_TRACE(axis.kind.model);
        QuietCalibration made(axis.kind, &database);
        startNewCalibration(made.unit);
        loadDefaults(made.unit, database, startingFigures(database, axis.kind));
        EXPECT_EQ(made.unit.get("BATCom", axis.normalCell), 0);
        // A generator holds 13.5 to 14.7 volts.
        for (int tenths = 135; tenths <= 147; ++tenths) {
            EXPECT_LT(std::abs(timeAt(axis, tenths / 10.0)), stepOfTheUnit) << tenths / 10.0;
        }
    }
}

// By the curve of the reference data: 440 at 10 V, 125 at 12 V, -85 at 16 V.
TEST_F(BatteryCurve, EveryKindGetsTheSameTimesAtTheSameVolts) {
    for (const Axis& axis : axes()) {
        EXPECT_NEAR(timeAt(axis, 10), 440, 20) << axis.kind.model;
        EXPECT_NEAR(timeAt(axis, 12), 125, 15) << axis.kind.model;
        EXPECT_NEAR(timeAt(axis, 16), -85, 15) << axis.kind.model;
    }
}

TEST_F(BatteryCurve, ThePageShowsTheVoltsThatTheKindMeasures) {
    for (const Axis& axis : axes()) {
        QuietCalibration shown(axis.kind, &database);
        const Display now = display(shown.unit, {});
        EXPECT_EQ(now.field("txtBatComp", 0)->axis, "0.0") << axis.kind.model;
        EXPECT_EQ(now.field("txtBatComp", 19)->axis, axis.shownTop) << axis.kind.model;
    }
}

TEST_F(BatteryCurve, TheHelpAndTheGuideTellWhereItEnds) {
    const std::string help = database.help("helpbattery")->text;
    const std::string guide = refdata::contentOf(ZENTAQ_SOURCE_DIR "/docs/guide/fuel.md");
    for (const std::string& text : {help, guide}) {
        EXPECT_NE(text.find("0 to 17.2 V on an ORB A"), std::string::npos) << text;
        EXPECT_NE(text.find("0 to 20 V on the other"), std::string::npos) << text;
    }
}

}  // namespace
}  // namespace zentaq
