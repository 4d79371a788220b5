#include "app/data_points.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "testing/memory_settings.h"

namespace zentaq {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

std::vector<std::string> texts(const std::vector<DataPointWrite>& writes) {
    std::vector<std::string> lines;
    for (const DataPointWrite& write : writes) lines.push_back(write.key + "=" + write.value);
    return lines;
}

// The names stand in tests/live/channels_test.cpp.
TEST(DataPoints, AreTheChannelsInTheOrderOfTheStoredPlacesWithSixteenPinsFromTheFiftiethOn) {
    const auto names = dataPointNames();
    ASSERT_EQ(names.size(), channels.size() + 16);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool pin = i >= 49 && i < 65;
        const std::string pinName = "GPIO" + std::to_string(i - 48);
        EXPECT_EQ(names[i], pin ? pinName : channels[i < 49 ? i : i - 16].dataPoint) << i;
    }
    EXPECT_EQ(names[0], "RPM");
    EXPECT_EQ(names[23], "AFR");
    EXPECT_EQ(names[48], "ISRPM");
    EXPECT_EQ(names[64], "GPIO16");
}

TEST(DataPoints, TellTheirChannelOrPin) {
    EXPECT_EQ(dataPointChannel(1), "RPM");
    EXPECT_EQ(dataPointChannel(3), "TPS");
    EXPECT_EQ(dataPointChannel(50), "GPIO1");
    EXPECT_EQ(dataPointChannel(65), "GPIO16");
    for (const int none : {0, -1, dataPointCount + 1}) EXPECT_EQ(dataPointChannel(none), "");
}

TEST(DataPoints, HaveDistinctNames) {
    const auto names = dataPointNames();
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());
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
    settings.set("Datalog", "Datalog2", std::to_string(dataPointCount + 1));
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
