// A slice of what bench/link_soak runs for a day: twenty minutes of ticks, shared by units of every kind.
#include <gtest/gtest.h>

#include "link/soak_rig.h"

namespace zentaq {
namespace {

struct SoakCase {
    const char* model;
    unsigned seed;
};

class LinkSoak : public testing::TestWithParam<SoakCase> {};

TEST_P(LinkSoak, NothingIsEverStuckOrLeftBehindAndTheLinkIsBackInItsToldTime) {
    constexpr std::int64_t twoAndAHalfMinutes = 150'000;
    Soak soak({.seed = GetParam().seed, .model = GetParam().model, .ticks = twoAndAHalfMinutes});
    soak.run();
    EXPECT_EQ(soak.broken(), "");
    // It was a life, not a silence.
    EXPECT_GE(soak.counts().ticks, twoAndAHalfMinutes);
    const auto& of = soak.counts().of;
    EXPECT_TRUE(of.contains("recovered"));
    EXPECT_TRUE(of.contains("written line"));
}

INSTANTIATE_TEST_SUITE_P(Units, LinkSoak,
                         testing::Values(SoakCase{"A", 1}, SoakCase{"A", 14}, SoakCase{"A 6/12", 3},
                                         SoakCase{"L", 7}, SoakCase{"C", 13}, SoakCase{"D", 8},
                                         SoakCase{"D6", 9}, SoakCase{"PZK-2", 6}),
                         [](const auto& row) { return "Seed" + std::to_string(row.param.seed); });

}  // namespace
}  // namespace zentaq
