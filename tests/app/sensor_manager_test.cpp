#include "app/sensor_manager.h"

#include <gmock/gmock.h>

#include "app/sensor_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int kpaCode = 1;
constexpr int psiaCode = 2;

SensorEntry points(const std::string& volts1, const std::string& volts2, const std::string& pressure1,
                   const std::string& pressure2, int units = kpaCode) {
    return {{volts1, volts2, pressure1, pressure2}, units};
}

// ---- The checks of an entry

struct EntryFault {
    const char* why;
    SensorEntry entry;
    std::string text;
    std::optional<SensorBox> box = {};
};

void expectTold(const char* title, const std::vector<EntryFault>& faults) {
    for (const EntryFault& expected : faults) {
        SCOPED_TRACE(expected.why);
        const auto fault = sensorFault(expected.entry);
        ASSERT_TRUE(fault);
        EXPECT_EQ(fault->title, title);
        EXPECT_EQ(fault->text, expected.text);
        if (expected.box) {
            EXPECT_EQ(fault->box, *expected.box);
        }
    }
}

TEST(SensorEntryChecks, ABoxWithoutANumberIsToldBeforeAnythingElse) {
    const std::string noNumber = " not a valid number";
    expectTold("Invalid entry",
               {{"the first volts", points("abc", "4.5", "20", "250"), "abc" + noNumber, firstVolts},
                {"the second volts", points("0.5", "abc", "20", "250"), "abc" + noNumber, secondVolts},
                {"the first pressure", points("0.5", "4.5", "abc", "250"), "abc" + noNumber, firstPressure},
                {"the second pressure", points("0.5", "4.5", "20", "abc"), "abc" + noNumber, secondPressure},
                {"an empty box", points("", "4.5", "20", "250"), noNumber, firstVolts},
                {"volts out of range too", points("9", "4.5", "20", "x"), "x" + noNumber, secondPressure}});
}

TEST(SensorEntryChecks, VoltsOutOfRangeAreToldBeforeWhatIsOutOfOrder) {
    const std::string outside = " is out of range.  Must be 0 - 5v";
    expectTold("Entry out of Range",
               {{"the first below 0", points("-0.01", "5", "20", "250"), "-0.01" + outside, firstVolts},
                {"the second below 0", points("0", "-0.01", "20", "250"), "-0.01" + outside, secondVolts},
                {"the first above 5", points("5.01", "5", "20", "250"), "5.01" + outside, firstVolts},
                {"the second above 5", points("0", "5.01", "20", "250"), "5.01" + outside, secondVolts},
                {"out of order too", points("6", "1", "20", "250"), "6" + outside, firstVolts}});
}

TEST(SensorEntryChecks, VoltsAndThenPressuresMustClimb) {
    expectTold("Entry out of Order",
               {{"volts", points("4.5", "0.5", "20", "250"),
                 "4.5 Must be smaller than 0.5\nPlease rearrange your entries.", firstVolts},
                {"pressures", points("0.5", "4.5", "250", "20"),
                 "250 Must be smaller than 20\nPlease rearrange your entries.", firstPressure},
                {"both", points("4", "1", "250", "20"),
                 "4 Must be smaller than 1\nPlease rearrange your entries.", firstVolts}});
}

TEST(SensorEntryChecks, EqualOnesPassTheOrderAndMakeNoSensor) {
    expectTold("Invalid entry",
               {{"pressures", points("0.5", "4.5", "100", "100.0"),
                 "Division by zero: both pressures are the same.\nPlease enter two different pressures.",
                 secondPressure},
                {"volts", points("2", "2", "20", "250"),
                 "Both volts are the same, so the sensor has no slope.\nPlease enter two different volts."}});
}

TEST(SensorEntryChecks, AnEntryOfTwoPointsThatClimbPasses) {
    const std::pair<const char*, SensorEntry> entries[] = {
        {"two good points", points("0.5", "4.5", "20", "250")},
        {"volts reach from 0 to 5 inclusive", points("0", "5", "20", "250")},
        {"pressures have no limits", points("0", "5", "-500", "9000")},
        {"the order is that of numbers, not of texts", points("0.5", "4.5", "9", "10")}};
    for (const auto& [why, entry] : entries) EXPECT_FALSE(sensorFault(entry)) << why;
}

