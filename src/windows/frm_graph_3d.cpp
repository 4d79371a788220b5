#include "windows/frm_graph_3d.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/surface_windows.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "qt/help_key.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/window_placement.h"
#include "tables/table_badges.h"
#include "windows/form_maker.h"
#include "windows/window_registry.h"

namespace zentaq {

FrmGraph3D::FrmGraph3D(Session& session, std::string_view name, QWidget* parent)
    : QDialog(parent), Form(this), session_(session) {
    named(this, qString(name), "Surface graph");
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    setProperty(helpKeyProperty, QLatin1String("helparrow"));
    const auto value = [this](const char* control, const QString& meaning) {
        QLabel* label = plainLabel(control, meaning, this);
        label->setFont(typeFont(Type::Strong));
        label->setMinimumWidth(digitsWidth(label->fontMetrics(), 8));
        return label;
    };
    RPM_Text_ = value("RPM_Text", "Column of the cursor");
    MAP_Text_ = value("MAP_Text", "Row of the cursor");
    Value_Text_ = value("Value_Text", "Value at the cursor");
    lblHint_ = plainLines("lblHint", "What the keys do", this);
    cmdClose_ = named(new QPushButton("&Close", this), "cmdClose");
    cmdClose_->setAutoDefault(false);
    connect(cmdClose_, &QPushButton::clicked, this, &QWidget::close);
    room_ = new QWidget(this);
    auto* roomLayout = new QVBoxLayout(room_);
    roomLayout->setContentsMargins(0, 0, 0, 0);
    auto* values = new QHBoxLayout;
    values->setSpacing(space(fontMetrics(), Space::Wide));
    const auto add = [&](const char* caption, QLabel* label) {
        auto* pair = new QHBoxLayout;
        pair->setSpacing(space(fontMetrics(), Space::Tight));
        pair->addWidget(named(new QLabel(this), caption));
        pair->addWidget(label);
        values->addLayout(pair);
    };
    add("lblColumn", RPM_Text_);
    add("lblRow", MAP_Text_);
    add("lblValue", Value_Text_);
    values->addStretch(1);
    values->addWidget(cmdClose_);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(room_, 1);
    whole->addWidget(lblHint_);
    whole->addLayout(values);
    redraw_ = std::make_unique<RedrawGate>(
        session.platform().clock,
        [this] {
            if (picture_ != nullptr) picture_->update();
        },
        this, RedrawGate::markUs);
    session_.surfaces.opened(name, true);
    const QSize screen = this->screen()->availableGeometry().size();
    resize(std::min(screen.width() * 4 / 5, fontMetrics().averageCharWidth() * 120),
           std::min(screen.height() * 9 / 10, fontMetrics().height() * 36));
    restorePlacement(*this, session.settings());
}

FrmGraph3D::~FrmGraph3D() {
    framesFollowed_.reset();
    session_.surfaces.opened(objectName().toStdString(), false);
    storePlacement(*this, session_.settings());
    delete picture_;
}

void FrmGraph3D::openOn(const std::string& on, const std::string& title) {
    const auto slash = on.find('/');
    const std::string table = on.substr(0, slash);
    const auto view = slash == std::string::npos
                          ? TableView::Values
                          : static_cast<TableView>(std::clamp(std::atoi(&on[slash + 1]), 0, 2));
    Unit& unit = session_.currentUnitObject();
    auto fresh =
        std::make_unique<SurfaceModel>(unit, session_.live, session_.paintMemory, table, title, view);
    delete std::exchange(picture_, nullptr);
    model_ = std::move(fresh);
    unit_ = &unit;
    clearTableColours();
    picture_ = new SurfacePicture(*model_, room_);
    picture_->installEventFilter(this);
    cmdClose_->installEventFilter(this);
    room_->layout()->addWidget(picture_);
    connect(picture_, &SurfacePicture::picked, this, [this](int row, int column) {
        model_->moveTo(row, column);
        showCursor();
    });
    const SurfaceTitles titles = model_->titles();
    setWindowTitle(qString(titles.shortName));
    lblHint_->setText(qString(titles.hint));
    const auto caption = [this](const char* name, const QString& text) {
        findChild<QLabel*>(name)->setText(text);
    };
    caption("lblColumn", qString(axisUnitOf(model_->sheet(), true)));
    caption("lblRow", qString(axisUnitOf(model_->sheet(), false)));
    caption("lblValue", "Value");
    framesFollowed_ = session_.frames.follow([this] { frame(); });
    showCursor();
    show();
    raise();
    activateWindow();
    picture_->setFocus();
}

// ---- Keys

void FrmGraph3D::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    if (!key(*event)) QDialog::keyPressEvent(event);
}

