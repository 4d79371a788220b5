#include "qt/contrast.h"

#include "base/contrast.h"

namespace zentaq {

double contrast(const QColor& one, const QColor& other) {
    return contrastOf(one.rgb() & RGB_MASK, other.rgb() & RGB_MASK);
}

std::optional<QColor> outlineFor(const QColor& ink, const QColor& ground) {
    if (contrast(ink, ground) >= leastContrast) return std::nullopt;
    return inkFor(ground);
}

QColor inkFor(const QColor& ground) {
    return QColor::fromRgb(inkOn(ground.rgb() & RGB_MASK));
}

}  // namespace zentaq