TEST(SensorEntryChecks, ALineThatNoCalibrationCanHoldIsRefused) {
    EXPECT_TRUE(sensorFault(points("0", "5", "0", "1e-300")));
    EXPECT_TRUE(sensorFault(points("0", "5", "0", "1e300")));
    EXPECT_TRUE(sensorFault(points("0", "5", "-1e308", "1e308")));
}

TEST(SensorEntryChecks, ADecimalCommaIsAPoint) {
    const SensorLine line = sensorLine(points("0,5", "4,5", "20,0", "250"));
    EXPECT_NEAR(line.scale, 4.0 / 230.0, 1e-12);
}

// (4.5 - 0.5) / (250 - 20) = 4 / 230; 4.5 - 250 * 4 / 230 = 35 / 230
TEST(SensorEntryChecks, TheLineGoesThroughBothPoints) {
    const SensorLine line = sensorLine(points("0.5", "4.5", "20", "250"));
    EXPECT_NEAR(line.scale, 0.01739130434782609, 1e-15);
    EXPECT_NEAR(line.offset, 0.1521739130434783, 1e-15);
    EXPECT_NEAR(line.scale * 20 + line.offset, 0.5, 1e-12);
}

TEST(SensorUnits, StandInTheOrderOfTheForm) {
    std::vector<std::pair<std::string, int>> shown;
    for (const SensorUnit& unit : sensorUnits()) shown.emplace_back(unit.caption, unit.code);
    using Unit = std::pair<std::string, int>;
    EXPECT_THAT(shown, ElementsAre(Unit{"kPa", 1}, Unit{"mmHg", 4}, Unit{"PSIA", 2}, Unit{"inHg", 5},
                                   Unit{"PSIG", 3}));
}

// ---- The list

class SensorManagerTest : public SensorSession {
 protected:
    SensorManager manager{session};

    void beginNew() {
        answer(Answer::Yes);
        ASSERT_TRUE(manager.create());
        boxes().clear();
    }
    void beginEdit(const std::string& name) {
        manager.select(name);
        answer(Answer::Yes);
        ASSERT_TRUE(manager.edit());
        boxes().clear();
    }
    std::string general(const std::string& name) {
        manager.load();
        manager.select(name);
        return manager.lblGeneral();
    }
};

TEST_F(SensorManagerTest, ListsEverySensorAndSelectsNone) {
    EXPECT_EQ(manager.sensors().size(), sensorCount());
    EXPECT_EQ(manager.sensors().front(), oneBar);
    EXPECT_EQ(manager.selected(), "");
    EXPECT_EQ(manager.lblGeneral(), "None Selected");
    EXPECT_EQ(manager.problem(), "");
}

// (0 + 0.54738) / 0.05295 = 10.34; (5 + 0.54738) / 0.05295 = 104.77
TEST_F(SensorManagerTest, ShowsTheRangeInWholeNumbers) {
    EXPECT_EQ(general(oneBar), "Range:\n10 - 105\nUnits: kPa");
}

TEST_F(SensorManagerTest, ASensorKeepsItsOwnUnit) {
    session.makeUnits();
    session.CurrentUnit(3);
    session.currentUnitObject().MAPUnits("mmHg");
    EXPECT_EQ(general(streetPsia), "Range:\n1 - 15\nUnits: PSIA");
}

TEST_F(SensorManagerTest, HalvesAreRoundedToTheEvenNumber) {
    add("Ties", 0.5F, 0.25F, 3);  // -0.5 and 9.5
    EXPECT_EQ(general("Ties"), "Range:\n0 - 10\nUnits: PSIG");
    add("Decimal ties", 0.04F, 0.1F, 4);  // -2.5 and 122.5, though neither number is exact in binary
    EXPECT_EQ(general("Decimal ties"), "Range:\n-2 - 122\nUnits: mmHg");
}

TEST_F(SensorManagerTest, SelectingNothingShowsNone) {
    manager.select(oneBar);
    manager.select("");
    EXPECT_EQ(manager.lblGeneral(), "None Selected");
}

// ---- Editing

TEST_F(SensorManagerTest, EditingAsksFirst) {
    manager.select(oneBar);
    answer(Answer::No);
    EXPECT_FALSE(manager.edit());
    EXPECT_EQ(lastBox().title, "MAP Sensor Warning");
    EXPECT_EQ(lastBox().text,
              "You are about to modify the calibration for this MAP sensor.\n"
              "Are you sure this is what you want to do?.");
    EXPECT_EQ(lastBox().buttons, Buttons::YesNo);
    EXPECT_EQ(manager.task(), SensorTask::None);
}

