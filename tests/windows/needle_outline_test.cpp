// A needle is seen whatever color it has, by day and by night.
#include <QApplication>

#include "qt/contrast.h"
#include "windows/gauge_widget.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class NeedleOutline : public WindowTest, public testing::WithParamInterface<bool> {
 protected:
    /// Across a needle that stands upright, halfway to its tip, from left to right.
    static std::vector<QColor> across(const QColor& needle) {
        GaugeFace face;
        face.name = "Test";
        face.bounds = QRectF(-1, -1, 2, 2);
        face.ticks = {{-130, "0"}, {130, "9"}};
        GaugeWidget gauge(face, nullptr, nullptr);
        gauge.setColors(colors());
        gauge.setNeedleColor(needle);
        gauge.setAngle(0);
        gauge.resize(300, 300);
        const QImage picture = gauge.grab().toImage();
        std::vector<QColor> colors;
        for (int x = 130; x < 170; ++x) colors.push_back(picture.pixelColor(x, 80));
        return colors;
    }
    static DashColors colors() { return dashColors(GetParam()); }
    static void expectSeen(const QColor& needle) {
        SCOPED_TRACE(needle.name().toStdString());
        const QColor face = colors().face;
        const std::vector<QColor> seen = across(needle);
        ASSERT_EQ(seen.front(), face);
        ASSERT_EQ(seen.back(), face);
        EXPECT_EQ(seen[20], needle);
        double left = 0;
        double right = 0;
        for (std::size_t i = 0; i < 20; ++i) left = std::max(left, contrast(seen[i], face));
        for (std::size_t i = 20; i < 40; ++i) right = std::max(right, contrast(seen[i], face));
        EXPECT_GE(left, 3);
        EXPECT_GE(right, 3);
    }
};

TEST_P(NeedleOutline, TheFourColorsOfTheMixtureAreSeen) {
    for (const auto& color : {QColor(255, 255, 0), QColor(0, 255, 0), QColor(255, 0, 0), QColor(0, 0, 255)}) {
        expectSeen(color);
    }
}

TEST_P(NeedleOutline, EveryColorOfTheUsersIsSeen) {
    for (int red = 0; red <= 255; red += 85) {
        for (int green = 0; green <= 255; green += 85) {
            for (int blue = 0; blue <= 255; blue += 85) expectSeen(QColor(red, green, blue));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Dials, NeedleOutline, testing::Bool(),
                         [](const auto& one) { return one.param ? "ByDay" : "ByNight"; });

}  // namespace
}  // namespace zentaq
