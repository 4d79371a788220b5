#include "live/dashboard_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace zentaq {
namespace {

/// As it is at 100 %.
DashRoom room(int width, int height) {
    return {.width = width,
            .height = height,
            .gap = 4,
            .tileWidth = 108,
            .tileHeight = 38,
            .dialReadout = 70,
            .status = 0,
            .fuel = true};
}
bool shows(const DashPlan& plan, std::string_view name) {
    return std::ranges::find(plan.tiles, name, &DashPlace::name) != plan.tiles.end() ||
           std::ranges::find(plan.dials, name, &DashPlace::name) != plan.dials.end();
}
bool overlap(const DashArea& one, const DashArea& other) {
    return one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height &&
           other.y < one.y + one.height;
}

constexpr std::pair<int, int> rooms[] = {{1358, 164}, {1912, 250}, {902, 112}, {675, 80},
                                         {675, 38},   {1358, 340}, {444, 38}};

TEST(DashboardPlan, NothingOverlapsNorLeavesTheRoomNorIsTooSmall) {
    for (const auto& [width, height] : rooms) {
        for (const int status : {0, 150}) {
            DashRoom given = room(width, height);
            given.status = status;
            const DashPlan plan = planDashboard(given, tileOrder(), 0);
            std::vector<DashArea> all;
            for (const auto& place : plan.dials) all.push_back(place.area);
            for (const auto& place : plan.tiles) all.push_back(place.area);
            if (plan.more.width > 0) all.push_back(plan.more);
            if (plan.status.width > 0) all.push_back(plan.status);
            for (std::size_t i = 0; i < all.size(); ++i) {
                EXPECT_GE(all[i].x, 0);
                EXPECT_GE(all[i].y, 0);
                EXPECT_LE(all[i].x + all[i].width, width) << width << "x" << height;
                EXPECT_LE(all[i].y + all[i].height, height) << width << "x" << height;
                for (std::size_t k = 0; k < i; ++k) EXPECT_FALSE(overlap(all[i], all[k])) << width;
            }
        }
    }
}

TEST(DashboardPlan, OneLineHasTheFirstReadOutsBehindTheLampsThatAreLitAndNoDials) {
    DashRoom line = room(652, 20);
    line.oneLine = true;
    line.tileWidth = 140;
    const std::string_view calm[] = {"lblTach", "lblAAFR", "lblMAP", "lblADV", "lblCLT"};
    DashPlan plan = planDashboard(line, calm, 0);
    EXPECT_TRUE(plan.dials.empty());
    ASSERT_EQ(plan.tiles.size(), 3u);
    EXPECT_EQ(plan.tiles[0].name, "lblTach");
    EXPECT_EQ(plan.tiles[2].name, "lblMAP");
    EXPECT_GT(plan.more.width, 0);
    for (const DashPlace& tile : plan.tiles) EXPECT_EQ(tile.area.height, 20);

    const std::string_view alarm[] = {"shpOverRev", "lblTach", "lblAAFR", "lblMAP", "lblADV"};
    line.width = 430;
    plan = planDashboard(line, alarm, 0);
    EXPECT_TRUE(shows(plan, "shpOverRev")) << "also where hardly anything has room";
    EXPECT_TRUE(shows(plan, "lblTach"));
}

TEST(DashboardPlan, ACodeHasItsPlaceInAnyRoomAndNothingStandsBelowIt) {
    for (const bool oneLine : {true, false}) {
        for (const auto& [width, height] : rooms) {
            DashRoom given = room(width, oneLine ? 20 : height);
            given.oneLine = oneLine;
            given.status = oneLine ? 0 : 150;
            given.codes = 220;
            const DashPlan plan = planDashboard(given, tileOrder(), 0);
            EXPECT_GE(plan.status.width, 150) << width;
            EXPECT_LE(plan.status.width, std::max(width / 2, 150)) << width;
            EXPECT_EQ(plan.status.height, given.height);
            EXPECT_EQ(plan.status.x + plan.status.width, width);
            EXPECT_FALSE(plan.tiles.empty()) << width;
            for (const DashPlace& tile : plan.tiles) EXPECT_FALSE(overlap(tile.area, plan.status)) << width;
            EXPECT_FALSE(overlap(plan.more, plan.status)) << width;
            given.codes = 0;
            given.status = 0;
            EXPECT_EQ(planDashboard(given, tileOrder(), 0).status.width, 0) << width;
        }
    }
}

TEST(DashboardPlan, WhereTwoLampsAreLitOnAShortLineNothingStandsOnAnother) {
    DashRoom line = room(330, 20);
    line.oneLine = true;
    for (const int codes : {0, 100}) {
        line.codes = codes;
        const DashPlan plan = planDashboard(line, tileOrder(), 0);
        for (std::size_t i = 0; i < plan.tiles.size(); ++i) {
            EXPECT_FALSE(overlap(plan.tiles[i].area, plan.more)) << codes;
            for (std::size_t k = 0; k < i; ++k) EXPECT_FALSE(overlap(plan.tiles[i].area, plan.tiles[k].area));
        }
        EXPECT_TRUE(shows(plan, "shpCheckEngine"));
    }
}

TEST(DashboardPlan, EveryReadOutIsOnSomePageOrBesideItsDial) {
    for (const auto& [width, height] : rooms) {
        std::set<std::string_view> seen;
        const int pages = planDashboard(room(width, height), tileOrder(), 0).pages;
        for (int page = 0; page < pages; ++page) {
            const DashPlan plan = planDashboard(room(width, height), tileOrder(), page);
            EXPECT_EQ(plan.page, page);
            for (const auto& place : plan.tiles) seen.insert(place.name);
            for (const auto& place : plan.dials) seen.insert(readoutOfDial(place.name));
        }
        for (const std::string_view name : tileOrder()) {
            // The unit of the temperatures is left out where it would be alone in a column, see below.
            if (name == "lblTemp") continue;
            EXPECT_TRUE(seen.contains(name)) << name << width;
        }
    }
}

TEST(DashboardPlan, TheUnitOfTheTemperaturesHasNoColumnOfItsOwn) {
    int alone = 0;
    int beside = 0;
    // All tiles on one page: a wide room without dials and without the room for them.
    for (int width = 1200; width <= 3000; width += 50) {
        for (const int height : {100, 170, 240, 310}) {
            const DashPlan plan = planDashboard(room(width, height), tileOrder(), 0);
            if (plan.pages > 1) continue;
            const auto unit = std::ranges::find(plan.tiles, "lblTemp", &DashPlace::name);
            if (unit == plan.tiles.end()) {
                ++alone;
                continue;
            }
            ++beside;
            EXPECT_GT(std::ranges::count_if(
                          plan.tiles, [&](const DashPlace& tile) { return tile.area.x == unit->area.x; }),
                      1)
                << width << " " << height;
        }
    }
    EXPECT_GT(alone, 0);
    EXPECT_GT(beside, 0);
}

TEST(DashboardPlan, ALaptopShowsAllDialsAndTheFirstTiles) {
    const DashPlan plan = planDashboard(room(1358, 164), tileOrder(), 0);
    EXPECT_EQ(plan.dials.size(), 7u);
    for (const char* name : {"Tachometer", "AFR", "lblTach", "lblAAFR", "lblMAP", "lblADV", "shpOverRev"}) {
        EXPECT_TRUE(shows(plan, name)) << name;
    }
    EXPECT_FALSE(shows(plan, "lblCLT"));  // beside its dial
}

TEST(DashboardPlan, ALowRoomShowsTilesInPlaceOfDials) {
    const DashPlan plan = planDashboard(room(675, 38), tileOrder(), 0);
    EXPECT_TRUE(plan.dials.empty());
    EXPECT_TRUE(shows(plan, "lblTach"));
    EXPECT_GT(plan.pages, 1);
    EXPECT_GT(plan.more.width, 0);
}

TEST(DashboardPlan, APageBehindTheLastOneBeginsAnew) {
    const DashPlan first = planDashboard(room(675, 80), tileOrder(), 0);
    const DashPlan again = planDashboard(room(675, 80), tileOrder(), first.pages);
    EXPECT_EQ(again.page, 0);
    EXPECT_EQ(again.tiles.back().name, first.tiles.back().name);
}

TEST(DashboardPlan, AUnitThatOnlyIgnitesHasNoFuelDialsAndWiderTiles) {
    DashRoom given = room(1358, 164);
    given.fuel = false;
    const std::vector<std::string_view> few{"shpCheckEngine", "shpOverRev", "lblTach", "lblMAP", "lblADV"};
    const DashPlan plan = planDashboard(given, few, 0);
    for (const char* name : {"AFR", "Coolant", "MAT", "IAC"}) EXPECT_FALSE(shows(plan, name)) << name;
    EXPECT_TRUE(shows(plan, "VOLT"));
    EXPECT_EQ(plan.pages, 1);
    EXPECT_GE(plan.tiles.front().area.width, 300);
}

}  // namespace
}  // namespace zentaq