// (0.5 + 0.54738) / 0.05295 = 19.78; (4.5 + 0.54738) / 0.05295 = 95.32
TEST_F(SensorManagerTest, EditingBeginsWithThePointsAtHalfAVoltAndFourAndAHalf) {
    beginEdit(oneBar);
    EXPECT_THAT(manager.entry().points, ElementsAre("0.5", "4.5", "20", "95"));
    EXPECT_EQ(manager.entry().unitsCode, kpaCode);
}

TEST_F(SensorManagerTest, EditingSetsTheOptionOfTheStoredUnit) {
    beginEdit(streetPsia);
    EXPECT_EQ(manager.entry().unitsCode, psiaCode);
}

TEST_F(SensorManagerTest, UnitCode0IsKpa) {
    add("Old", 0.02F, -0.2F, 0);
    manager.load();
    beginEdit("Old");
    EXPECT_EQ(manager.entry().unitsCode, kpaCode);
}

// (0.5 + 0.54738) / 0.365076 = 2.869; (4.5 + 0.54738) / 0.365076 = 13.826
TEST_F(SensorManagerTest, EditingTellsWhatTheWholeNumbersStandFor) {
    beginEdit(streetPsia);
    EXPECT_THAT(manager.entry().points, ElementsAre("0.5", "4.5", "3", "14"));
    EXPECT_EQ(manager.inHand(),
              "Editing Street (PSIA). Stored: 0.5 V at 2.87, 4.5 V at 13.83 PSIA. The boxes start with whole "
              "numbers; saving stores "
              "what they hold.");
}

TEST_F(SensorManagerTest, WhereTheWholeNumbersAreTheStoredPointsNothingIsTold) {
    beginEdit(sharp);  // 0.5 V at 35 kPa, 4.5 V at 235 kPa
    EXPECT_THAT(manager.entry().points, ElementsAre("0.5", "4.5", "35", "235"));
    EXPECT_EQ(manager.inHand(), "Editing Sharp (kPa).");
}

TEST_F(SensorManagerTest, SavingAnEditRewritesUnitsScaleAndOffsetAndNothingElse) {
    const int id = stored(oneBar).id;
    const std::size_t before = sensorCount();
    beginEdit(oneBar);
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250", psiaCode)).done);
    const MapSensorRow row = stored(oneBar);
    EXPECT_FLOAT_EQ(row.scale, 4.0F / 230.0F);
    EXPECT_FLOAT_EQ(row.offset, 35.0F / 230.0F);
    EXPECT_EQ(row.units, psiaCode);
    EXPECT_EQ(row.id, id);
    EXPECT_EQ(sensorCount(), before);
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_EQ(sensorChanges(), 1);
    EXPECT_EQ(manager.task(), SensorTask::None);
    EXPECT_EQ(manager.selected(), oneBar);
    EXPECT_EQ(manager.lblGeneral(), "Range:\n-9 - 279\nUnits: PSIA");  // -8.75 and 278.75
}

// 4 / (14 - 3) = 4 / 11; 4.5 - 14 * 4 / 11 = -6.5 / 11
TEST_F(SensorManagerTest, SavingTheBoxesAsTheyCameStoresTheirWholeNumbers) {
    beginEdit(streetPsia);
    EXPECT_TRUE(manager.save(manager.entry()).done);
    EXPECT_FLOAT_EQ(stored(streetPsia).scale, 4.0F / 11.0F);
    EXPECT_FLOAT_EQ(stored(streetPsia).offset, -6.5F / 11.0F);
}

TEST_F(SensorManagerTest, ASensorOfAnotherUnitKeepsItWhenEdited) {
    constexpr int flow = 6;
    add("Meter (%Flow)", 0.05F, 0.0F, flow);
    manager.load();
    beginEdit("Meter (%Flow)");
    EXPECT_EQ(manager.entry().unitsCode, flow);
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "10", "90", manager.entry().unitsCode)).done);
    EXPECT_EQ(stored("Meter (%Flow)").units, flow);
}

TEST_F(SensorManagerTest, ASensorThatVanishedWhileItWasEditedIsToldAndTheEntryStays) {
    beginEdit(oneBar);
    session.database->deleteMapSensor(oneBar);
    EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done);
    EXPECT_EQ(lastBox().text, "There is no sensor 1 BAR (10-105 kPa) in the database any more.");
    EXPECT_EQ(manager.task(), SensorTask::Edit);
    EXPECT_EQ(sensorChanges(), 0);
}

