// frmGraph_2D and frmGraph_DX_2D: a curve in a window of its own, up to eleven of them side by side, or one
// docked in the workspace, which draws on a timer of its own.
#pragma once

#include "app/session.h"

#include <QPushButton>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "windows/curve_pane.h"
#include "windows/dock.h"

namespace zentaq {

class FrmGraph2D : public QWidget, public DockingForm {
    Q_OBJECT

 public:
    FrmGraph2D(Session& session, std::string_view name, QWidget* parent);
    ~FrmGraph2D() override;

    /// `on` is the name of a curve: "Warm_Up".
    void openOn(const std::string& on, const std::string& title) override;
    void takeBack() override;
    void follow() override;
    void showUnit() override { pane_->redraw(); }
    void temperaturesChanged() override { pane_->redraw(); }

    std::string title() const override { return title_; }
    void setDocked(bool /*docked*/) override {}
    void moves(bool /*on*/) override {}
    void takeFocus() override { pane_->picture().setFocus(); }
    void followLook() override {}

    CurvePane& pane() { return *pane_; }

 Q_SIGNALS:
    void dockingAsked(bool docked);

 protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    void placeBesideMain();

    Session& session_;
    bool docks_;
    std::string title_;
    CurvePane* pane_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
    QTimer tmrRender_{this};
    std::unique_ptr<RedrawGate> redraw_;
    FrameFeed::Subscription framesFollowed_;
};

/// Opens a curve as the setting `Graphs` says, or brings the window that shows it to the front. Eleven
/// windows are the most: then the user is told.
void openCurve(Session& session, std::string_view kind);

}  // namespace zentaq
