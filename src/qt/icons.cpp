#include "qt/icons.h"

#include <QByteArray>
#include <QPainter>
#include <QSvgRenderer>
#include <array>
#include <cmath>
#include <string_view>

namespace zentaq {

namespace {

/// Strokes on a field of 24 by 24.
struct Drawing {
    std::string_view name;
    std::string_view path;
};

constexpr std::array drawings{
    Drawing{"New", "M6 3h8l4 4v14H6z M14 3v4h4 M12 11v6 M9 14h6"},
    Drawing{"Open", "M3 6h6l2 2h8v3 M3 6v13h15l3-8H7l-4 8"},
    Drawing{"Save", "M4 4h13l3 3v13H4z M8 4v5h7V4 M7 20v-7h10v7"},
    Drawing{"Program", "M7 7h10v10H7z M10 3v4 M14 3v4 M10 17v4 M14 17v4 M3 10h4 M3 14h4 M17 10h4 M17 14h4"},
    Drawing{"Print", "M7 9V3h10v6 M7 17H4V9h16v8h-3 M7 14h10v7H7z"},
    Drawing{"Options", "M4 7h9 M17 7h3 M4 17h3 M11 17h9 M15 4.5v5 M9 14.5v5"},
    Drawing{"Help",
            "M12 3a9 9 0 1 0 0.01 0z M9.5 9.5a2.5 2.5 0 1 1 3.6 2.2c-0.8 0.5-1.1 1-1.1 2.1 M12 17v0.4"},
    Drawing{"Shutdown", "M12 3v9 M7 6a8 8 0 1 0 10 0"},
    Drawing{"Connected", "M3 12h5 M16 12h5 M8 8v8 M16 8v8 M8 8h3v8H8 M16 8h-3v8h3 M11 12h2"},
    Drawing{"Monitor", "M3 12h4l3-7 4 14 3-7h4"},
    Drawing{"NoConnect", "M3 12h4 M17 12h4 M7 8v8 M17 8v8 M10 9l4 6 M14 9l-4 6"},
    Drawing{"Transfer", "M4 9h14 M14 5l4 4-4 4 M20 16H6 M10 12l-4 4 4 4"},
    Drawing{"Warning", "M12 4l9 16H3z M12 10v5 M12 17.5v0.4"},
    Drawing{"Zentaq4", "M12 3a9 9 0 1 0 0.01 0z M12 12l5-5 M8 16h8 M6 10l1 0.5 M9 6.5l0.6 1"},
};

constexpr std::array sizes{16, 24, 32, 48, 64, 96};

QByteArray svgOf(const QString& name, const QColor& color) {
    for (const Drawing& drawing : drawings) {
        if (name != QLatin1String(drawing.name.data(), static_cast<qsizetype>(drawing.name.size()))) continue;
        return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><path fill='none' stroke='" +
               color.name().toLatin1() +
               "' stroke-width='2' stroke-linecap='round' stroke-linejoin='round' d='" +
               QByteArray(drawing.path.data(), static_cast<qsizetype>(drawing.path.size())) + "'/></svg>";
    }
    return {};
}

}  // namespace

QPixmap iconPixmap(const QString& name, const QColor& color, int size, qreal ratio) {
    QPixmap pixmap(QSize(size, size) * ratio);
    pixmap.fill(Qt::transparent);
    const QByteArray svg = svgOf(name, color);
    if (!svg.isEmpty()) {
        QPainter painter(&pixmap);
        QSvgRenderer(svg).render(&painter);
    }
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QIcon icon(const QString& name, const QColor& color) {
    QIcon result;
    for (const int size : sizes) result.addPixmap(iconPixmap(name, color, size, 1.0));
    return result;
}

}  // namespace zentaq
