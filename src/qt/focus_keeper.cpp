#include "qt/focus_keeper.h"

#include <QApplication>
#include <QEvent>
#include <QWindow>

namespace zentaq {

namespace {

/// Longer than a window manager takes to make up its mind on a busy laptop, shorter than a user takes to go
/// on in another window.
constexpr int momentMs = 400;

/// The window stands in front of this one and belongs to it.
bool standsOver(const QWidget& window, const QWindow* other) {
    const QWindow* below = window.windowHandle();
    while (below != nullptr && below != other) below = below->transientParent();
    return below != nullptr;
}

}  // namespace

FocusKeeper::FocusKeeper(QObject* parent) : QObject(parent) {
    moment_.setSingleShot(true);
    connect(&moment_, &QTimer::timeout, this, &FocusKeeper::end);
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &FocusKeeper::focusMoved);
}

void FocusKeeper::keep(QWidget& window) {
    window_ = &window;
    moment_.start(momentMs);
    qApp->installEventFilter(this);
    giveBack();
}

QWidget* FocusKeeper::window() const {
    return moment_.isActive() && window_ != nullptr && window_->isVisible() ? window_.data() : nullptr;
}

void FocusKeeper::end() {
    moment_.stop();
    qApp->removeEventFilter(this);
}

void FocusKeeper::giveBack() {
    if (window() != nullptr && QApplication::activeModalWidget() == nullptr) window_->activateWindow();
}

// Only what the window belongs to is taken for the window manager's choice: another window has been opened or
// brought to the front by the command that asked.
void FocusKeeper::focusMoved(const QWindow* now) {
    if (now == nullptr || window() == nullptr || now == window_->windowHandle()) return;
    if (QApplication::activeModalWidget() != nullptr || !standsOver(*window_, now)) return end();
    // Not inside the toolkit's own change of the focus.
    QTimer::singleShot(0, this, &FocusKeeper::giveBack);
}

bool FocusKeeper::eventFilter(QObject*, QEvent* event) {
    // A key that comes to another window was meant for this one.
    const bool typed = event->type() == QEvent::KeyPress && window_ != nullptr && window_->isActiveWindow();
    const bool clicked = event->type() == QEvent::MouseButtonPress;
    if ((typed || clicked) && event->spontaneous()) end();
    return false;
}

}  // namespace zentaq
