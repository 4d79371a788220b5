#include "windows/dashboard_picture.h"

#include <QLineF>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "qt/named.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

/// Of a picture in its own pixels.
constexpr double needleWidth = 2;
constexpr double shortLineWidth = 4;
/// What the outline of a needle takes on each side, in pixels of the screen.
constexpr int outlineRoom = 3;

bool ofFuelSide(Needle needle) {
    return needle == Needle::AFR || needle == Needle::Coolant || needle == Needle::MAT ||
           needle == Needle::IAC;
}

}  // namespace

DashboardPicture::DashboardPicture(QWidget* parent) : QWidget(parent), colors_(dashColors(false)) {
    named(this, "dashboardPicture", "Dials");
    setAttribute(Qt::WA_OpaquePaintEvent);
    hide();
}

void DashboardPicture::setImage(const QImage& image) {
    image_ = image;
    scaled_ = {};
    update();
}

void DashboardPicture::setColors(const DashColors& colors) {
    colors_ = colors;
    update();
}

void DashboardPicture::showFuel(bool on) {
    fuel_ = on;
    update();
}

void DashboardPicture::setAngle(Needle needle, double degrees) {
    double& angle = angles_[static_cast<std::size_t>(needle)];
    // Half a tenth of a degree moves no pixel.
    if (std::abs(degrees - angle) < 0.05) return;
    const QRegion left = regionOf(needle);
    angle = degrees;
    update(left.united(regionOf(needle)));
}

void DashboardPicture::setMixtureColor(std::optional<QColor> color) {
    if (color == mixture_) return;
    mixture_ = color;
    update(regionOf(Needle::AFR));
}

bool DashboardPicture::inSight(Needle needle) const {
    return fuel_ || !ofFuelSide(needle);
}

QColor DashboardPicture::colorOf(Needle needle) const {
    return needle == Needle::AFR ? mixture_.value_or(colors_.needle) : colors_.needle;
}

QLineF DashboardPicture::needleLine(Needle needle, double part) const {
    const NeedlePlace place = needlePlace(needle);
    const PicturePoint end = needleEnd(place, angles_[static_cast<std::size_t>(needle)], part);
    const double across = static_cast<double>(width()) / pictureWidth;
    const double down = static_cast<double>(height()) / pictureHeight;
    return {place.centre.x * across, place.centre.y * down, end.x * across, end.y * down};
}

double DashboardPicture::lineWidth(Needle needle) const {
    const double pixels = needle == Needle::AFR ? shortLineWidth : needleWidth;
    return std::max(1.0, pixels * height() / pictureHeight);
}

/// A slanting needle's bounding box would be half the dial; a chain of small boxes along it is not.
QRegion DashboardPicture::regionOf(Needle needle) const {
    constexpr int parts = 8;
    const QLineF line = needleLine(needle);
    const int margin = static_cast<int>(std::ceil(lineWidth(needle))) + outlineRoom;
    QRegion region;
    for (int i = 0; i < parts; ++i) {
        const QRectF box(line.pointAt(static_cast<double>(i) / parts),
                         line.pointAt(static_cast<double>(i + 1) / parts));
        region += box.normalized().toAlignedRect().adjusted(-margin, -margin, margin, margin);
    }
    return region;
}

void DashboardPicture::paintEvent(QPaintEvent* event) {
    const double ratio = devicePixelRatioF();
    if (!image_.isNull() && (scaled_.isNull() || scaled_.size() != size() * ratio)) {
        scaled_ = QPixmap::fromImage(
            image_.scaled(size() * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        scaled_.setDevicePixelRatio(ratio);
    }
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.fillRect(rect(), colors_.back);  // a picture may have holes
    painter.drawPixmap(0, 0, scaled_);
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < needleNames.size(); ++i) drawNeedle(painter, static_cast<Needle>(i));
}

void DashboardPicture::drawNeedle(QPainter& painter, Needle needle) const {
    if (!inSight(needle)) return;
    const auto draw = [&](double part, double pixels) {
        const QLineF line = needleLine(needle, part);
        const QColor color = colorOf(needle);
        // What the picture shows there is not known: the outline parts the needle from any ground.
        painter.setPen(QPen(inkFor(color), pixels + outlineRoom - 1, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(line);
        painter.setPen(QPen(color, pixels, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(line);
    };
    const double thin = needleWidth * height() / pictureHeight;
    draw(1, std::max(1.0, thin));
    if (needle == Needle::AFR) draw(shortMixtureLine, lineWidth(needle));
}

}  // namespace zentaq
