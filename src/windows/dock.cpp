#include "windows/dock.h"

#include <QTimer>
#include <algorithm>

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
    if (!isInside(widget)) inside_.push_back({&widget, &form});
    int index = tabs_.indexOf(&widget);
    if (index < 0) index = tabs_.addTab(&widget, title);
    tabs_.setTabText(index, title);
    tabs_.setCurrentIndex(index);
}

void Dock::letOut(DockingForm& form) {
    QWidget& widget = form.widget();
    if (isInside(widget)) {
        const QSize size = widget.size();
        removeTab(widget);
        widget.setParent(tabs_.window(), secondWindow());
        if (!restorePlacement(widget, settings_)) widget.resize(size);
    }
    form.takeFocus();
    widget.show();
    widget.raise();
    widget.activateWindow();
}

bool Dock::isInside(const QWidget& form) const {
    return std::ranges::any_of(inside_, [&](const Inside& one) { return one.widget == &form; });
}

void Dock::removeTab(const QWidget& form) {
    const int tab = tabs_.indexOf(const_cast<QWidget*>(&form));  // NOLINT: the toolkit asks for it
    if (tab >= 0) tabs_.removeTab(tab);
    std::erase_if(inside_, [&](const Inside& one) { return one.widget == nullptr || one.widget == &form; });
}

void Dock::leave(const QWidget& form) {
    storePlacement(form, settings_);
    removeTab(form);
}

bool Dock::takeFocus() {
    for (const Inside& one : inside_) {
        if (one.widget == nullptr || tabs_.currentWidget() != one.widget) continue;
        if (!one.widget->isVisibleTo(tabs_.window())) continue;
        one.form->takeFocus();
        return true;
    }
    return false;
}

}  // namespace zentaq
