#include "windows/dashboard_drawn.h"

#include <QPainter>
#include <cmath>

#include "live/dashboard_picture.h"
#include "windows/dashboard_faces.h"

namespace zentaq {
namespace {

/// Of two dials that share their room the second one stands in the gap of the first.
void drawDial(QPainter& painter, const GaugeFace& face, Needle needle, const DashColors& colors) {
    const NeedlePlace place = needlePlace(needle);
    const double radius = place.length / GaugeWidget::needleReach();
    GaugeWidget dial(face, nullptr, nullptr);
    dial.setColors(colors);
    dial.resize(static_cast<int>(std::ceil(face.bounds.width() * radius)),
                static_cast<int>(std::ceil(face.bounds.height() * radius)));
    painter.save();
    painter.translate(QPointF(place.centre.x, place.centre.y) - dial.centre());
    dial.paintFace(painter);
    painter.restore();
}

/// A name beside the face, or on it where no tick is.
GaugeFace captioned(GaugeFace face, const QString& caption, QPointF at, bool onBack = true) {
    face.caption = caption;
    face.captionAt = at;
    face.captionOnBack = onBack;
    return face;
}

}  // namespace

QImage drawnDashboard(bool day, int revScale, bool fuel) {
    const DialAngles angles = dialAngles(revScale);
    const DashColors colors = dashColors(day);
    QImage picture(pictureWidth, pictureHeight, QImage::Format_RGB32);
    picture.fill(colors.back);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    // The idle dial takes the place of the words under the tachometer's centre.
    drawDial(painter, captioned(tachometerFace(angles), "x 1000", {0, -0.3}, false), Needle::Tachometer,
             colors);
    drawDial(painter, captioned(throttleFace(angles), "TPS", {0, 0.3}), Needle::TPS, colors);
    drawDial(painter, captioned(voltFace(angles), "VOLT", {0, -0.3}), Needle::VOLT, colors);
    if (!fuel) return picture;
    drawDial(painter, captioned(idleFace(angles), "IAC", {0, -0.3}, false), Needle::IAC, colors);
    drawDial(painter, captioned(mixtureFace(angles), "AFR", {-0.25, 0.95}), Needle::AFR, colors);
    drawDial(painter, captioned(temperatureFace("Coolant", angles.coolant, false), "CLT", {-0.4, 0}),
             Needle::Coolant, colors);
    drawDial(painter, captioned(temperatureFace("MAT", angles.manifoldAir, false), "MAT", {-0.4, 0}),
             Needle::MAT, colors);
    return picture;
}

}  // namespace zentaq
