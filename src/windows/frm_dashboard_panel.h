// The instrument panel's picture: dials, read-outs, lamps and the check-engine area in one strip.
// It knows where things stand and how they look, and nothing of the unit behind the numbers.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>
#include <map>
#include <vector>

#include "windows/frm_dashboard_colors.h"
#include "windows/gauge_widget.h"
#include "windows/live_label.h"

namespace zentaq {

/// The angle that a value gives on a dial, in degrees.
using DialAngle = double (*)(double value);

/// How each dial turns a value into an angle, so that ticks and needle agree. `tachometer` is for the rev
/// scale in force, `revScale` is 9000 or 18000.
struct DialAngles {
    DialAngle tachometer = nullptr;
    DialAngle throttle = nullptr;
    DialAngle volt = nullptr;
    DialAngle idle = nullptr;
    DialAngle coolant = nullptr;
    DialAngle manifoldAir = nullptr;
    DialAngle mixture = nullptr;
    int revScale = 9000;
};

/// Lies over dials and read-outs while what they show is not live. Clicks and tips go through it.
class DashBoardVeil : public QWidget {
    Q_OBJECT

 public:
    explicit DashBoardVeil(QWidget* parent);
    void setColor(const QColor& color);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    QColor color_;
};

class FrmDashBoardPanel : public QWidget {
    Q_OBJECT

 public:
    FrmDashBoardPanel(const DialAngles& angles, QWidget* parent);

    GaugeWidget& gauge(const QString& name) { return *gauges_.at(name); }
    /// A read-out by its control name, "lblTach".
    LiveLabel& label(const QString& name) { return *labels_.at(name); }
    /// nullptr when the panel has no such read-out.
    LiveLabel* findLabel(const QString& name);
    void emptyLabels();

    /// New ticks, for another rev scale.
    void setAngles(const DialAngles& angles);
    /// The scale of the temperature dials.
    void setFahrenheit(bool on);
    void setColors(const DashColors& colors);
    /// Fuel, temperature and idle instruments out of sight for a unit that only ignites.
    void showFuel(bool on);
    /// fraNoConnect in view with its text, or out of sight. While it waits for a unit a veil lies over dials
    /// and read-outs: they keep their last values, which must not look live.
    void showNoConnect(bool on, const QString& text);

    LiveLamp* checkEngineLamp = nullptr;
    LiveLamp* overRevLamp = nullptr;
    QLabel* lblCheckEngine = nullptr;
    QLineEdit* txtGPIO = nullptr;
    QListWidget* lstGPO = nullptr;
    QPushButton* btnShowDetail = nullptr;
    QFrame* fraNoConnect = nullptr;
    QLabel* lblGeneral = nullptr;
    DashBoardVeil* veil = nullptr;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    GaugeWidget* makeGauge(const GaugeFace& face);
    LiveLabel* makeLabel(const LiveLabel::Form& form);
    QLayout* makeSmallDials();
    QLayout* makeReadouts();
    QLayout* makeStatus();
    void makeNoConnect();
    void placeNoConnect();
    void placeVeil();
    void fitStatusFonts();

    DialAngles angles_;
    bool fahrenheit_ = false;
    DashColors colors_;
    std::map<QString, GaugeWidget*> gauges_;
    std::map<QString, LiveLabel*> labels_;
    std::vector<QWidget*> fuelParts_;
};

}  // namespace zentaq
