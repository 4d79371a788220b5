// Keys and mouse in the panes of a plot.
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <algorithm>
#include <cmath>

#include "logs/log_channel.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "windows/log_plot_area.h"

namespace zentaq {

namespace {

constexpr double keyZoom = 0.5;
constexpr double wheelZoom = 0.8;
constexpr double keyMove = 0.25;
constexpr double wheelMove = 0.1;
constexpr double wheelNotch = 120;
constexpr double halfNear = 6;  ///< pixels to either side of a cursor that one takes with the mouse

bool isPlain(Qt::KeyboardModifiers modifiers) {
    return (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
}

bool isControl(Qt::KeyboardModifiers modifiers) {
    return (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == Qt::ControlModifier;
}

}  // namespace

// ---- Keys

/// Space, the plain arrows, Home, End, R, S and the digits from 1 belong to whoever plays the log.
bool LogPlotArea::takesPlainKey(int key) const {
    switch (key) {
        case Qt::Key_Escape:
            return drag_.has_value() || scene_.a || scene_.b;
        case Qt::Key_Delete:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return markAtCursor().has_value();
        case Qt::Key_Plus:
        case Qt::Key_Minus:
        case Qt::Key_0:
        case Qt::Key_Backspace:
        case Qt::Key_A:
        case Qt::Key_B:
        case Qt::Key_M:
        case Qt::Key_O:
            return true;
        default:
            return false;
    }
}

bool LogPlotArea::takesKey(const QKeyEvent& event) const {
    if (!scene_.hasLog()) return false;
    if (isPlain(event.modifiers())) return takesPlainKey(event.key());
    if (!isControl(event.modifiers())) return false;
    const auto keys = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home};
    return std::ranges::find(keys, event.key()) != keys.end();
}

bool LogPlotArea::event(QEvent* event) {
    // While the plot has the keyboard, its keys are no shortcuts of the window around it.
    if (event->type() == QEvent::ShortcutOverride && takesKey(*static_cast<QKeyEvent*>(event)))
        event->accept();
    return QCustomPlot::event(event);
}

bool LogPlotArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtMark_ || event->type() != QEvent::KeyPress) return false;
    if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) return false;
    if (named_ && *named_ < scene_.marks.size()) takeMark(qString(scene_.marks[*named_].text));
    return true;
}

void LogPlotArea::keyPressEvent(QKeyEvent* event) {
    if (!takeKey(*event)) QCustomPlot::keyPressEvent(event);
}

bool LogPlotArea::takeKey(const QKeyEvent& event) {
    if (!takesKey(event)) return false;
    isPlain(event.modifiers()) ? plainKey(event.key()) : controlKey(event.key());
    return true;
}

void LogPlotArea::plainKey(int key) {
    switch (key) {
        case Qt::Key_Plus:
            return zoomBy(keyZoom);
        case Qt::Key_Minus:
            return zoomBy(1 / keyZoom);
        case Qt::Key_0:
            return showAll();
        case Qt::Key_Backspace:
            zoomBack();
            return;
        case Qt::Key_A:
            return measure(scene_.cursor, scene_.b);
        case Qt::Key_B:
            return measure(scene_.a, scene_.cursor);
        case Qt::Key_M:
            return addMark();
        case Qt::Key_O:
            return toggleScale();
        case Qt::Key_Delete:
            if (const auto mark = markAtCursor()) removeMark(*mark);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (const auto mark = markAtCursor()) renameMark(*mark);
            return;
        default:  // Escape
            band_->hide();
            if (drag_) return drag_.reset();
            measure({}, {});
    }
}

void LogPlotArea::controlKey(int key) {
    switch (key) {
        case Qt::Key_Left:
            return moveBy(-keyMove);
        case Qt::Key_Right:
            return moveBy(keyMove);
        case Qt::Key_Home:
            return showAll();
        case Qt::Key_Up:
            return takePane(scene_.paneInHand > 0 ? scene_.paneInHand - 1 : 0);
        default:
            takePane(std::min(scene_.paneInHand + 1, drawn_.empty() ? 0 : drawn_.size() - 1));
    }
}

void LogPlotArea::focusInEvent(QFocusEvent* event) {
    QCustomPlot::focusInEvent(event);
    scene_.keyboard = true;
    cursorsChanged();
}

void LogPlotArea::focusOutEvent(QFocusEvent* event) {
    QCustomPlot::focusOutEvent(event);
    scene_.keyboard = false;
    cursorsChanged();
}

// ---- Zoom

void LogPlotArea::zoomBy(double factor) {
    if (!scene_.hasLog()) return;
    const double middle = (scene_.window.from() + scene_.window.to()) / 2;
    const double cursor = scene_.cursor.value_or(middle);
    const bool inView = cursor >= scene_.window.from() && cursor <= scene_.window.to();
    scene_.window.zoom(factor, inView ? cursor : middle);
    linesChanged();
}

