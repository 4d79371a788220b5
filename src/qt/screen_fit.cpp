#include "qt/screen_fit.h"

#include <algorithm>

namespace zentaq {

namespace {

qint64 area(const QRect& rectangle) {
    return rectangle.isEmpty() ? 0 : qint64{rectangle.width()} * rectangle.height();
}

QRect screenShowingMost(const QRect& wanted, const QList<QRect>& screens) {
    return *std::max_element(screens.begin(), screens.end(), [&](const QRect& one, const QRect& other) {
        return area(one & wanted) < area(other & wanted);
    });
}

}  // namespace

QRect fittedOnScreens(const QRect& wanted, const QList<QRect>& screens) {
    if (screens.isEmpty()) return wanted;
    const QRect screen = screenShowingMost(wanted, screens);
    const QSize size = wanted.size().boundedTo(screen.size());
    const int x = std::clamp(wanted.x(), screen.x(), screen.x() + screen.width() - size.width());
    const int y = std::clamp(wanted.y(), screen.y(), screen.y() + screen.height() - size.height());
    return {QPoint(x, y), size};
}

}  // namespace zentaq