TEST_F(SensorManagerTest, CancellingStoresNothingAndShowsTheSensorAgain) {
    beginEdit(oneBar);
    manager.cancel();
    EXPECT_EQ(manager.task(), SensorTask::None);
    EXPECT_EQ(manager.selected(), oneBar);
    EXPECT_FLOAT_EQ(stored(oneBar).scale, 0.05295F);
    EXPECT_EQ(sensorChanges(), 0);
}

// ---- A new sensor

TEST_F(SensorManagerTest, CreatingAsksFirstAndClearsTheBoxes) {
    answer(Answer::No);
    EXPECT_FALSE(manager.create());
    EXPECT_EQ(lastBox().title, "MAP Sensor Warning");
    EXPECT_EQ(lastBox().text,
              "You are about to enter the calibration for a new MAP sensor.\n"
              "Are you sure this is what you want to do?.");
    EXPECT_EQ(lastBox().buttons, Buttons::YesNo);
    beginNew();
    EXPECT_THAT(manager.entry().points, ElementsAre("", "", "", ""));
}

TEST_F(SensorManagerTest, ANewSensorAsksForItsNameAndAddsTheUnit) {
    beginNew();
    type("Turbo");
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250", psiaCode)).done);
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_THAT(lastBox().text, HasSubstr("Enter a Description for this sensor."));
    const MapSensorRow row = stored("Turbo (PSIA)");
    EXPECT_FLOAT_EQ(row.scale, 4.0F / 230.0F);
    EXPECT_FLOAT_EQ(row.offset, 35.0F / 230.0F);
    EXPECT_EQ(row.units, psiaCode);
    EXPECT_EQ(sensorChanges(), 1);
    EXPECT_EQ(manager.selected(), "Turbo (PSIA)");
    EXPECT_THAT(manager.sensors(), Contains("Turbo (PSIA)"));
}

TEST_F(SensorManagerTest, AnEmptyNameCancelsTheSavingAndKeepsTheEntry) {
    const std::size_t before = sensorCount();
    beginNew();
    for (const std::string name : {"", "   "}) {
        type(name);
        EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done);
    }
    EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done) << "the prompt was dismissed";
    EXPECT_EQ(sensorCount(), before);
    EXPECT_EQ(manager.task(), SensorTask::Create);
    EXPECT_EQ(sensorChanges(), 0);
}

TEST_F(SensorManagerTest, ATakenNameIsToldAndAskedAgain) {
    add("Turbo (kPa)", 0.02F, -0.2F, kpaCode);
    beginNew();
    type("Turbo");
    type("turbo");  // names are compared without case
    type("Turbo 2");
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250")).done);
    ASSERT_EQ(boxes().size(), 5u);
    EXPECT_EQ(boxes()[1].title, "Duplicate name");
    EXPECT_EQ(boxes()[1].text,
              "There is already a sensor with that name.\nUse a different name or edit that sensor.");
    EXPECT_EQ(boxes()[3].title, "Duplicate name");
    EXPECT_TRUE(isStored("Turbo 2 (kPa)"));
    EXPECT_FLOAT_EQ(stored("Turbo (kPa)").scale, 0.02F);
}

TEST_F(SensorManagerTest, GivingUpAfterATakenNameStoresNothing) {
    add("Turbo (kPa)", 0.02F, -0.2F, kpaCode);
    const std::size_t before = sensorCount();
    beginNew();
    type("Turbo");
    type("");
    EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done);
    EXPECT_EQ(sensorCount(), before);
}

TEST_F(SensorManagerTest, TheSameNameInAnotherUnitIsFree) {
    add("Turbo (kPa)", 0.02F, -0.2F, kpaCode);
    beginNew();
    type("Turbo");
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250", psiaCode)).done);
    EXPECT_TRUE(isStored("Turbo (PSIA)"));
}

TEST_F(SensorManagerTest, ARefusedEntryIsToldNamesTheBoxAndAsksForNoName) {
    beginNew();
    const SensorManager::Saved saved = manager.save(points("0.5", "7", "20", "250"));
    EXPECT_FALSE(saved.done);
    EXPECT_EQ(saved.box, secondVolts);
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_EQ(lastBox().title, "Entry out of Range");
    EXPECT_EQ(lastBox().text, "7 is out of range.  Must be 0 - 5v");
    EXPECT_EQ(manager.task(), SensorTask::Create);
}