void LogPlotArea::moveBy(double part) {
    scene_.window.move(part);
    linesChanged();
}

void LogPlotArea::showAll() {
    scene_.window.all();
    linesChanged();
}

bool LogPlotArea::zoomBack() {
    if (!scene_.window.back()) return false;
    linesChanged();
    return true;
}

void LogPlotArea::wheelEvent(QWheelEvent* event) {
    event->accept();
    if (!scene_.hasLog() || drawn_.empty()) return;
    // Some systems turn the wheel sideways while Shift is held.
    const QPoint turned = event->angleDelta();
    const double notches = (turned.y() != 0 ? turned.y() : turned.x()) / wheelNotch;
    const bool sideways = (event->modifiers() & Qt::ShiftModifier) != 0 || turned.y() == 0;
    if (sideways) return moveBy(-wheelMove * notches);
    scene_.window.zoom(std::pow(wheelZoom, notches), secondsAt(event->position().x()));
    linesChanged();
}

void LogPlotArea::zoomToBox(QPoint from, QPoint to) {
    const QRect room = drawn_[drag_->pane]->axes().rect();
    const auto partAt = [&](int y) {
        return static_cast<double>(room.bottom() - std::clamp(y, room.top(), room.bottom())) / room.height();
    };
    const auto [left, right] = std::minmax({secondsAt(from.x()), secondsAt(to.x())});
    const auto [low, high] = std::minmax({partAt(from.y()), partAt(to.y())});
    // A stroke along the time means the time.
    const bool flat = std::abs(from.y() - to.y()) < fontMetrics().height();
    scene_.window.showBox(left, right, drag_->pane,
                          flat ? PlotWindow::Share{} : PlotWindow::Share{low, high});
    linesChanged();
}

// ---- Places

double LogPlotArea::secondsAt(double x) const {
    return drawn_.empty() ? 0 : drawn_.front()->axes().axis(QCPAxis::atBottom)->pixelToCoord(x);
}

double LogPlotArea::clamped(double seconds) const {
    return std::clamp(seconds, scene_.log->seconds(0),
                      std::max(scene_.log->seconds(0), scene_.log->lastSeconds()));
}

std::optional<std::size_t> LogPlotArea::paneAt(QPoint at) const {
    for (std::size_t i = 0; i < drawn_.size(); ++i) {
        if (drawn_[i]->whole().contains(at)) return i;
    }
    return {};
}

std::optional<std::size_t> LogPlotArea::markAt(QPoint at) const {
    if (drawn_.empty()) return {};
    for (std::size_t i = scene_.marks.size(); i > 0; --i) {
        if (markFlag(*drawn_.front(), scene_.marks[i - 1]).contains(at)) return i - 1;
    }
    return {};
}

bool LogPlotArea::isNear(std::optional<double> cursor, QPoint at) const {
    return cursor && std::abs(drawn_.front()->xOf(*cursor) - at.x()) <= halfNear;
}

void LogPlotArea::takePane(std::size_t pane) {
    scene_.paneInHand = pane;
    cursorsChanged();
}

void LogPlotArea::chooseCursor(double seconds) {
    cursorAt(seconds);
    Q_EMIT timeChosen(*scene_.cursor);
}

// ---- Mouse

LogPlotArea::Grip LogPlotArea::gripAt(const QMouseEvent& event) const {
    const QPoint at = event.position().toPoint();
    if (event.button() == Qt::MiddleButton) return Grip::Move;
    if ((event.modifiers() & Qt::AltModifier) != 0 && scene_.other != nullptr) return Grip::Shift;
    if (markAt(at)) return Grip::Mark;
    if (isNear(scene_.a, at)) return Grip::A;
    if (isNear(scene_.b, at)) return Grip::B;
    return Grip::Box;
}

void LogPlotArea::mousePressEvent(QMouseEvent* event) {
    const bool taken = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    const QPoint at = event->position().toPoint();
    const auto pane = paneAt(at);
    if (!taken || !pane || !scene_.hasLog()) return;
    takePane(*pane);
    const LogPane& in = *drawn_[*pane];
    if (at.y() < in.axes().top()) {
        for (std::size_t i = 0; i < in.lines().size(); ++i) {
            if (in.legendSlot(i).contains(at)) drawn_[*pane]->lead(i);
        }
        return linesChanged();
    }
    drag_ =
        Drag{gripAt(*event), at, *pane, markAt(at).value_or(0), scene_.shift, scene_.window.from(), false};
    // A marker is taken somewhere in its text.
    if (drag_->grip == Grip::Mark) drag_->start = scene_.marks[drag_->mark].seconds - secondsAt(at.x());
}

