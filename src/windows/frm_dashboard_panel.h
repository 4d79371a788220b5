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

#include "live/dashboard_plan.h"
#include "windows/dashboard_faces.h"
#include "windows/dashboard_picture.h"
#include "windows/frm_dashboard_codes.h"
#include "windows/frm_dashboard_colors.h"
#include "windows/gauge_widget.h"
#include "windows/live_label.h"

namespace zentaq {

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
    /// A picture of the user's own in the place of the dials; null: the dials.
    void setPicture(const QImage& image);
    /// Turns the needle of a dial, wherever it stands.
    void setAngle(Needle needle, double degrees);
    /// A color of the mixture's own; nullopt takes that of the others.
    void setMixtureColor(std::optional<QColor> color);
    /// Fuel, temperature and idle instruments out of sight for a unit that only ignites.
    void showFuel(bool on);
    /// The read-outs to be shown, the most important one first.
    void showReadouts(const std::vector<std::string_view>& names);
    /// Of lblCheckEngine, which is in view only with a text: two lines, the same on one, and its tip.
    void showCodes(const QString& fields, const QString& line, const QString& tip);
    /// Turns to the page that a read-out stands on.
    void bringIntoView(const QString& name);
    /// Places everything anew: what has room follows size, unit and what there is to show.
    void arrange();
    /// One line of the most important read-outs and of what is in alarm, or all that has room.
    void setFolded(bool folded);
    /// What is out of sight on the line, More's pages apart.
    QStringList behindTheLine() const;
    /// A lamp has been lit or went out: on one line only those that are lit have a place.
    void lampsChanged();
    /// Dials and read-outs keep their last values. While these are not live a veil lies over them, with a
    /// word, because they must not look so.
    void setLive(bool live);
    bool isLive() const;
    /// fraNoConnect in view with its text, or out of sight. While it waits for a unit nothing is live.
    void showNoConnect(bool on, const QString& text);

    DashboardPicture* picture = nullptr;
    LiveLamp* checkEngineLamp = nullptr;
    LiveLamp* overRevLamp = nullptr;
    CodeBox* lblCheckEngine = nullptr;
    QLineEdit* txtGPIO = nullptr;
    QListWidget* lstGPO = nullptr;
    QPushButton* btnShowDetail = nullptr;
    QFrame* fraNoConnect = nullptr;
    QLabel* lblGeneral = nullptr;
    DashBoardVeil* veil = nullptr;
    QLabel* lblNotLive = nullptr;
    QPushButton* btnMore = nullptr;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void makeGauge(const GaugeFace& face);
    void makeStatus();
    void makeNoConnect();
    void placeDials(const DashPlan& plan, QPoint at);
    void placeTiles(const DashPlan& plan, QPoint at);
    void placeStatus(QRect area);
    void placeNoConnect();
    void placeVeil();
    void raiseVeil();
    QSize tileSize() const;
    int statusWidth() const;
    bool detailOffered() const;
    std::vector<std::string_view> tilesToShow() const;

    DialAngles angles_;
    bool fahrenheit_ = false;
    DashColors colors_;
    std::map<QString, GaugeWidget*> gauges_;
    std::map<QString, LiveLabel*> labels_;
    std::vector<std::string_view> readouts_;
    bool fuel_ = true;
    bool folded_ = false;
    int lampsShown_ = 0;
    bool live_ = true;
    bool waits_ = false;   ///< for a unit
    int instruments_ = 0;  ///< right edge of dials and tiles
    int page_ = 0;
    int pages_ = 1;
};

}  // namespace zentaq