TEST_F(SensorManagerTest, EqualPressuresStoreNothingAndAskForNoName) {
    const std::size_t before = sensorCount();
    beginNew();
    type("Turbo");
    EXPECT_FALSE(manager.save(points("0.5", "4.5", "100", "100")).done);
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_THAT(lastBox().text, HasSubstr("Division by zero"));
    EXPECT_EQ(sensorCount(), before);
}

TEST_F(SensorManagerTest, ANameWithAnApostropheGoesThroughItsWholeLife) {
    beginNew();
    type("Bob's 'best'");
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250")).done);
    const std::string name = "Bob's 'best' (kPa)";
    EXPECT_TRUE(isStored(name));
    EXPECT_EQ(general(name), "Range:\n-9 - 279\nUnits: kPa");
    beginEdit(name);
    EXPECT_TRUE(manager.save(points("0", "5", "0", "100")).done);
    EXPECT_FLOAT_EQ(stored(name).scale, 0.05F);
    answer(Answer::Yes);
    EXPECT_TRUE(manager.remove());
    EXPECT_FALSE(isStored(name));
}

// ---- Removing

TEST_F(SensorManagerTest, RemovingAsksFirst) {
    manager.select(oneBar);
    answer(Answer::No);
    EXPECT_FALSE(manager.remove());
    EXPECT_EQ(lastBox().title, "Delete?");
    EXPECT_EQ(lastBox().text, "Remove 1 BAR (10-105 kPa)?");
    EXPECT_EQ(lastBox().buttons, Buttons::YesNo);
    EXPECT_TRUE(isStored(oneBar));
    EXPECT_EQ(sensorChanges(), 0);
}

TEST_F(SensorManagerTest, RemovingRefillsTheListAndSelectsNone) {
    manager.select(oneBar);
    answer(Answer::Yes);
    EXPECT_TRUE(manager.remove());
    EXPECT_FALSE(isStored(oneBar));
    EXPECT_THAT(manager.sensors(), Not(Contains(oneBar)));
    EXPECT_EQ(manager.lblGeneral(), "None Selected");
    EXPECT_EQ(sensorChanges(), 1);
}

// ---- What can work now

TEST_F(SensorManagerTest, WithoutASelectionOnlyCreatingWorks) {
    EXPECT_EQ(manager.whyNotEdit(), "Choose a sensor in the list first.");
    EXPECT_EQ(manager.whyNotRemove(), "Choose a sensor in the list first.");
    EXPECT_EQ(manager.whyNotCreate(), "");
    EXPECT_EQ(manager.whyNotSave(), "Choose Edit or Create New first.");
    EXPECT_FALSE(manager.edit());
    EXPECT_FALSE(manager.remove());
    EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorManagerTest, WhileAnEntryIsInHandTheOthersWait) {
    beginEdit(oneBar);
    EXPECT_EQ(manager.whyNotEdit(), "Save or cancel the sensor in hand first.");
    EXPECT_EQ(manager.whyNotCreate(), "Save or cancel the sensor in hand first.");
    EXPECT_EQ(manager.whyNotSave(), "");
    manager.select(streetPsia);
    EXPECT_EQ(manager.selected(), oneBar);
}

TEST_F(SensorManagerTest, AMissingDatabaseDisablesAllAndSaysWhy) {
    session.database.reset();
    manager.load();
    EXPECT_THAT(manager.sensors(), IsEmpty());
    for (const std::string& why :
         {manager.problem(), manager.whyNotCreate(), manager.whyNotEdit(), manager.whyNotSave()}) {
        EXPECT_EQ(why, "The reference database could not be opened.");
    }
    EXPECT_FALSE(manager.create());
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorManagerTest, AWriteProtectedDatabaseShowsItsSensorsAndChangesNone) {
    writeProtect();
    EXPECT_EQ(general(oneBar), "Range:\n10 - 105\nUnits: kPa");
    EXPECT_EQ(manager.whyNotEdit(), "The reference database is write-protected.");
    EXPECT_EQ(manager.whyNotCreate(), "The reference database is write-protected.");
    EXPECT_EQ(manager.problem(), "The reference database is write-protected.");
    EXPECT_FALSE(manager.remove());
    EXPECT_TRUE(isStored(oneBar));
}

