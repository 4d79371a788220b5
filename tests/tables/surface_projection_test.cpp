// Where the points of a surface stand, worked out by hand: 30 degrees, 3550 * 2.75 / 5 = 1952.5 to the back.
#include "tables/surface_projection.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr double leftOfAll = 1952.5 * 0.8660254037844387;
constexpr double upOfAll = 1952.5 * 0.5;

TEST(SurfaceProjection, TheNearCornerStandsAtTheFootBesideTheWayToTheBack) {
    const SurfaceProjection eight(8, 8);
    const SurfacePoint near = eight.at(1, 1, 0);
    EXPECT_NEAR(near.x, leftOfAll, 1e-3);
    EXPECT_NEAR(near.y, 5550 + upOfAll, 1e-3);
}

TEST(SurfaceProjection, RowsGoBackToTheLeftAndUp) {
    const SurfaceProjection all(16, 8);
    const SurfacePoint far = all.at(16, 1, 0);
    EXPECT_NEAR(far.x, 0, 1e-3);
    EXPECT_NEAR(far.y, 5550, 1e-3);
    const SurfacePoint one = all.at(2, 1, 0);
    EXPECT_NEAR(one.x, leftOfAll * 14 / 15, 1e-3);
    EXPECT_NEAR(one.y, 5550 + upOfAll * 14 / 15, 1e-3);
}

TEST(SurfaceProjection, ColumnsGoToTheRightAndValuesUpInWholeSteps) {
    const SurfaceProjection eight(8, 8);
    EXPECT_NEAR(eight.at(1, 8, 0).x, leftOfAll + 5650, 1e-3);
    EXPECT_NEAR(eight.at(1, 3, 0).x, leftOfAll + 5650.0 * 2 / 7, 1e-3);
    EXPECT_NEAR(eight.at(1, 1, 1).y, upOfAll, 1e-3);
    // A third of 5550 is 1850; a seventh is 792.86, of which the whole part counts.
    EXPECT_NEAR(eight.at(1, 1, 1.0 / 7).y, 5550 + upOfAll - 792, 1e-3);
}

TEST(SurfaceProjection, FillsItsWidthAndHeight) {
    const SurfaceProjection all(16, 16);
    EXPECT_NEAR(all.width(), 5650 + leftOfAll, 1e-3);
    EXPECT_NEAR(all.heightOfAll(), 5550 + upOfAll, 1e-3);
    EXPECT_NEAR(all.at(16, 16, 1).y, 0, 1e-3);
}

}  // namespace
}  // namespace zentaq
