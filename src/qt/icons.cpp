#include "qt/icons.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <optional>

#include "qt/look.h"

namespace zentaq {

namespace {

constexpr auto folder = ":/icons";
/// What stands in a drawing for its colour.
constexpr auto colourWord = "currentColor";

QByteArray drawingOf(const QString& name) {
    static QHash<QString, QByteArray> read;
    const auto known = read.constFind(name);
    if (known != read.constEnd()) return *known;
    QFile file(QStringLiteral("%1/%2.svg").arg(QLatin1String(folder), name));
    return read[name] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// `size` in device pixels.
QPixmap drawn(const QString& name, const QColor& color, QSize size) {
    const QString key =
        QStringLiteral("icon %1 %2 %3x%4").arg(name, color.name()).arg(size.width()).arg(size.height());
    QPixmap picture;
    if (QPixmapCache::find(key, &picture)) return picture;
    picture = QPixmap(size);
    picture.fill(Qt::transparent);
    QByteArray svg = drawingOf(name);
    if (svg.isEmpty() || size.isEmpty()) return picture;
    QPainter painter(&picture);
    const int side = std::min(size.width(), size.height());
    const QRect square((size.width() - side) / 2, (size.height() - side) / 2, side, side);
    QSvgRenderer(svg.replace(colourWord, color.name().toLatin1())).render(&painter, square);
    painter.end();
    QPixmapCache::insert(key, picture);
    return picture;
}

class DrawnIcon : public QIconEngine {
 public:
    DrawnIcon(QString name, std::optional<QColor> color) : name_(std::move(name)), color_(color) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(area, scaledPixmap(area.size() * ratio, mode, state, ratio));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return drawn(name_, colorOf(mode), size);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal ratio) override {
        QPixmap picture = drawn(name_, colorOf(mode), size);
        picture.setDevicePixelRatio(ratio);
        return picture;
    }
    bool isNull() override { return drawingOf(name_).isEmpty(); }
    QIconEngine* clone() const override { return new DrawnIcon(name_, color_); }

 private:
    QColor colorOf(QIcon::Mode mode) const {
        const LookColors& look = lookColors(appliedLook(*qApp));
        if (mode == QIcon::Disabled) return look.disabledText;
        if (mode == QIcon::Selected) return look.accentText;
        return color_.value_or(look.text);
    }

    QString name_;
    std::optional<QColor> color_;
};

}  // namespace

QIcon icon(const QString& name) {
    return QIcon(new DrawnIcon(name, std::nullopt));
}

QIcon icon(const QString& name, const QColor& color) {
    return QIcon(new DrawnIcon(name, color));
}

QPixmap iconPixmap(const QString& name, const QColor& color, int size, qreal ratio) {
    const int side = static_cast<int>(std::lround(size * ratio));
    QPixmap picture = drawn(name, color, {side, side});
    picture.setDevicePixelRatio(ratio);
    return picture;
}

QStringList iconNames() {
    QStringList names;
    for (const QString& file : QDir(folder).entryList({"*.svg"})) names += file.chopped(4);
    return names;
}

}  // namespace zentaq
