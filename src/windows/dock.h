// The places of forms that stand inside the workspace, each as a tab of its own, or in windows of their own,
// as the user wants it.
#pragma once

#include <QPointer>
#include <QTabWidget>
#include <vector>

#include "platform/settings_store.h"
#include "windows/form.h"

namespace zentaq {

class DockingForm : public Form {
 public:
    using Form::Form;

    virtual std::string title() const = 0;
    virtual void setDocked(bool docked) = 0;
    /// While it changes its place, losing the keyboard ends no entry.
    virtual void moves(bool on) = 0;
    /// The keyboard goes to what is in hand in it.
    virtual void takeFocus() = 0;
    /// It stands in another window, whose style sheet gives it the palette that it met first.
    virtual void followLook() = 0;
};

class Dock {
 public:
    /// `tabs` stand in the main window.
    Dock(QTabWidget& tabs, SettingsStore& settings) : tabs_(tabs), settings_(settings) {}

    void place(DockingForm& form, bool docked);
    /// It goes; a window of its own comes back where it stood.
    void leave(const QWidget& form);
    /// Gives the keyboard to the form inside the workspace. False: there is none to be seen.
    bool takeFocus();

 private:
    void takeIn(DockingForm& form, const QString& title);
    void letOut(DockingForm& form);
    bool isInside(const QWidget& form) const;
    void removeTab(const QWidget& form);

    QTabWidget& tabs_;
    SettingsStore& settings_;
    struct Inside {
        QPointer<QWidget> widget;
        DockingForm* form;
    };
    std::vector<Inside> inside_;
};

}  // namespace zentaq
