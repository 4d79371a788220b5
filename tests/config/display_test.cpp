#include "config/display.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/new_calibration.h"
#include "config/quiet_calibration.h"
#include "refdata/refdata_fixture.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

struct Shown {
    RecordingHost host;
    Unit unit;

    explicit Shown(const UnitKind& kind = orbaKind(), int release = 5) : unit(kind, host) {
        unit.FW_Release(release);
        unit.FW_Build(99);
        unit.store("EGO_Type", 1);
    }
    Display now(const DisplayNames& names = {}) { return display(unit, names); }
    std::string text(const char* control, int element = 0) {
        const Display shown = now();
        const Field* field = shown.field(control, element);
        return field == nullptr ? "not shown" : field->text;
    }
    Field field(const char* control, int element = 0) { return *now().field(control, element); }
};

// ---- Texts

TEST(Display, ShowsScalarsThroughTheirReaders) {
    Shown shown;
    shown.unit.AssignDirectIndex(50, 34);     // KNK_MIN
    shown.unit.AssignDirectIndex(2, 18);      // MOFFSET
    shown.unit.AssignDirectIndex(8, 67);      // Initial_Advance, less the offset
    shown.unit.AssignDirectIndex(0.6F, 156);  // ASE0 as a fraction
    shown.unit.AssignDirectIndex(0.25F, 35);  // KNK_ATK
    shown.unit.AssignDirectIndex(7000, 58);   // REV_Limiter
    EXPECT_EQ(shown.text("txtKNOCK_CTL1"), "50");
    EXPECT_EQ(shown.text("txtInitAdv"), "10");
    EXPECT_EQ(shown.text("txtASE0_TEMP"), "60");
    EXPECT_EQ(shown.text("txtKNOCK_CTL2"), "0.25");
    EXPECT_EQ(shown.text("txtREV_Primary"), "7000");
    const Field limit = shown.field("txtREV_Primary");
    EXPECT_EQ(limit.unit, "RPM");
    EXPECT_EQ(limit.limits, "(1000 to 20000 RPM)");
    EXPECT_EQ(limit.member, "REV_Limiter");
    EXPECT_EQ(limit.help, "helprevl");
    EXPECT_EQ(limit.page, 9);
}

TEST(Display, RoundsPressuresToTheSensorsPrecision) {
    // The standard sensor spans 10.34 to 104.77: one decimal. 60 on the legacy scale of a 1 bar rating is
    // ((60 / 0.1016618 - 100) / (876 / 1024)) / 204.6 = 2.8006 V, and (2.8006 + 0.54738) / 0.05295 = 63.23.
    Shown shown;
    shown.unit.AssignDirectIndex(60, 42);
    shown.unit.MAPUnits("kPa");
    const Field field = shown.field("txtSENSOR_MAP4");
    EXPECT_EQ(field.text, "63.2");
    EXPECT_EQ(field.unit, "kPa");
    EXPECT_EQ(field.limits, "(10.3 to 104.8 kPa)");
    EXPECT_EQ(shown.text("lblMAPMin"), "10.3");
    EXPECT_EQ(shown.text("lblMAPMax"), "104.8");
    EXPECT_EQ(shown.text("lblMAP_Scaler"), "0.05295");
    EXPECT_EQ(shown.now().mapUnits, "kPa");
}

TEST(Display, AHigherSensorShowsFewerDecimals) {
    Shown shown;
    shown.unit.AssignDirectIndex(0.004F, 126);  // 4 mV for each mmHg: up to 1250
    shown.unit.AssignDirectIndex(0, 127);
    shown.unit.MAPUnits("mmHg");
    shown.unit.AssignDirectIndex(60, 42);  // 2.8006 V as above, 700.16 mmHg
    EXPECT_EQ(shown.text("txtSENSOR_MAP4"), "700");
    EXPECT_EQ(shown.field("txtSENSOR_MAP4").unit, "mmHg");
    EXPECT_EQ(shown.text("lblMAPMax"), "1250");
}

