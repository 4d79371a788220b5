#include "windows/frm_graph_2d.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "app/curve_windows.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "qt/second_window.h"
#include "qt/window_placement.h"
#include "windows/form_maker.h"
#include "windows/frm_config.h"

namespace zentaq {

namespace {

constexpr int renderMs = 33;
/// Told in twentieths of a point, fifteen to a pixel.
constexpr QPoint besideMain(4500 / 15, 4000 / 15);

}  // namespace

FrmGraph2D::FrmGraph2D(Session& session, std::string_view name, QWidget* parent)
    : QWidget(parent), DockingForm(this), session_(session), docks_(name == window::curve) {
    named(this, qString(name), "Curve graph");
    if (!docks_) setWindowFlags(secondWindow());
    pane_ = new CurvePane(session, this);
    cmdClose_ = named(new QPushButton("&Close", this), "cmdClose");
    connect(cmdClose_, &QPushButton::clicked, this, &QWidget::close);
    pane_->addButton(cmdClose_);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(pane_);
    tmrRender_.setObjectName(QStringLiteral("tmrRender"));
    connect(&tmrRender_, &QTimer::timeout, this, [this] { pane_->redrawDot(); });
    redraw_ = std::make_unique<RedrawGate>(
        session.platform().clock, [this] { pane_->redrawDot(); }, this, RedrawGate::markUs);
    if (docks_) {
        tmrRender_.start(renderMs);
    } else {
        framesFollowed_ = session.frames.follow([this] { redraw_->request(); });
        placeBesideMain();
    }
}

FrmGraph2D::~FrmGraph2D() {
    framesFollowed_.reset();
    session_.curves.shows(objectName().toStdString(), {});
    if (!docks_) storePlacement(*this, session_.settings());
}

void FrmGraph2D::placeBesideMain() {
    const QRect room = screen()->availableGeometry();
    const QSize wanted(std::min(room.width() * 3 / 5, fontMetrics().averageCharWidth() * 100),
                       std::min(room.height() * 3 / 5, fontMetrics().height() * 26));
    resize(wanted.expandedTo(minimumSizeHint()));
    if (restorePlacement(*this, session_.settings()) || parentWidget() == nullptr) return;
    const QPoint told = parentWidget()->window()->pos() + besideMain;
    move(std::min(told.x(), room.right() - width()), std::min(told.y(), room.bottom() - height()));
}

void FrmGraph2D::openOn(const std::string& on, const std::string& /*title*/) {
    const CurveKind* kind = curveNamed(on);
    if (kind == nullptr) return;
    const bool again = pane_->graph() != nullptr && &pane_->graph()->kind() == kind;
    title_ = kind->title;
    setWindowTitle(qString(title_));
    session_.curves.shows(objectName().toStdString(), on);
    again ? pane_->redraw() : pane_->showCurve(kind);
    if (docks_) {
        Q_EMIT dockingAsked(true);
        return;
    }
    show();
    raise();
    activateWindow();
    takeFocus();
}

void FrmGraph2D::takeBack() {
    window()->activateWindow();
    takeFocus();
}

void FrmGraph2D::follow() {
    if (isVisible()) pane_->redraw();
}

void FrmGraph2D::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !docks_) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FrmGraph2D::closeEvent(QCloseEvent* event) {
    event->accept();
    tellClosed();
}

void openCurve(Session& session, std::string_view kind) {
    const CurveKind* row = curveNamed(kind);
    if (session.slotInHand() == 0 || row == nullptr || !hasCurve(session.currentUnitObject(), *row)) return;
    if (parseNumber(session.settings().get(settings::system, settings::Graphs)).value_or(0) != 0)
        return session.windows().open(window::curve, std::string(kind));
    const std::string_view name = session.curves.forCurve(kind);
    if (name.empty())
        return session.notice("Eleven graphs are open, which is the most: close one of them first.");
    session.windows().open(name, std::string(kind));
}

template <>
Form* makeForm<FrmGraph2D>(const FormNeeds& needs) {
    auto* form = new FrmGraph2D(needs.session, needs.name, needs.parent);
    if (auto* workspace = qobject_cast<FrmConfig*>(needs.parent)) {
        QObject::connect(form, &FrmGraph2D::dockingAsked, workspace,
                         [workspace, form](bool docked) { workspace->dock().place(*form, docked); });
    }
    return form;
}

}  // namespace zentaq
