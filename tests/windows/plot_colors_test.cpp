// The colors of lines in a plot: seen, read, and told apart by everybody.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "qt/contrast.h"
#include "qt/look.h"

namespace zentaq {
namespace {

using Three = std::array<double, 3>;
using Eyes = std::array<Three, 3>;

/// Machado, Oliveira and Fernandes 2009, severity 1.
constexpr Eyes usual{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Eyes blindToRed{
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr Eyes blindToGreen{
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};

double dot(const Three& row, const Three& light) {
    return row[0] * light[0] + row[1] * light[1] + row[2] * light[2];
}

Three lightOf(const QColor& color) {
    const auto part = [](double share) {
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return {part(color.redF()), part(color.greenF()), part(color.blueF())};
}

/// CIE L*a*b* at D65.
Three labOf(const Eyes& eyes, const QColor& color) {
    Three seen{};
    for (std::size_t i = 0; i < 3; ++i) seen[i] = std::clamp(dot(eyes[i], lightOf(color)), 0.0, 1.0);
    const auto curve = [](double share) {
        return share > 0.008856 ? std::cbrt(share) : 7.787 * share + 16.0 / 116;
    };
    const double x = curve(dot({0.4124, 0.3576, 0.1805}, seen) / 0.9505);
    const double y = curve(dot({0.2126, 0.7152, 0.0722}, seen));
    const double z = curve(dot({0.0193, 0.1192, 0.9505}, seen) / 1.089);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(const Eyes& eyes, const QColor& one, const QColor& other) {
    const Three a = labOf(eyes, one);
    const Three b = labOf(eyes, other);
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

using PlotColors = testing::TestWithParam<DisplayMode>;

TEST_P(PlotColors, AreAtLeastEightThatAreReadOnTheirGrounds) {
    const auto colors = plotColors(GetParam());
    EXPECT_GE(colors.size(), 8U);
    for (const QColor& color : colors) {
        EXPECT_GE(contrast(color, lookColors(GetParam()).surface), leastTextContrast)
            << color.name().toStdString();
        EXPECT_GE(contrast(color, lookColors(GetParam()).background), leastMarkContrast)
            << color.name().toStdString();
    }
}

// A difference of 2.3 is just seen side by side; thin lines want ten times that.
TEST_P(PlotColors, AreToldApartAlsoByWhoIsBlindToRedOrGreen) {
    const auto colors = plotColors(GetParam());
    for (const Eyes& eyes : {usual, blindToRed, blindToGreen}) {
        for (std::size_t i = 0; i < colors.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_GE(distance(eyes, colors[i], colors[j]), 23)
                    << colors[i].name().toStdString() << " and " << colors[j].name().toStdString();
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ByDayAndNight, PlotColors, testing::Values(DisplayMode::Day, DisplayMode::Night),
                         [](const auto& mode) { return mode.param == DisplayMode::Day ? "Day" : "Night"; });

}  // namespace
}  // namespace zentaq