TEST(Display, ShowsARateOfPressureWithOneDecimalMore) {
    // The span is 5 / 0.05295 = 94.43; 34.3 / (137 / (94.43 * 0.0388)) = 0.9173.
    Shown shown;
    shown.unit.AssignDirectIndex(1, 199);
    shown.unit.MAPUnits("kPa");
    EXPECT_EQ(shown.text("txtMAP_SENS"), "0.92");
    EXPECT_EQ(shown.field("txtMAP_SENS").unit, "kPa/s");
}

TEST(Display, NoOverboostCutReadsZero) {
    Shown shown;
    EXPECT_EQ(shown.text("txtBOOST_MaxMap"), "0");
    EXPECT_FALSE(shown.field("optOverBoost").on);
    shown.unit.AssignDirectIndex(60, 257);
    EXPECT_EQ(shown.text("txtBOOST_MaxMap"), "63.2");
    EXPECT_TRUE(shown.field("optOverBoost").on);
}

TEST(Display, TellsThePressureUnitByItsText) {
    Shown shown;
    const char* texts[] = {"kPa", "kPa", "PSIA", "PSIG", "mmHg", "inHg"};
    for (int code = 0; code < 6; ++code) {
        shown.unit.AssignDirectIndex(static_cast<float>(code), 129);
        EXPECT_EQ(shown.now().mapUnits, texts[code]);
    }
}

TEST(Display, TemperaturesFollowTheUsersScale) {
    Shown shown;
    shown.unit.AssignDirectIndex(80, 51);   // CLT_Default
    shown.unit.AssignDirectIndex(20, 56);   // MAT_Default
    shown.unit.AssignDirectIndex(40, 311);  // second idle temperature
    EXPECT_EQ(shown.text("txtCLT_SENSOR3"), "80");
    EXPECT_EQ(shown.field("txtCLT_SENSOR3").unit, "Celsius");
    EXPECT_EQ(shown.field("txtCLT_SENSOR3").limits, "(-40 to 150 Degrees Celsius)");
    EXPECT_EQ(shown.text("txtIDLE_Coolant", 1), "40");

    shown.host.isFahrenheit = true;
    EXPECT_EQ(shown.text("txtCLT_SENSOR3"), "176");
    EXPECT_EQ(shown.field("txtCLT_SENSOR3").unit, "Fahrenheit");
    EXPECT_EQ(shown.field("txtCLT_SENSOR3").limits, "(-40 to 302 Degrees Fahrenheit)");
    EXPECT_EQ(shown.text("txtSENSOR_MAT3"), "68");
    EXPECT_EQ(shown.field("txtSENSOR_MAT3").limits, "(-22 to 176 Degrees Fahrenheit)");
    EXPECT_EQ(shown.text("txtIDLE_Coolant", 1), "104");
    EXPECT_EQ(shown.field("txtIDLE_Coolant", 1).limits, "(-22 to 176 Degrees Fahrenheit)");
}

TEST(Display, AnEntryGoesToTheWriterInItsOwnScale) {
    Shown shown;
    EXPECT_EQ(fieldEntry(shown.unit, *fieldOf("txtCLT_SENSOR3"), "80"), "80");
    shown.host.isFahrenheit = true;
    EXPECT_EQ(fieldEntry(shown.unit, *fieldOf("txtCLT_SENSOR3"), "176"), "80");
    EXPECT_EQ(fieldEntry(shown.unit, *fieldOf("txtCLT_SENSOR3"), "warm"), "warm");
    // The idle temperatures are turned by their own writer.
    EXPECT_EQ(fieldEntry(shown.unit, *fieldOf("txtIDLE_Coolant"), "104"), "104");
    EXPECT_EQ(fieldEntry(shown.unit, *fieldOf("txtREV_Primary"), "7000"), "7000");
}