bool FrmGraph3D::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) {
        event->accept();
        return true;
    }
    if (watched == picture_ && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
        picture_->update();
    if (watched == picture_ && event->type() == QEvent::KeyPress && key(*static_cast<QKeyEvent*>(event)))
        return true;
    return QDialog::eventFilter(watched, event);
}

bool FrmGraph3D::key(const QKeyEvent& event) {
    if (model_ == nullptr ||
        (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0)
        return false;
    switch (event.key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:  // the same key without Shift
            step(true);
            return true;
        case Qt::Key_Minus:
        case Qt::Key_Underscore:
            step(false);
            return true;
        case Qt::Key_Up:
            model_->move(1, 0);
            break;
        case Qt::Key_Down:
            model_->move(-1, 0);
            break;
        case Qt::Key_Right:
            model_->move(0, 1);
            break;
        case Qt::Key_Left:
            model_->move(0, -1);
            break;
        case Qt::Key_F1:
            session_.windows().open(window::fastHelp);
            return true;
        default:
            return false;
    }
    showCursor();
    return true;
}

void FrmGraph3D::step(bool up) {
    if (!model_->editable()) return;  // the hint says so all the time
    const QPointer<FrmGraph3D> self(this);
    // What is typed in the grid and not entered yet would write the former value back.
    session_.windows().afterEdits("Graph", [self, up] {
        if (self) self->stepNow(up);
    });
}

void FrmGraph3D::stepNow(bool up) {
    if (&session_.currentUnitObject() != unit_) return;
    const auto before = model_->valueText();
    const auto stored = model_->step(up);
    if (model_->valueText() != before) {
        session_.markModified();
        session_.windows().tell(&WindowNews::cellsChanged);
    }
    showCursor();
    if (!stored) session_.messages.tell(stored);
}

// ---- Showing

void FrmGraph3D::showCursor() {
    RPM_Text_->setText(qString(model_->columnText()));
    MAP_Text_->setText(qString(model_->rowText()));
    Value_Text_->setText(qString(model_->valueText()));
    const SurfaceTitles titles = model_->titles();
    picture_->setAccessibleName(qString(titles.shortName + ": " + model_->inWords()));
    picture_->setAccessibleDescription(
        qString(titles.columnAxis + " to the right, " + titles.rowAxis + " to the back. " + titles.hint));
    picture_->update();
}

void FrmGraph3D::follow() {
    if (model_ == nullptr || &session_.currentUnitObject() != unit_) return;
    if (model_->follow()) showCursor();
}

void FrmGraph3D::clearTableColours() {
    if (model_ == nullptr) return;
    model_->heatScale(session_.heatScaleChosen());
    if (picture_ != nullptr) picture_->update();
}

void FrmGraph3D::frame() {
    const int linked = session_.link.linked().LinkedUnitKind;
    if (model_ == nullptr || linked == 0 || linked != session_.slotInHand()) return;
    model_->frame(colourModeOf(session_.TableColorMode));
    redraw_->request();
}

void FrmGraph3D::closeEvent(QCloseEvent* event) {
    event->accept();
    tellClosed();
}

void openSurface(Session& session, const std::string& table, const std::string& title, TableView view) {
    const std::string_view name = session.surfaces.free();
    if (name.empty())
        return session.notice("Eleven graphs are open, which is the most: close one of them first.");
    session.windows().open(name, table + "/" + numberText(static_cast<int>(view)), title);
}

template <>
Form* makeForm<FrmGraph3D>(const FormNeeds& needs) {
    return new FrmGraph3D(needs.session, needs.name, needs.parent);
}

}  // namespace zentaq