void LogPlotArea::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (drag_) return follow(at);
    const bool handle =
        !drawn_.empty() && scene_.hasLog() && !markAt(at) && (isNear(scene_.a, at) || isNear(scene_.b, at));
    setCursor(handle ? Qt::SplitHCursor : markAt(at) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void LogPlotArea::follow(QPoint at) {
    if (!drag_->moved && (at - drag_->from).manhattanLength() < QApplication::startDragDistance()) return;
    drag_->moved = true;
    const double seconds = secondsAt(at.x());
    switch (drag_->grip) {
        case Grip::A:
            return measure(seconds, scene_.b);
        case Grip::B:
            return measure(scene_.a, seconds);
        case Grip::Shift:
            return overlayShift(drag_->shift + seconds - secondsAt(drag_->from.x()));
        case Grip::Move: {
            const double perPixel = scene_.window.length() / drawn_.front()->axes().width();
            const double wanted = drag_->start - (at.x() - drag_->from.x()) * perPixel;
            return moveBy((wanted - scene_.window.from()) / scene_.window.length());
        }
        case Grip::Mark:
            if (drag_->mark >= scene_.marks.size()) return;
            scene_.marks[drag_->mark].seconds = clamped(seconds + drag_->start);
            return cursorsChanged();
        default: {
            const QRect room = drawn_[drag_->pane]->axes().rect();
            QRect box = QRect(drag_->from, at).normalized();
            if (std::abs(at.y() - drag_->from.y()) < fontMetrics().height()) {
                box.setTop(room.top());
                box.setBottom(room.bottom());
            }
            band_->setGeometry(box & room);
            band_->show();
        }
    }
}

void LogPlotArea::mouseReleaseEvent(QMouseEvent* event) {
    if (drag_) letGo(event->position().toPoint());
    drag_.reset();
    band_->hide();
}

void LogPlotArea::letGo(QPoint at) {
    if (drag_->grip == Grip::Mark && drag_->moved) {
        std::ranges::stable_sort(scene_.marks, {}, &LogMark::seconds);
        return tellMarks();
    }
    if (drag_->grip == Grip::Mark && drag_->mark < scene_.marks.size())
        return chooseCursor(scene_.marks[drag_->mark].seconds);
    if (drag_->grip == Grip::Move || drag_->grip == Grip::Shift) return;
    if (!drag_->moved) return chooseCursor(secondsAt(at.x()));
    if (drag_->grip == Grip::Box) zoomToBox(drag_->from, at);
}

void LogPlotArea::mouseDoubleClickEvent(QMouseEvent* event) {
    drag_.reset();
    if (event->button() != Qt::LeftButton) return;
    if (const auto mark = markAt(event->position().toPoint())) return renameMark(*mark);
    showAll();
}

void LogPlotArea::contextMenuEvent(QContextMenuEvent* event) {
    if (!scene_.hasLog() || panes_.empty()) return;
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    if (const auto pane = paneAt(event->pos()); byMouse && pane) takePane(*pane);
    const auto mark = byMouse ? markAt(event->pos()) : markAtCursor();
    const std::size_t pane = scene_.paneInHand;
    QMenu menu(this);
    const auto entry = [&](const char* name, const QString& text, auto act) {
        QAction* action = named(menu.addAction(text), name);
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    QAction* shared = entry("mnuSharedScale", "One &scale for the pane\tO", [this] { toggleScale(); });
    shared->setCheckable(true);
    shared->setChecked(panes_[pane].sharedScale);
    for (const std::string& channel : panes_[pane].channels) {
        entry("mnuRemoveChannel", "Remove " + shownString(channelCaption(channel)), [this, channel] {
            auto others = panes_;
            removeChannel(others, channel);
            panes(others);
        });
    }
    menu.addSeparator();
    entry("mnuMeasureA", "Measuring cursor &A here\tA", [this] { measure(scene_.cursor, scene_.b); });
    entry("mnuMeasureB", "Measuring cursor &B here\tB", [this] { measure(scene_.a, scene_.cursor); });
    entry("mnuMeasureNone", "&No measuring cursors\tEsc", [this] {
        measure({}, {});
    })->setEnabled(scene_.a || scene_.b);
    menu.addSeparator();
    entry("mnuAddMark", "Add a &marker\tM", [this] { addMark(); });
    if (mark) {
        entry("mnuRenameMark", "&Rename the marker\tEnter", [this, mark] { renameMark(*mark); });
        entry("mnuRemoveMark", "&Delete the marker\tDel", [this, mark] { removeMark(*mark); });
    }
    menu.addSeparator();
    entry("mnuShowAll", "Show &all\t0", [this] { showAll(); });
    entry("mnuZoomBack", "Zoom bac&k\tBackspace", [this] { zoomBack(); });
    entry("mnuSavePicture", "Save &picture...", [this] { Q_EMIT pictureAsked(); })->setEnabled(canSave_);
    menu.exec(byMouse ? event->globalPos() : mapToGlobal(drawn_[pane]->axes().rect().center()));
}

}  // namespace zentaq
