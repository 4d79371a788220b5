#include "windows/dock.h"

#include <QTimer>

#include "qt/second_window.h"
#include "qt/window_placement.h"

namespace zentaq {

void Dock::place(DockingForm& form, bool docked) {
    form.setDocked(docked);
    const QString title = QString::fromStdString(form.title());
    form.widget().setWindowTitle(title);
    // On its way the form loses the keyboard, and the toolkit would give it to the first field of the window.
    form.moves(true);
    if (docked) {
        takeIn(form, title);
    } else {
        letOut(form);
    }
    form.moves(false);
    form.followLook();
    form.takeFocus();
    // A tool bar that has moved shows its fields from the event loop: one that is in hand can take it then.
    QTimer::singleShot(0, &form.widget(), [&form] { form.takeFocus(); });
}

void Dock::takeIn(DockingForm& form, const QString& title) {
    QWidget& widget = form.widget();
    storePlacement(widget, settings_);
    if (widget.isWindow()) {
        // Before it becomes a part of the main window: it would take the program's keyboard along.
        widget.hide();
        tabs_.window()->activateWindow();
    }
    if (inside_ != &widget) removeTab();
    inside_ = &widget;
    form_ = &form;
    int index = tabs_.indexOf(&widget);
    if (index < 0) index = tabs_.addTab(&widget, title);
    tabs_.setTabText(index, title);
    tabs_.setCurrentIndex(index);
}

void Dock::letOut(DockingForm& form) {
    QWidget& widget = form.widget();
    if (inside_ != nullptr) {
        const QSize size = widget.size();
        removeTab();
        widget.setParent(tabs_.window(), secondWindow());
        if (!restorePlacement(widget, settings_)) widget.resize(size);
    }
    form.takeFocus();
    widget.show();
    widget.raise();
    widget.activateWindow();
}

void Dock::removeTab() {
    if (inside_ != nullptr) tabs_.removeTab(tabs_.indexOf(inside_));
    inside_ = nullptr;
}

void Dock::leave(const QWidget& form) {
    storePlacement(form, settings_);
    if (inside_ == &form) removeTab();
}

bool Dock::takeFocus() {
    if (inside_ == nullptr || !inside_->isVisibleTo(tabs_.window())) return false;
    form_->takeFocus();
    return true;
}

}  // namespace zentaq