TEST(Display, WhatIsShownInFahrenheitReadsBackAsItWas) {
    for (const bool fahrenheit : {false, true}) {
        Shown shown;
        shown.host.isFahrenheit = fahrenheit;
        for (const char* control :
             {"txtCLT_SENSOR3", "txtSENSOR_MAT3", "txtCLT0", "txtEGO_Param7", "txtIDLE_Coolant"}) {
            const FieldRow& row = *fieldOf(control);
            shown.unit.store(row.member, fahrenheit && row.writerTakesShown ? 77.0F : 25.0F);
            const std::string text = shown.text(control);
            EXPECT_TRUE(shown.unit.set(row.member, fieldEntry(shown.unit, row, text))) << control;
            EXPECT_FLOAT_EQ(shown.unit.get(row.member), 25) << control;
        }
    }
}

TEST(Display, ShowsTheSensorTypeOfTheCurve) {
    Shown shown;
    shown.unit.AssignDirectIndex(130, 2196);  // an older file: 128 plus the type
    const Display now = shown.now();
    EXPECT_EQ(now.egoType, 2);
    EXPECT_EQ(now.field("EGO_Type")->text, "2");
}

TEST(Display, ACellOfTheSensorCurveLiesBetweenItsNeighbours) {
    Shown shown;
    const float ratios[] = {22.4F, 15.89F, 14.9F, 14.72F, 14.64F, 14.3F, 13.8F, 12.6F, 11.2F, 10};
    for (int i = 0; i < 10; ++i) shown.unit.AssignDirectIndex(ratios[i], 283 + i);
    EXPECT_EQ(shown.text("EGO_AFRatio", 1), "15.89");
    EXPECT_EQ(shown.field("EGO_AFRatio", 1).limits, "(14.9 to 22.4 AFR, 2)");
    EXPECT_EQ(shown.field("EGO_AFRatio", 0).limits, "(15.89 to 29.28 AFR, 2)");
    EXPECT_EQ(shown.field("EGO_AFRatio", 9).limits, "(0.12 to 11.2 AFR, 2)");
}

TEST(Display, CurvesBearTheirAxes) {
    Shown shown;
    shown.unit.AssignDirectIndex(2500, 592 + 2 * 4);
    EXPECT_EQ(shown.field("CLT_DAT", 0).axis, "-40");
    EXPECT_EQ(shown.field("CLT_DAT", 6).axis, "20");
    EXPECT_EQ(shown.field("CLT_DAT", 19).axis, "150");
    EXPECT_EQ(shown.field("DualPLG", 4).axis, "2500");
    EXPECT_EQ(shown.field("txtBatComp", 19).axis, "17.2");
    EXPECT_EQ(shown.field("txtRPM_TBL", 4).text, "2500");
    EXPECT_EQ(shown.field("txtRPM_TBL", 4).axis, "5");
    shown.host.isFahrenheit = true;
    EXPECT_EQ(shown.field("CLT_DAT", 0).axis, "-40");
    EXPECT_EQ(shown.field("CLT_DAT", 19).axis, "302");
    Shown ignition(pzk2Kind());
    EXPECT_EQ(ignition.field("MAT_DAT", 0).axis, "0.00");
    EXPECT_EQ(ignition.field("MAT_DAT", 19).axis, "5.00");
}

TEST(Display, NamesWhatTheListsHold) {
    Shown shown;
    shown.unit.set("CAMSTL", 1);
    const Display now = shown.now({.engine = "V-Twin", .sensor = "1 BAR"});
    EXPECT_EQ(now.field("cmbEngine")->text, "V-Twin");
    EXPECT_EQ(now.field("cmbMAPSensors")->text, "1 BAR");
    EXPECT_EQ(now.field("cmbCams")->text, "Race / High Perf");
    shown.unit.set("CAMSTL", 0);
    EXPECT_EQ(shown.text("cmbCams"), "Street / Stock");
}

