#include "logs/log_conditions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testing/memory_settings.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

TEST(LogConditions, TheNewestStandsInFront) {
    MemorySettings settings;
    LogConditions conditions(settings);
    EXPECT_TRUE(conditions.all().empty());
    conditions.used("RPM > 3000");
    conditions.used(" MAP > 80 ");
    EXPECT_THAT(conditions.all(), ElementsAre("MAP > 80", "RPM > 3000"));
    conditions.used("RPM > 3000");
    EXPECT_THAT(LogConditions(settings).all(), ElementsAre("RPM > 3000", "MAP > 80"));
}

TEST(LogConditions, AnEmptyOneIsNotKept) {
    MemorySettings settings;
    LogConditions conditions(settings);
    conditions.used("  ");
    EXPECT_TRUE(conditions.all().empty());
}

TEST(LogConditions, TheOldestGoesWhereThereIsNoPlaceMore) {
    MemorySettings settings;
    LogConditions conditions(settings);
    for (int i = 0; i <= LogConditions::most; ++i) conditions.used("RPM > " + std::to_string(i));
    const auto all = conditions.all();
    ASSERT_EQ(all.size(), 20U);
    EXPECT_EQ(all.front(), "RPM > 20");
    EXPECT_EQ(all.back(), "RPM > 1");
}

}  // namespace
}  // namespace zentaq
