// frmGraph_3D: a table as a surface, with a cursor that the arrow keys move and that + and - change. Up to
// eleven stand side by side.
#pragma once

#include "app/session.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <memory>

#include "windows/form.h"
#include "windows/redraw_gate.h"
#include "windows/surface_picture.h"

namespace zentaq {

class FrmGraph3D : public QDialog, public Form {
    Q_OBJECT

 public:
    FrmGraph3D(Session& session, std::string_view name, QWidget* parent);
    ~FrmGraph3D() override;

    /// `on` is the table and, behind a slash, the number of its view: "VE/1" for pulse widths.
    void openOn(const std::string& on, const std::string& title) override;
    void follow() override;
    void clearTableColours() override;

    /// nullptr before it is opened on a table.
    SurfaceModel* model() { return model_.get(); }
    SurfacePicture* picture() { return picture_; }

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    bool key(const QKeyEvent& event);
    void step(bool up);
    void stepNow(bool up);
    void frame();
    void showCursor();

    Session& session_;
    std::unique_ptr<SurfaceModel> model_;
    const Unit* unit_ = nullptr;
    std::unique_ptr<RedrawGate> redraw_;
    SurfacePicture* picture_ = nullptr;
    QLabel* MAP_Text_ = nullptr;
    QLabel* RPM_Text_ = nullptr;
    QLabel* Value_Text_ = nullptr;
    QLabel* lblHint_ = nullptr;
    QWidget* room_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
    FrameFeed::Subscription framesFollowed_;
};

/// Opens the surface of a table beside those that are open. Eleven are the most: then the user is told.
void openSurface(Session& session, const std::string& table, const std::string& title, TableView view);

}  // namespace zentaq