TEST(Display, CountsTheCharactersOfTheNotes) {
    Shown shown;
    shown.unit.NOTES_TEXT("Dyno day one");
    EXPECT_EQ(shown.text("txtNotesSection"), "Dyno day one");
    EXPECT_EQ(shown.now().notesCounter, "(12 of 500 characters)");
    EXPECT_EQ(notesCounter(""), "(0 of 500 characters)");
    EXPECT_EQ(notesCounter("20 \u00B0C"), "(5 of 500 characters)");
}

// ---- The engine

TEST(Display, TakesTheSplitOfTheEngineOfItsOwnKind) {
    for (const UnitKind* kind : {&orbaKind(), &orbLiteKind(), &pzk2Kind(), &orbcKind()}) {
        Shown shown(*kind);
        shown.unit.set("Option_Type", 14);
        shown.host.engines[{kind->slot, 14}] = {.editDfub = true, .defaultSplit = 10};
        const Display now = shown.now();
        EXPECT_EQ(shown.unit.DefaultSplit(), 10) << kind->className;
        EXPECT_EQ(now.defaultSplit, 10);
        EXPECT_TRUE(now.editDfub);
        EXPECT_TRUE(now.field("DualPLG")->enabled);
    }
}

TEST(Display, TheOrbDReadsTheEnginesOfTheOrbL) {
    for (const UnitKind* kind : {&orbdKind(), &orbd6Kind()}) {
        Shown shown(*kind);
        shown.unit.set("Option_Type", 14);
        shown.host.engines[{7, 14}] = {.editDfub = false, .defaultSplit = 3};
        shown.host.engines[{8, 14}] = {.editDfub = false, .defaultSplit = 5};
        shown.host.engines[{4, 14}] = {.editDfub = true, .defaultSplit = 10};
        EXPECT_TRUE(shown.now().editDfub);
        EXPECT_EQ(shown.unit.DefaultSplit(), 10);
    }
}

TEST(Display, TheSplitCurveIsClosedForAnEngineWithOnePlug) {
    Shown shown;
    shown.unit.set("Option_Type", 1);
    shown.host.engines[{3, 1}] = {.editDfub = false, .defaultSplit = 0};
    EXPECT_FALSE(shown.now().editDfub);
    EXPECT_FALSE(shown.field("DualPLG", 15).enabled);
    EXPECT_TRUE(shown.field("DualPLG", 15).visible);
}

TEST(Display, AnUnknownEngineLeavesTheSplitAsItWas) {
    Shown shown;
    shown.unit.DefaultSplit(7);
    EXPECT_EQ(shown.now().defaultSplit, 7);
    EXPECT_EQ(shown.unit.DefaultSplit(), 7);
    EXPECT_TRUE(shown.now().editDfub);
}

TEST(Display, TrimsAreShownForTheCylindersOfTheEngine) {
    for (const UnitKind& kind : unitKinds()) {
        Shown shown(kind);
        shown.unit.set("CYL_Number", 4);
        shown.unit.set("CYLORDER", 3, 1);
        shown.unit.set("INJTRIM", -2, 3);
        const Display now = shown.now();
        EXPECT_EQ(now.field("txtCYL_FIRE", 1)->text, "3") << kind.className;
        EXPECT_EQ(now.field("txtCYL_IT", 3)->text, "-2") << kind.className;
        EXPECT_EQ(now.field("txtCYL_IT", 4), nullptr) << kind.className;
        EXPECT_EQ(now.field("txtCYL_FT", 0) != nullptr, &kind != &pzk2Kind());
        EXPECT_THAT(now.notices, IsEmpty());
    }
}

TEST(Display, WithoutAnEngineTheTrimPageSaysSo) {
    Shown shown;
    const Display now = shown.now();
    ASSERT_THAT(now.notices, SizeIs(1));
    EXPECT_EQ(now.notices[0].page, 34);
    EXPECT_EQ(now.notices[0].text, "NO ENGINE CONFIGURATION CURRENTLY SELECTED");
    EXPECT_THAT(now.page(34), IsEmpty());
}

