#include "qt/window_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <optional>

#include "base/errors.h"
#include "base/settings_keys.h"
#include "qt/screen_fit.h"

namespace zentaq {

namespace {

/// No screen is wider or stands farther off; a larger number in the store is damage.
constexpr int farthest = 100'000;

/// The place of a window that is neither maximised nor minimised, without its frame.
struct Place {
    QRect normal;
    bool maximised = false;
};

QString textOf(const Place& place) {
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(place.normal.x())
        .arg(place.normal.y())
        .arg(place.normal.width())
        .arg(place.normal.height())
        .arg(place.maximised ? 1 : 0);
}

std::optional<Place> placeOf(const QString& text) {
    const QStringList parts = text.split(u' ', Qt::SkipEmptyParts);
    constexpr int count = 5;
    if (parts.size() != count) return std::nullopt;
    int numbers[count];
    for (int i = 0; i < count; ++i) {
        bool readable = false;
        numbers[i] = parts.at(i).toInt(&readable);
        if (!readable || numbers[i] > farthest || numbers[i] < -farthest) return std::nullopt;
    }
    const QRect normal(numbers[0], numbers[1], numbers[2], numbers[3]);
    if (normal.isEmpty()) return std::nullopt;
    return Place{normal, numbers[4] == 1};
}

/// What the window manager draws around a window. Before it has done so, the style's title bar and frame
/// stand for it.
QMargins frameOf(const QWidget& window) {
    if (window.windowFlags() & Qt::FramelessWindowHint) return {};
    const QRect outer = window.frameGeometry();
    const QRect inner = window.geometry();
    if (outer != inner) {
        return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
                outer.bottom() - inner.bottom()};
    }
    const int side = window.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, &window);
    return {side, window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window), side, side};
}

/// The usable part of each screen, less the frame of the window; the primary screen first.
QList<QRect> roomFor(const QWidget& window) {
    const QMargins frame = frameOf(window);
    QList<QRect> rooms;
    for (const QScreen* screen : QGuiApplication::screens()) {
        rooms.append(screen->availableGeometry().marginsRemoved(frame));
    }
    return rooms;
}

}  // namespace

bool restorePlacement(QWidget& window, const SettingsStore& settings) {
    const std::string stored = settings.get(settings::forms, window.objectName().toStdString());
    const std::optional<Place> place = placeOf(QString::fromStdString(stored));
    if (!place) return false;
    window.setGeometry(fittedOnScreens(place->normal, roomFor(window)));
    if (place->maximised) window.setWindowState(window.windowState() | Qt::WindowMaximized);
    return true;
}

void storePlacement(const QWidget& window, SettingsStore& settings) {
    // Inside another window a form has no place of its own.
    if (window.objectName().isEmpty() || !window.isWindow()) return;
    const bool normal =
        !(window.windowState() & (Qt::WindowMaximized | Qt::WindowMinimized | Qt::WindowFullScreen));
    const QRect beneath = window.normalGeometry();
    const Place place{normal || beneath.isEmpty() ? window.geometry() : beneath, window.isMaximized()};
    skipFailing([&] {
        settings.set(settings::forms, window.objectName().toStdString(), textOf(place).toStdString());
    });
}

void centreForm(QWidget& form, const QWidget& frame) {
    // A form that nobody has sized yet takes its own size now, not the toolkit's first guess.
    if (!form.testAttribute(Qt::WA_Resized)) form.adjustSize();
    const QPoint offset((frame.width() - form.width()) / 2, (frame.height() - form.height()) / 2);
    if (!form.isWindow()) {
        form.move(offset);
        return;
    }
    const QRect wanted(frame.mapToGlobal(QPoint(0, 0)) + offset, form.size());
    const QRect place = fittedOnScreens(wanted, roomFor(form));
    form.resize(place.size());
    form.move(place.topLeft());
}

}  // namespace zentaq
