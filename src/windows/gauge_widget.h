// GaugeWidget: a needle over a dial. The face is drawn once for a size and a colour set and kept as a
// picture; a moving needle repaints only the places it leaves and reaches.
#pragma once

#include <QPixmap>
#include <QRectF>
#include <QWidget>
#include <optional>
#include <vector>

#include "windows/frm_dashboard_colors.h"
#include "windows/spoken_instrument.h"

class QFontMetricsF;

namespace zentaq {

class LiveLabel;

/// Angles are in degrees, 0 straight up, clockwise positive. Lengths are in dial radii with y downwards and
/// the needle's centre at 0, 0.
struct GaugeFace {
    struct Tick {
        double angle = 0;
        QString label;  ///< empty for a minor tick
    };
    struct Zone {
        double from = 0;
        double to = 0;
        QColor DashColors::*color = nullptr;
    };

    QString name;                ///< the needle's name, "Tachometer"
    QString caption;             ///< on the face
    QRectF bounds;               ///< the part of the plane that the widget shows
    QPointF captionAt;           ///< middle of the caption, where the needle never is
    bool captionOnBack = false;  ///< it stands beside the disc
    std::vector<Tick> ticks;
    std::vector<Zone> zones;
    bool twoLines = false;  ///< the needle is two lines, a long one and a short thick one
    double restAngle = 0;
};

class GaugeWidget : public QWidget, public SpokenInstrument {
    Q_OBJECT

 public:
    /// What the needle points to is said by the read-out of the same channel, wherever that stands.
    GaugeWidget(const GaugeFace& face, const LiveLabel* saidBy, QWidget* parent);

    void setFace(const GaugeFace& face);
    const GaugeFace& face() const { return face_; }
    void setColors(const DashColors& colors);

    double angle() const { return angle_; }
    void setAngle(double degrees);
    /// Back to rest.
    void rest() { setAngle(face_.restAngle); }
    QColor needleColor() const { return needle_.value_or(colors_.needle); }
    /// A colour of the needle's own; nullopt takes the panel's.
    void setNeedleColor(std::optional<QColor> color);

    /// The read-out stands beside the face. The gauge becomes its parent; nullptr takes none.
    void setReadout(QWidget* readout);

    /// How often the face was drawn: a test sees that it is kept.
    int facesDrawn() const { return facesDrawn_; }

    /// A number of the face and where its letters stand.
    struct Number {
        QString text;
        QRectF place;
    };
    /// Those that have room in the type of captions.
    std::vector<Number> numbers() const;
    QFont numberFont() const;

    /// The face without its needle, and the point that the needle turns around: for a picture of several.
    void paintFace(QPainter& painter) const;
    QPointF centre() const { return place({0, 0}); }
    /// The length of the needle in dial radii.
    static double needleReach();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    QString plainValue() const override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    struct Needle {
        QPointF tail, tip, shortTip;
    };
    QPixmap layer(const QColor& ground) const;
    QRectF faceArea() const;
    QRectF numberPlace(const GaugeFace::Tick& tick, const QFontMetricsF& metrics) const;
    QRectF captionPlace(const QFontMetricsF& metrics) const;
    void drawNumbers(QPainter& painter) const;
    double radius() const;
    QPointF place(QPointF unit) const;
    QPointF onCircle(double angle, double length) const;
    Needle needleAt(double angle) const;
    QRegion needleRegion(double angle) const;
    void drawFace(QPainter& painter) const;
    void drawTicks(QPainter& painter) const;
    void drawNeedle(QPainter& painter) const;
    void placeReadout();

    GaugeFace face_;
    const LiveLabel* saidBy_;
    DashColors colors_;
    std::optional<QColor> needle_;
    double angle_ = 0;
    QWidget* readout_ = nullptr;
    QPixmap picture_;
    QPixmap numbers_;
    int facesDrawn_ = 0;
};

}  // namespace zentaq