// ---- Kinds and firmware

TEST(Display, ShowsOnlyWhatTheKindHas) {
    Shown ignition(pzk2Kind());
    EXPECT_EQ(ignition.text("WE"), "not shown");
    EXPECT_EQ(ignition.text("txtUAP"), "not shown");
    EXPECT_EQ(ignition.text("EGO_Type"), "not shown");
    ignition.unit.set("KNK_MIN", 50);
    EXPECT_EQ(ignition.text("txtKNOCK_CTL1"), "50");
    EXPECT_EQ(Shown(orbdKind()).text("DualPLG"), "not shown");
    EXPECT_EQ(Shown(orbdKind()).text("optTDC_Param4"), "not shown");
    for (const UnitKind& kind : unitKinds()) EXPECT_EQ(Shown(kind).text("txtBTO"), "not shown");
}

TEST(Display, OldFirmwareShowsTheRatingOfItsSensor) {
    Shown shown(orbaKind(), 2);
    shown.unit.set("MAP_BAR", 2);
    EXPECT_EQ(shown.text("txtSENSOR_MAP1"), "2");
    EXPECT_EQ(shown.text("cmbMAPSensors"), "not shown");
    EXPECT_EQ(shown.field("txtSENSOR_MAP4").limits, "(2 to 208 kPa)");
}

TEST(Display, WithoutACalibrationNothingIsShown) {
    RecordingHost host;
    Unit none{nullKind(), host};
    const Display now = display(none, displayNames(none, nullptr));
    EXPECT_THAT(now.fields, IsEmpty());
    EXPECT_THAT(now.notices, IsEmpty());
    EXPECT_EQ(now.mapUnits, "");
}

TEST(Display, EveryBoxOfEveryKindHasAText) {
    for (const UnitKind& kind : unitKinds()) {
        Shown shown(kind);
        shown.unit.set("CYL_Number", 8);
        const Display now = shown.now();
        EXPECT_THAT(now.fields, Not(IsEmpty()));
        for (const Field& field : now.fields) {
            const FieldKind what = fieldOf(field.control)->kind;
            if (what == FieldKind::Option || what == FieldKind::Check) continue;
            EXPECT_FALSE(field.text.empty()) << kind.className << " " << field.control;
        }
    }
}

TEST(Display, AFieldThatCannotBeReadIsEmptyAndTheOthersStand) {
    Shown shown;
    shown.unit.AssignDirectIndex(9, 39);  // no such rating
    shown.unit.AssignDirectIndex(50, 34);
    EXPECT_EQ(shown.text("txtSENSOR_MAP4"), "");
    EXPECT_EQ(shown.text("txtKNOCK_CTL1"), "50");
}

TEST(Display, EveryFieldOfEveryKindHasAHelpText) {
    for (const UnitKind& kind : unitKinds()) {
        Shown shown(kind);
        shown.unit.set("CYL_Number", 4);
        int helped = 0;
        for (const Field& field : shown.now().fields) {
            ++helped;
            EXPECT_FALSE(field.help.empty()) << kind.model << " " << field.control;
        }
        EXPECT_GT(helped, &kind == &pzk2Kind() ? 100 : 200) << kind.model;
    }
    Shown shown;
    EXPECT_EQ(shown.field("txtKNOCK_CTL2").help, "helpknock");
    EXPECT_EQ(shown.field("WE").help, "helpwarmup");  // the page's
}

// ---- On the fly