TEST_F(SensorManagerTest, ALockedDatabaseIsToldAndTheEntryStays) {
    beginEdit(oneBar);
    {
        const WritingProgram other(path);
        EXPECT_FALSE(manager.save(points("0.5", "4.5", "20", "250")).done);
    }
    EXPECT_THAT(lastBox().text, HasSubstr("it is in use by another program"));
    EXPECT_EQ(manager.task(), SensorTask::Edit);
    EXPECT_TRUE(manager.save(points("0.5", "4.5", "20", "250")).done);
}

TEST_F(SensorManagerTest, AListThatCannotBeReadSaysWhyAndComesBack) {
    {
        const WritingProgram other(path);
        manager.load();
        EXPECT_THAT(manager.problem(), HasSubstr("it is in use by another program"));
        EXPECT_THAT(manager.sensors(), IsEmpty());
    }
    manager.load();
    EXPECT_EQ(manager.problem(), "");
    EXPECT_EQ(manager.sensors().size(), sensorCount());
}

TEST_F(SensorManagerTest, ASensorThatCannotBeRemovedNowIsToldAndStays) {
    manager.select(oneBar);
    answer(Answer::Yes);
    {
        const WritingProgram other(path);
        EXPECT_FALSE(manager.remove());
    }
    EXPECT_THAT(lastBox().text, HasSubstr("it is in use by another program"));
    EXPECT_TRUE(isStored(oneBar));
}

// ---- The picture

TEST_F(SensorManagerTest, WithoutASensorThePictureSaysWhatToDo) {
    const SensorSketch sketch = manager.sketch({});
    EXPECT_FALSE(sketch.drawn);
    EXPECT_EQ(sketch.why, "Choose a sensor to see its line.");
}

TEST_F(SensorManagerTest, ASelectedSensorIsDrawnOverItsWholeRange) {
    manager.select(oneBar);
    const SensorSketch sketch = manager.sketch({});
    EXPECT_TRUE(sketch.drawn);
    EXPECT_EQ(sketch.words, "Line from 10.3 kPa at 0 V to 104.8 kPa at 5 V.");
    EXPECT_THAT(sketch.points, IsEmpty());
}

// (0 - 35 / 230) * 230 / 4 = -8.75; (5 - 35 / 230) * 230 / 4 = 278.75
TEST_F(SensorManagerTest, AnEntryIsDrawnWithItsPointsWhileItIsTyped) {
    beginNew();
    const SensorSketch sketch = manager.sketch(points("0,5", "4.5", "20", "250"));
    ASSERT_TRUE(sketch.drawn);
    EXPECT_NEAR(sketch.lowest, -8.75, 1e-9);
    EXPECT_NEAR(sketch.highest, 278.75, 1e-9);
    ASSERT_EQ(sketch.points.size(), 2u);
    EXPECT_EQ(sketch.points[0].volts, 0.5);
    EXPECT_EQ(sketch.points[1].pressure, 250);
    EXPECT_FALSE(sketch.former);
    EXPECT_EQ(sketch.words,
              "Line from -8.8 kPa at 0 V to 278.8 kPa at 5 V, through 0.5 V at 20 kPa and 4.5 V at 250 kPa.");
}

TEST_F(SensorManagerTest, AnEntryThatMakesNoLineSaysWhy) {
    beginNew();
    EXPECT_EQ(manager.sketch({}).why, "Low point volts: no value yet.");
    EXPECT_EQ(manager.sketch(points("0.5", "x", "", "")).why, "High point volts: x not a valid number");
    EXPECT_EQ(manager.sketch(points("0.5", "4.5", "9", "3")).why,
              "Low point pressure: 9 Must be smaller than 3");
    EXPECT_EQ(manager.sketch(points("0.5", "x", "", "")).words,
              "No line. High point volts: x not a valid number");
    EXPECT_FALSE(manager.sketch(points("0.5", "4.5", "9", "9")).drawn);
}

TEST_F(SensorManagerTest, WhileEditingTheStoredLineStaysInThePicture) {
    beginEdit(sharp);
    const SensorSketch sketch = manager.sketch(points("0.5", "4.5", "20", "250"));
    ASSERT_TRUE(sketch.former);
    EXPECT_NEAR(sketch.former->front(), 10, 1e-9);
    EXPECT_NEAR(sketch.former->back(), 260, 1e-9);
    EXPECT_FALSE(manager.sketch(points("0.5", "4.5", "3", "30", psiaCode)).former)
        << "lines of two units cannot be compared";
}

}  // namespace
}  // namespace zentaq
