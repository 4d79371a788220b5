// The dashboard's dials as one picture that the user has chosen, with the needles over it.
#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <array>
#include <optional>

#include "live/dashboard_picture.h"
#include "windows/frm_dashboard_colors.h"

namespace zentaq {

class DashboardPicture : public QWidget {
    Q_OBJECT

 public:
    explicit DashboardPicture(QWidget* parent);

    /// Of any size: it is stretched to the room of the widget, and the needles with it. Null takes it away.
    void setImage(const QImage& image);
    bool hasImage() const { return !image_.isNull(); }
    void setColors(const DashColors& colors);
    /// The needles of temperatures, mixture and idle, which a unit that only ignites has not.
    void showFuel(bool on);
    void setAngle(Needle needle, double degrees);
    /// A color of the mixture's own; nullopt takes the panel's.
    void setMixtureColor(std::optional<QColor> color);

    /// The line from the centre to the end of a needle, in pixels of the widget.
    QLineF needleLine(Needle needle, double part = 1) const;

    QSize sizeHint() const override { return {pictureWidth, pictureHeight}; }

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    bool inSight(Needle needle) const;
    QColor colorOf(Needle needle) const;
    QRegion regionOf(Needle needle) const;
    double lineWidth(Needle needle) const;
    void drawNeedle(QPainter& painter, Needle needle) const;

    QImage image_;
    QPixmap scaled_;
    DashColors colors_;
    std::optional<QColor> mixture_;
    std::array<double, needleNames.size()> angles_{};
    bool fuel_ = true;
};

}  // namespace zentaq