TEST(Display, TellsWhichFieldsActOnTheRunningEngine) {
    Shown shown;
    shown.unit.set("CYL_Number", 4);
    EXPECT_FALSE(shown.now().onFly);
    EXPECT_EQ(shown.now().onFlyPanel, "");
    shown.unit.ONFLY_MODE(true);
    const Display now = shown.now();
    EXPECT_TRUE(now.onFly);
    EXPECT_EQ(now.onFlyPanel, "ONFLY");
    for (const char* control : {"txtKNOCK_CTL1", "txtREV_Update", "txtSENSOR_MAP4", "txtCYL_FT", "txtCYL_IT",
                                "EGO_AFRatio", "txtUAP", "WE"}) {
        EXPECT_TRUE(now.field(control)->onTheFly) << control;
    }
    for (const char* control :
         {"txtTDC_Param4", "optKnock_Active", "txtTPSvalue", "txtCYL_FIRE", "cmbEngine", "txtNotesSection"}) {
        EXPECT_FALSE(now.field(control)->onTheFly) << control;
    }
    EXPECT_THAT(shown.host.sent, IsEmpty());
}

// ---- With the reference database

class DisplayOfNewCalibration : public refdata::ReferenceDatabase {
 protected:
    Database database = open();
    QuietCalibration calibration{orbaKind(), &database};
    Unit& unit = calibration.unit;

    Display make(const char* engine) {
        startNewCalibration(unit);
        chooseEngine(unit, database.engineByName(engine, 3).value());
        chooseSensor(unit, database.mapSensorByName("1 BAR (10-105 kPa)").value());
        loadDefaults(unit, database, {});
        return display(unit, displayNames(unit, &database));
    }
};

TEST_F(DisplayOfNewCalibration, ShowsTheDefaultsOfTheSeedTable) {
    const Display now = make("2 Rotor Rotary, Leading and Trailing Plugs");
    const std::pair<const char*, const char*> texts[] = {
        {"cmbEngine", "2 Rotor Rotary, Leading and Trailing Plugs"},
        {"cmbMAPSensors", "1 BAR (10-105 kPa)"},
        {"lblCYL_Number", "2"},
        {"txtREV_Primary", "7000"},
        {"txtUAP", "8"},
        {"txtMIT", "1.2"},
        {"txtInitAdv", "10"},
        {"txtKNOCK_CTL1", "50"},
        {"txtCLT_SENSOR3", "80"},
        {"txtSENSOR_MAP4", "60"},
        {"txtEGO_Param6", "85"},
        {"txtMAP_SENS", "0.8"},
        {"txtTDC_Param1", "2"},
        {"EGO_Volts", "0"},
        {"EGO_AFRatio", "22.4"},
        {"EGO_Type", "1"},
        {"txtRevApproach", "0"},
    };
    for (const auto& [control, text] : texts) {
        ASSERT_NE(now.field(control), nullptr) << control;
        EXPECT_EQ(now.field(control)->text, text) << control;
    }
    EXPECT_EQ(now.field("WE", 19)->text, "6");
    EXPECT_EQ(now.field("MAT_FUEL", 5)->axis, "10");
    EXPECT_EQ(now.field("MAT_FUEL", 5)->text, "4");
    EXPECT_TRUE(now.field("opt3Stage")->on);
    EXPECT_TRUE(now.field("optDCCL_CutActive")->on);
    EXPECT_TRUE(now.field("txtDCCL_3")->enabled);
    EXPECT_FALSE(now.field("txtKNOCK_CTL1")->enabled);
    EXPECT_TRUE(now.editDfub);
    EXPECT_EQ(now.defaultSplit, 10);
    EXPECT_EQ(now.mapUnits, "kPa");
}

TEST_F(DisplayOfNewCalibration, ASensorThatTheListLacksIsToldByItsRange) {
    make("4 Cylinder Coil per Plug, Sequential Injection");
    unit.AssignDirectIndex(0.018F, 126);
    unit.AssignDirectIndex(0.5F, 127);
    // (5 - 0.5) / 0.018 = 250 and -0.5 / 0.018 = -27.78, one decimal
    EXPECT_EQ(displayNames(unit, &database).sensor, "Unknown (Range: -27.8 to 250 kPa)");
    EXPECT_EQ(displayNames(unit, nullptr).engine, "");
}

}  // namespace
}  // namespace zentaq
