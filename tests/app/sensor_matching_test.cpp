#include "app/sensor_matching.h"

#include <gmock/gmock.h>

#include "app/sensor_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class SensorMatching : public SensorSession {
 protected:
    SensorMatching() {
        session.makeUnits();
        session.CurrentUnit(3);
        unit().FW_Release(5);
        use(0.125F, 0.625F, "PSIA");
    }
    Unit& unit() { return session.currentUnitObject(); }
    /// Gives the calibration in hand a sensor.
    void use(float scale, float offset, const char* units) {
        unit().AssignDirectIndex(scale, 126);
        unit().AssignDirectIndex(offset, 127);
        unit().MAPUnits(units);
    }
};

// (0 - 0.625) / 0.125 = -5; (5 - 0.625) / 0.125 = 35
constexpr auto unknownPsia = "Unknown (Range: -5 to 35 PSIA)";

TEST_F(SensorMatching, AKnownSensorIsNamedWithoutAQuestion) {
    use(0.0251F, -0.2209F, "kPa");
    EXPECT_EQ(matchSensor(session), "2 BAR (9-208 kPa)");
    EXPECT_EQ(sensorNameQuietly(session), "2 BAR (9-208 kPa)");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, ACalibrationWithoutASensorUsesTheStandardOne) {
    use(0, 0, "kPa");
    EXPECT_EQ(matchSensor(session), "1 BAR (10-105 kPa)");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, AnUnknownSensorIsToldByItsRangeAndNothingIsAskedQuietly) {
    EXPECT_EQ(sensorNameQuietly(session), unknownPsia);
    EXPECT_THAT(boxes(), IsEmpty());
}

// (0 - 0.202) / 0.03 = -6.733; (5 - 0.202) / 0.03 = 159.933: from 100 up one decimal is shown
TEST_F(SensorMatching, TheLimitsOfAnUnknownSensorAreRoundedToWhatSuitsItsUpperEnd) {
    use(0.03F, 0.202F, "kPa");
    EXPECT_EQ(sensorNameQuietly(session), "Unknown (Range: -6.7 to 159.9 kPa)");
}

TEST_F(SensorMatching, AnUnknownSensorIsOffered) {
    answer(Answer::No);
    EXPECT_EQ(matchSensor(session), unknownPsia);
    ASSERT_EQ(boxes().size(), 1u);
    EXPECT_EQ(lastBox().title, "Add Sensor?");
    EXPECT_EQ(lastBox().text,
              "The sensor used in this program is not in your sensor database.\n"
              "Would you like to add it?");
    EXPECT_EQ(lastBox().buttons, Buttons::YesNo);
    EXPECT_EQ(sensorChanges(), 0);
}

TEST_F(SensorMatching, TheOfferComesBackUntilTheSensorIsAdded) {
    answer(Answer::No);
    matchSensor(session);
    answer(Answer::Yes);
    type("Boost");
    EXPECT_EQ(matchSensor(session), "Boost (PSIA)");
    boxes().clear();
    EXPECT_EQ(matchSensor(session), "Boost (PSIA)");
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, AnAddedSensorHoldsTheNumbersOfTheCalibration) {
    answer(Answer::Yes);
    type("Boost");
    EXPECT_EQ(matchSensor(session), "Boost (PSIA)");
    EXPECT_EQ(lastBox().title, "Sensor Name");
    EXPECT_THAT(lastBox().text, HasSubstr("Enter a description for this MAP sensor:"));
    const MapSensorRow row = stored("Boost (PSIA)");
    EXPECT_FLOAT_EQ(row.scale, 0.125F);
    EXPECT_FLOAT_EQ(row.offset, 0.625F);
    EXPECT_EQ(row.units, 2);
    EXPECT_EQ(sensorChanges(), 1);
}

TEST_F(SensorMatching, AnEmptyNameAddsNothing) {
    const std::size_t before = sensorCount();
    answer(Answer::Yes);
    type("");
    EXPECT_EQ(matchSensor(session), unknownPsia);
    answer(Answer::Yes);  // and no name at all: the prompt is dismissed
    EXPECT_EQ(matchSensor(session), unknownPsia);
    EXPECT_EQ(sensorCount(), before);
    EXPECT_EQ(sensorChanges(), 0);
}

TEST_F(SensorMatching, ANameWithAnApostropheComesBackWhole) {
    answer(Answer::Yes);
    type("Bob's");
    EXPECT_EQ(matchSensor(session), "Bob's (PSIA)");
    EXPECT_EQ(sensorNameQuietly(session), "Bob's (PSIA)");
}

TEST_F(SensorMatching, ATakenNameIsToldAndAskedAgain) {
    add("Boost (PSIA)", 0.3F, 0.3F, 2);
    answer(Answer::Yes);
    type("Boost");
    type("Boost 2");
    fake.dialogs.answers.push_back(Answer::Ok);
    EXPECT_EQ(matchSensor(session), "Boost 2 (PSIA)");
    EXPECT_EQ(boxes()[2].title, "Duplicate name");
}

TEST_F(SensorMatching, AFlowMeterIsAddedAsOne) {
    use(0.0513F, 0.1037F, "%Flow");
    answer(Answer::Yes);
    type("Meter");
    EXPECT_EQ(matchSensor(session), "Meter (%Flow)");
    EXPECT_EQ(stored("Meter (%Flow)").units, 6);
}

TEST_F(SensorMatching, WithoutADatabaseNothingIsAsked) {
    session.database.reset();
    EXPECT_EQ(matchSensor(session), unknownPsia);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, AWriteProtectedDatabaseIsNoReasonToAsk) {
    writeProtect();
    EXPECT_EQ(matchSensor(session), unknownPsia);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, ALockedDatabaseIsNoReasonToAsk) {
    const WritingProgram other(path);
    EXPECT_EQ(matchSensor(session), unknownPsia);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(SensorMatching, WithoutACalibrationThereIsNoSensor) {
    session.CurrentUnit(0);
    EXPECT_EQ(matchSensor(session), "");
    EXPECT_THAT(boxes(), IsEmpty());
}

}  // namespace
}  // namespace zentaq
