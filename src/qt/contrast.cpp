#include "qt/contrast.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

/// Share of light of one part of a colour, 0 to 1, as screens show it.
double lightOf(double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * lightOf(color.redF()) + 0.7152 * lightOf(color.greenF()) +
           0.0722 * lightOf(color.blueF());
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

std::optional<QColor> outlineFor(const QColor& ink, const QColor& ground) {
    if (contrast(ink, ground) >= leastContrast) return std::nullopt;
    return inkFor(ground);
}

QColor inkFor(const QColor& ground) {
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return contrast(black, ground) >= contrast(white, ground) ? black : white;
}

}  // namespace zentaq
