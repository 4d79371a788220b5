#include "live/dashboard_picture.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

TEST(DashboardPictureNames, FollowModeScaleAndKind) {
    EXPECT_EQ(dashboardPictureName(false, 9000, true), "DashBoard_9000_Black.jpg");
    EXPECT_EQ(dashboardPictureName(false, 18000, true), "Dashboard_18000_Black.jpg");
    EXPECT_EQ(dashboardPictureName(false, 9000, false), "DashBoard_9000_PZK2_Black.jpg");
    EXPECT_EQ(dashboardPictureName(false, 18000, false), "DashBoard_18000_PZK2_Black.jpg");
    EXPECT_EQ(dashboardPictureName(true, 9000, true), "DashBoard_9000_White.bmp");
    EXPECT_EQ(dashboardPictureName(true, 18000, true), "Dashboard_18000_White.bmp");
    EXPECT_EQ(dashboardPictureName(true, 9000, false), "DashBoard_9000_PZK2_White.bmp");
    EXPECT_EQ(dashboardPictureName(true, 18000, false), "DashBoard_18000_PZK2_White.bmp");
}

struct Placed {
    Needle needle;
    double x, y, length;
};

TEST(DashboardPictureNeedles, TurnAroundTheirCentres) {
    for (const Placed& row : {Placed{Needle::Tachometer, 223, 99, 93}, Placed{Needle::TPS, 352, 59, 50},
                              Placed{Needle::Coolant, 409, 85, 50}, Placed{Needle::MAT, 563, 85, 50},
                              Placed{Needle::VOLT, 352, 138, 50}, Placed{Needle::IAC, 211, 139, 50}}) {
        const NeedlePlace place = needlePlace(row.needle);
        EXPECT_EQ(place.centre.x, row.x);
        EXPECT_EQ(place.centre.y, row.y);
        EXPECT_EQ(place.length, row.length);
    }
    EXPECT_EQ(needlePlace(Needle::AFR).centre.x, 120);
    EXPECT_EQ(needlePlace(Needle::AFR).centre.y, 72);
}

TEST(DashboardPictureNeedles, PointUpAtZeroAndTurnClockwise) {
    const NeedlePlace tachometer = needlePlace(Needle::Tachometer);
    const auto expectEnd = [&](double degrees, double x, double y) {
        const PicturePoint end = needleEnd(tachometer, degrees);
        EXPECT_NEAR(end.x, x, 1e-9) << degrees;
        EXPECT_NEAR(end.y, y, 1e-9) << degrees;
    };
    expectEnd(0, 223, 6);
    expectEnd(90, 316, 99);
    expectEnd(180, 223, 192);
    expectEnd(-90, 130, 99);
    expectEnd(30, 223 + 46.5, 99 - 93 * 0.8660254037844386);
    EXPECT_NEAR(needleEnd(tachometer, 90, 0.5).x, 223 + 46.5, 1e-9);
}

}  // namespace
}  // namespace zentaq
