#include "app/data_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace zentaq {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

std::vector<std::string> texts(const std::vector<DataPointWrite>& writes) {
    std::vector<std::string> lines;
    for (const DataPointWrite& write : writes) lines.push_back(write.key + "=" + write.value);
    return lines;
}

TEST(DataPoints, AreTheFortyNineValuesOfTheUnitAndItsSixteenPinsInTheOrderOfTheStoredPlaces) {
    const std::vector<std::string_view> values{"RPM",
                                               "MAP",
                                               "Throttle Position Sensor",
                                               "Coolant Temp",
                                               "Manifold Air Temp",
                                               "Battery Voltage",
                                               "KNOCK",
                                               "EGO Volts",
                                               "CHKE",
                                               "Ignition Advance",
                                               "Secondary Advance",
                                               "Knock Retard",
                                               "GAMA",
                                               "IPP",
                                               "Primary Dutycycle",
                                               "Pulse ON Time",
                                               "Pulse OFF Time",
                                               "Staged Dutycycle",
                                               "Staged Pulse ON",
                                               "Staged Pulse OFF",
                                               "Secondary Percent",
                                               "EGO Correction",
                                               "DAFR",
                                               "AFR",
                                               "IAC Position",
                                               "IACD",
                                               "INJ_TOG",
                                               "SEN_MAP",
                                               "INJ_VE",
                                               "INJ_MAT",
                                               "INJ_CLT",
                                               "INJ_BARO",
                                               "INJ_SE0",
                                               "INJ_ASE0",
                                               "INJ_ASE1",
                                               "MAPACCL",
                                               "TPSACCL",
                                               "INJ_ACE2",
                                               "INJ_ACE5",
                                               "INJ_ACE6",
                                               "INJ_VLTCOMP",
                                               "SEN_BLEND",
                                               "INJ_STAGE",
                                               "ADV_TBL",
                                               "ADV_CLT",
                                               "ADV_MAT",
                                               "ADV_BARO",
                                               "ADV_IDLE",
                                               "ISRPM"};
    ASSERT_EQ(values.size(), 49U);
    const auto names = dataPointNames();
    ASSERT_EQ(names.size(), 65U);
    EXPECT_THAT(std::vector(names.begin(), names.begin() + 49), ElementsAreArray(values));
    for (std::size_t pin = 1; pin <= 16; ++pin) EXPECT_EQ(names[48 + pin], "GPIO" + std::to_string(pin));
}

TEST(DataPoints, HaveDistinctNames) {
    const auto names = dataPointNames();
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), 65u);
}

TEST(StoredDataPoints, AreUnusedBeforeAnyWasChosen) {
    EXPECT_THAT(storedDataPoints(MemorySettings()), Each(0));
}

TEST(StoredDataPoints, ReadTenKeysWithoutABlankAndNoMore) {
    MemorySettings settings;
    settings.set("Datalog", "Datalog1", "1");
    settings.set("Datalog", "Datalog2", "65");
    settings.set("Datalog", "Datalog10", "24");
    settings.set("Datalog", "Datalog11", "7");
    settings.set("Datalog", "Datalog 3", "9");
    EXPECT_THAT(storedDataPoints(settings), ElementsAre(1, 65, 0, 0, 0, 0, 0, 0, 0, 24));
}

TEST(StoredDataPoints, TakeAnOddTextForAnUnusedSlot) {
    MemorySettings settings;
    settings.set("Datalog", "Datalog1", "RPM");
    settings.set("Datalog", "Datalog2", "66");
    settings.set("Datalog", "Datalog3", "-1");
    settings.set("Datalog", "Datalog4", "0");
    settings.set("Datalog", "Datalog5", "1e9");
    EXPECT_THAT(storedDataPoints(settings), Each(0));
}

TEST(DataPointWrites, EmptyAllTenSlotsBeforeTheChoiceIsWritten) {
    EXPECT_THAT(
        texts(dataPointWrites({3, 17})),
        ElementsAre("Datalog1=0", "Datalog2=0", "Datalog3=0", "Datalog4=0", "Datalog5=0", "Datalog6=0",
                    "Datalog7=0", "Datalog8=0", "Datalog9=0", "Datalog10=0", "Datalog1=3", "Datalog2=17"));
}

TEST(DataPointWrites, GoOnAboveTenWhereNobodyReads) {
    std::vector<int> places;
    for (int place = 1; place <= 12; ++place) places.push_back(place);
    const auto writes = texts(dataPointWrites(places));
    ASSERT_EQ(writes.size(), 22u);
    EXPECT_EQ(writes[19], "Datalog10=10");
    EXPECT_EQ(writes[20], "Datalog11=11");
    EXPECT_EQ(writes[21], "Datalog12=12");
}

}  // namespace
}  // namespace zentaq
