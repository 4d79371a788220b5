// mdiMain: the frame window with menu, toolbar and status bar. Menu and toolbar are made from the core's
// tables; an entry runs a command of the core and nothing else.
#pragma once

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>
#include <map>
#include <string>
#include <vector>

#include "app/main_commands.h"
#include "app/menu.h"
#include "app/session.h"
#include "app/start_up.h"
#include "qt/kept_splitter.h"
#include "windows/first_press.h"
#include "windows/form.h"
#include "windows/state_strip_view.h"

namespace zentaq {

class MdiMain : public QMainWindow, public Form {
    Q_OBJECT

 public:
    static constexpr auto frameTitle = "Norvalia Zentaq Engine Management System";

    MdiMain(Session& session, MainCommands& commands, Kernel& kernel);

    /// The frame where the user left it, at first on the whole screen's height and width.
    void openOn(const std::string& on, const std::string& title) override;
    /// What stands in the middle: one window above the other, shared out as the user left it.
    QSplitter* centre();
    void putAbove(QWidget& window);
    void putBelow(QWidget& window);
    /// Closes without asking; the core has asked.
    void closeNow();

    /// Off while the program starts, and with the toolbar every command of the menus and its key: what they
    /// work on is not made yet. The window's own button still closes it.
    void enableToolbar(bool on) override;
    void titleChanged(const std::string& title) override;
    void onFlyChanged(bool) override { refresh(); }
    void clearPanel3() override {
        firmwareShown_.clear();
        refresh();
    }
    void look(bool day) override;
    void cellContextChanged() override { showStates(); }
    void foldsChanged() override;
    void restoreLayout() override { restoreSplitters(*this); }
    void windowClosed() override { refresh(); }
    void follow() override;
    /// Which entries are enabled and checked, and what the state strip says.
    void refresh();

    /// Runs the command of a menu entry, as a click on it does. Not while a dialog or a list stands over the
    /// window; behind the edits typed before it where it stores, programs, saves or closes.
    void run(std::string_view entry);
    /// Tells, in one line for all of them, of a command that waited until it could not be run any more.
    void tellNotRun(const std::string& caption);

 protected:
    void closeEvent(QCloseEvent* event) override;

 private:
    struct Entry {
        const MenuEntry* data;
        QAction* action;
    };

    bool enabled(const Entry& entry) const;
    const Entry* find(std::string_view entry) const;
    void runNow(std::string_view entry);
    void runBehindEdits(const Entry& row);
    void closeRequested();
    void makeMenus();
    QAction* makeAction(const MenuEntry& entry, QWidget* parent);
    void makeToolbar();
    void pressed(const ToolbarButton& button);
    void makeStatusBar();
    void showStates();
    void somebodyIsThere();
    void pressed(const StripRow& row);
    void perform(std::string_view entry);
    bool ofTablePopup(const MenuEntry& entry) const;
    void openWindow(const MenuEntry& entry);
    void fillRecent(QMenu& menu);
    void about();

    Session& session_;
    MainCommands& commands_;
    Kernel& kernel_;
    std::map<std::string_view, QMenu*> menus_;
    std::vector<Entry> entries_;
    std::vector<std::pair<const ToolbarButton*, QAction*>> buttons_;
    QToolBar* toolbar_ = nullptr;
    KeptSplitter* centre_ = nullptr;
    StateStripView* strip_ = nullptr;
    FirstPress firstPress_{[this] { somebodyIsThere(); }};
    std::string firmwareSeen_;
    std::string firmwareShown_;
    bool commandsOn_ = true;
    bool popupOn_ = true;  ///< as the pop-up of a table has seen that last
    std::uint64_t consoleSeen_ = 0;
    std::uint64_t linkSeen_ = 0;
    int idleFirings_ = 0;
    std::vector<std::string> notRun_;  ///< the line about them is on its way
    bool closing_ = false;
};

}  // namespace zentaq
