// How well one colour is seen on another.
#pragma once

#include <QColor>
#include <optional>

namespace zentaq {

/// The least contrast at which a thing is seen on its ground, by the usual measure of 1 to 21.
constexpr double leastContrast = 3;

/// 1 for equal colours, 21 for black and white.
double contrast(const QColor& one, const QColor& other);

/// The outline that a colour needs on a ground; nothing where it is seen well without.
std::optional<QColor> outlineFor(const QColor& ink, const QColor& ground);

/// Black or white, whichever reads better on a ground.
QColor inkFor(const QColor& ground);

}  // namespace zentaq
