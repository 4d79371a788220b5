// frmDashBoard: the live instrument panel, and the timer that polls the unit.
// Angles, texts, alarms and codes come from the core; this window puts them on the panel.
#pragma once

#include "app/main_commands.h"
#include "app/session.h"
#include "live/dashboard_readings.h"
#include "live/gauges.h"

#include <QTimer>
#include <QToolButton>
#include <QWidget>
#include <functional>
#include <string>

#include "windows/form.h"
#include "windows/frm_dashboard_panel.h"
#include "windows/frm_detail_info.h"
#include "windows/redraw_gate.h"

namespace zentaq {

class FrmDashBoard : public QWidget, public Form {
    Q_OBJECT

 public:
    FrmDashBoard(Session& session, MainCommands& commands, QWidget* parent = nullptr);

    void openOn(const std::string& on, const std::string& title) override;
    void killTimers() override { Kill_Timers(); }
    void updateRateChanged() override { startTimers(); }
    void temperaturesChanged() override { UPDATE_DISPLAY(); }
    void updateDisplay() override { UPDATE_DISPLAY(); }
    void resetDashboard() override { Reset_Dashboard(); }
    void look(bool day) override;
    void dashboardColours(const std::string& lights, const std::string& needle) override;

    /// Starts polling at the rate of the setting ADUR; again after the setting has changed.
    void startTimers();
    void Kill_Timers();
    /// Tells whether `sstConfig` shows its second tab, which the poller wants to know. False until set.
    void secondTabShowing(std::function<bool()> showing) { secondTabShowing_ = std::move(showing); }

    void Day_Mode();
    void Night_Mode();
    /// Colours as stored: red + 256 * green + 65536 * blue in decimal; another text takes the mode's own.
    void Set_DashBoard_Color(const std::string& color);
    void Set_Needle_Color(const std::string& color);
    void Set_Label_Color(const std::string& color);

    /// News from the unit. Drawn at once or, within a frame of the last drawing, a little later.
    void UPDATE_DISPLAY() { redraw_->request(); }
    /// All needles at rest, labels empty, no alarm.
    void Reset_Dashboard();
    /// The check-engine list has changed.
    void codesChanged() override;
    /// Shows or hides fraNoConnect as the link says.
    void showLinkState();
    // The face follows the unit on the link, and without one the calibration in hand.
    void unitKindFound(int /*slot*/) override { followUnit(); }
    void setupNodes() override { followUnit(); }
    void showUnit() override { followUnit(); }

    /// One line, or all of it, as the session says.
    void foldsChanged() override;

    FrmDashBoardPanel& panel() { return *panel_; }
    FrmDetailInfo& detail() { return *detail_; }
    /// The detail monitor in the place of the dials, or the dials again.
    void showDetail(bool on);
    /// How often the display was brought up to date.
    int redraws() const { return redraws_; }

 private:
    void poll();
    void flash();
    void stepCodes();
    bool tellsCleared() const;
    void draw();
    void drawNeedles();
    void drawReadings();
    void drawPins(const std::vector<DashboardReading>& readings);
    void showChosenPin();
    void drawAlarms();
    void drawDetail();
    void showWhetherLive();
    void setMode(bool day);
    /// The user's own picture for mode, rev scale and kind, if there is one.
    void followPicture();
    void applyColors();
    void nameReadings();
    void followUnit();
    /// What the button for the fold does, and what stands behind the line.
    void tellFold();
    /// The unit on the link, else the calibration in hand: its object holds the decoded frames.
    Unit& shownUnit();

    Session& session_;
    Gauges gauges_;
    FrmDashBoardPanel* panel_;
    FrmDetailInfo* detail_ = nullptr;
    QTimer* tmrUpdate_;
    QTimer* flashTimer_;
    QTimer* tmrCHKE_Status_;
    QToolButton* cmdFold_ = nullptr;
    RedrawGate* redraw_;
    RedrawGate* numbers_;
    std::function<bool()> secondTabShowing_;
    DashColors colors_;
    bool day_ = false;
    std::string picture_;
    std::string pictureTrouble_;
    std::optional<QColor> dashLights_, needleColor_, labelLights_;
    const UnitKind* shownKind_ = nullptr;
    int redraws_ = 0;
};

}  // namespace zentaq
