// Records that change one or two bytes in a running unit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(OnTheFlyRecord, SmallBytesAndChecksumsHaveALeadingZero) {
    EXPECT_EQ(Unit::onTheFlyRecord(0, 5, 1), "S104110005E5");
    EXPECT_EQ(Unit::onTheFlyRecord(0, 15, 1), "S10411000FDB");
    EXPECT_EQ(Unit::onTheFlyRecord(0, 16, 1), "S104110010DA");
    EXPECT_EQ(Unit::onTheFlyRecord(0, 0xDB, 1), "S1041100DB0F");
    EXPECT_EQ(Unit::onTheFlyRecord(0, 0xDA, 1), "S1041100DA10");
    // 4 + 0x22 + 0x11 + 0xC0 = 0xF7, so the checksum is 8.
    EXPECT_EQ(Unit::onTheFlyRecord(34, 0xC0, 1), "S1041122C008");
}

TEST(OnTheFlyRecord, AWordIsSplitHighByteFirst) {
    // 5 + 0x3A + 0x11 + 0x21 + 0x34 = 0xA5
    EXPECT_EQ(Unit::onTheFlyRecord(58, 8500, 2), "S105113A21345A");
}

TEST(OnTheFlyRecord, TwoBytesAreTakenAsTheyAre) {
    // 5 + 0x08 + 0x13 + 0x55 + 0x80 = 0xF5
    EXPECT_EQ(Unit::onTheFlyRecord(520, 85.0, 128.0), "S105130855800A");
}

TEST(OnTheFlyRecord, ALoneByteIsCutToItsLastTwoDigits) {
    // 300 = 0x12C: 4 + 0x22 + 0x11 + 0x12C = 0x163
    EXPECT_EQ(Unit::onTheFlyRecord(34, 300, 1), "S10411222C9C");
    // -20 = 0xFFEC: 4 + 0x7F + 0x11 - 20 = 0x80
    EXPECT_EQ(Unit::onTheFlyRecord(127, -20, 1), "S104117FEC7F");
}

TEST(OnTheFlyRecord, TheTwoByteFormUsesANegativeNumbersDigitsWhole) {
    // -300 splits into -1 and 0xD4; the sum is 5 + 0x3A + 0x11 - 1 + 0xD4 = 0x123.
    EXPECT_EQ(Unit::onTheFlyRecord(58, -300, 2), "S105113A0FFFFD4DC");
}

TEST(OnTheFlyRecord, NumbersAreRoundedHalfToEven) {
    EXPECT_EQ(Unit::onTheFlyRecord(34, 126.5, 1), Unit::onTheFlyRecord(34, 126, 1));
    EXPECT_EQ(Unit::onTheFlyRecord(34, 127.5, 1), Unit::onTheFlyRecord(34, 128, 1));
}

TEST(OnTheFlyRecord, ANumberOfMoreThan16BitsIsAnOverflow) {
    EXPECT_THROW(Unit::onTheFlyRecord(34, 32768, 1), Overflow);
    EXPECT_THROW(Unit::onTheFlyRecord(34, 1.0, -40000.0), Overflow);
}

TEST(OnTheFly, AFailingLinkIsLoggedAndTheValueStays) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.host.linkFails = true;
    EXPECT_TRUE(cal.unit.set("KNK_MIN", 50));
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 50);
    EXPECT_THAT(cal.host.log, ElementsAre("ONFLY Conversion/Transmission Error; Data Not Sent."));
}

TEST(OnTheFly, NothingFromTheTailOfTheCalibrationIsSent) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    for (const Parameter& row : orbaKind().parameters) {
        if (row.index < 2194 || row.name == "INJTRIM" || row.name == "FuelTrim") continue;
        cal.unit.set(row.name, 1);
    }
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST(OnTheFly, AStoreWithoutChecksSendsNothing) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.store("KNK_MIN", 5000);
    cal.unit.store("INJTRIM", 3, 1);
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 5000);
    EXPECT_EQ(cal.unit.get("INJTRIM", 1), 3);
    EXPECT_THAT(cal.host.sent, IsEmpty());
    EXPECT_TRUE(cal.unit.ONFLY_MODE());
}

}  // namespace
}  // namespace zentaq::testing
