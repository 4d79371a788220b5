#include "windows/mdi_main.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/text.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "qt/window_placement.h"
#include "unit/table_kinds.h"
#include "windows/mdi_main_about.h"
#include "windows/mdi_main_edit.h"
#include "windows/recent_menu.h"
#include "windows/window_registry.h"

namespace zentaq {

namespace {

/// It waits for nothing.
constexpr std::string_view killEngine = "mnuMonitor_KillEngine";
/// Of the table's window, which does what it offers.
constexpr std::string_view tablePopup = "mnuPopupTable";

/// The instruments' share of the frame's height before the user has moved the splitter.
constexpr int abovePercent = 26;

/// The enabled state of menu entries is looked at this often when nothing else has changed, in firings.
constexpr int idleFiringsPerRefresh = 16;

/// Ends a monitor session, as the door for other windows does.
constexpr int endMonitoring = 3;

/// Without the sign of its mnemonic.
std::string plainCaption(const MenuEntry& entry) {
    return qString(entry.caption).remove(u'&').toStdString();
}

bool hasChildren(std::string_view name) {
    return std::ranges::any_of(menuTree(), [&](const MenuEntry& entry) { return entry.parent == name; });
}

}  // namespace

MdiMain::MdiMain(Session& session, MainCommands& commands, Kernel& kernel)
    : Form(this), session_(session), commands_(commands), kernel_(kernel) {
    named(this, qString(window::main));  // called by its title, which tells the file
    setWindowTitle(QLatin1String(frameTitle));
    // The frame fits any screen: what stands in the middle gives way, and the strip stays in sight.
    layout()->setSizeConstraint(QLayout::SetNoConstraint);
    makeMenus();
    makeToolbar();
    makeStatusBar();
    MdiMain::look(session.dayMode());
    refresh();
}

void MdiMain::makeMenus() {
    for (const MenuEntry& entry : menuEntries()) {
        const auto parent = menus_.find(entry.parent);
        QMenu* above = parent == menus_.end() ? nullptr : parent->second;
        if (entry.group && above != nullptr) above->addSeparator();
        if (!entry.parent.empty() && !entry.isMenu && !hasChildren(entry.name)) {
            QAction* action = makeAction(entry, above);
            if (above != nullptr) above->addAction(action);
            entries_.push_back({&entry, action});
            continue;
        }
        auto* menu = named(new QMenu(qString(entry.caption), this), qString(entry.name),
                           qString(entry.caption).remove(u'&'));
        menus_[entry.name] = menu;
        // A part may have folded by itself a moment ago.
        connect(menu, &QMenu::aboutToShow, this, &MdiMain::refresh);
        if (entry.name == "mnuRecent")
            connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillRecent(*menu); });
        entries_.push_back({&entry, menu->menuAction()});
        if (above != nullptr) {
            above->addMenu(menu);
        } else if (!entry.caption.empty()) {
            menuBar()->addMenu(menu);
        }
    }
}

QAction* MdiMain::makeAction(const MenuEntry& entry, QWidget* parent) {
    auto* action = named(new QAction(qString(entry.caption), parent), qString(entry.name));
    action->setCheckable(entry.checked != nullptr);
    if (!entry.shortcut.empty()) {
        action->setShortcut(QKeySequence(qString(entry.shortcut)));
        // A table in a window of its own obeys the same keys.
        action->setShortcutContext(Qt::ApplicationShortcut);
    }
    connect(action, &QAction::triggered, this, [this, name = entry.name] { run(name); });
    return action;
}

void MdiMain::makeToolbar() {
    toolbar_ = named(new QToolBar("Main commands", this), "Toolbar1", "Main commands");
    toolbar_->setMovable(false);
    toolbar_->setContextMenuPolicy(Qt::PreventContextMenu);
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const int size = fontMetrics().height() * 5 / 4;
    toolbar_->setIconSize({size, size});
    for (const ToolbarButton& button : toolbarButtons()) {
        QAction* action = toolbar_->addAction(qString(button.key));
        action->setObjectName(qString(button.key));
        action->setToolTip(qString(button.tip));
        connect(action, &QAction::triggered, this, [this, &button] { pressed(button); });
        // Its commands are in the menus. A button that had got the keyboard from a control that went would
        // begin a new calibration at the next press of Space.
        toolbar_->widgetForAction(action)->setFocusPolicy(Qt::NoFocus);
        buttons_.emplace_back(&button, action);
    }
    addToolBar(toolbar_);
    // The toolkit's own, where there is no room for all buttons.
    if (auto* rest = toolbar_->findChild<QToolButton*>("qt_toolbar_ext_button")) {
        rest->setAccessibleName("More commands");
        rest->setToolTip("More commands");
    }
}

void MdiMain::pressed(const ToolbarButton& button) {
    // Only a session that runs is ended: without one the dashboard keeps its numbers if the user stays.
    if (button.key == "Shutdown" && session_.Monitoring) {
        endOnFailure([&] { commands_.Load_Command(endMonitoring); }, [](auto&&) {});
    }
    if (button.key == "Print") {
        return session_.windows().afterEdits("Print", [this] { commands_.printing.askedByToolbar(); });
    }
    run(button.command);
}

void MdiMain::makeStatusBar() {
    QStatusBar* bar = statusBar();
    named(bar, "StatusBar1", "Status");
    bar->setSizeGripEnabled(false);
    strip_ = new StateStripView(bar);
    bar->addWidget(strip_, 1);
    connect(strip_, &StateStripView::pressed, this, [this](const StripRow& row) { pressed(row); });
    connect(strip_, &StateStripView::keyboardLeft, this,
            [this] { session_.windows().focus(window::config); });
}

void MdiMain::showStates() {
    // A cleared panel stays empty until the link has something new to tell.
    if (session_.linkDisplay.status().panel3 != firmwareSeen_) {
        firmwareShown_ = firmwareSeen_ = session_.linkDisplay.status().panel3;
    }
    StripFacts facts = stripFacts(session_);
    facts.panel3 = firmwareShown_;
    strip_->show(stripRows(facts));
    if (session_.notices.waitForSomebody()) firstPress_.listen();
}

// A message is not taken away from somebody who was not there.
void MdiMain::somebodyIsThere() {
    session_.notices.userIsThere(session_.platform().clock.monotonicUs());
}

void MdiMain::pressed(const StripRow& row) {
    if (!commandsOn_) return;
    if (row.part == StripPart::Notice) {
        session_.notices.dismiss(session_.platform().clock.monotonicUs());
    } else if (row.part == StripPart::Cell) {
        session_.windows().focus(window::table);
    } else if (!row.command.empty()) {
        run(row.command);
    } else {
        session_.windows().open(window::help, std::string(row.topic));
    }
    showStates();
}

void MdiMain::openOn(const std::string& /*on*/, const std::string& /*title*/) {
    if (!restorePlacement(*this, session_.settings())) {
        // Where nobody manages windows the state alone changes nothing.
        setGeometry(screen()->availableGeometry());
        setWindowState(Qt::WindowMaximized);
    }
    show();
}

// ---- The middle

QSplitter* MdiMain::centre() {
    if (centre_ == nullptr) {
        const auto shares = [](int height) {
            const int above = height * abovePercent / 100;
            return QList<int>{above, height - above};
        };
        centre_ = new KeptSplitter(Qt::Vertical, "splCentre", session_.settings(), shares, this);
        setCentralWidget(centre_);
    }
    return centre_;
}

void MdiMain::putBelow(QWidget& window) {
    centre()->addWidget(&window);
}

void MdiMain::putAbove(QWidget& window) {
    centre()->insertWidget(0, &window);
    centre_->setStretchFactor(0, 0);
    centre_->setStretchFactor(1, 1);
    foldsChanged();
}

// Behind the layout that is going on: it may be what told that room is short.
void MdiMain::foldsChanged() {
    refresh();
    if (centre_ == nullptr || centre_->count() < 2) return;
    centre_->handle(1)->setEnabled(!session_.folds.dashboard.folded());
    QMetaObject::invokeMethod(centre_, &KeptSplitter::shareOut, Qt::QueuedConnection);
}

void MdiMain::closeNow() {
    closing_ = true;
    storePlacement(*this, session_.settings());
    close();
}

void MdiMain::closeEvent(QCloseEvent* event) {
    if (!closing_) session_.windows().afterEdits("Close", [this] { closeRequested(); });
    event->setAccepted(closing_);
}

// A failure on the way out is told, and the window stays: the user may try again.
void MdiMain::closeRequested() {
    endOnFailure([&] { kernel_.closeRequested(); },
                 [&](const std::string& why) {
                     session_.show({frameTitle, why, Icon::Critical, Buttons::Ok});
                 });
}

void MdiMain::titleChanged(const std::string& title) {
    const QString shown = title.empty() ? QString(QLatin1String(frameTitle)) : shownString(title);
    setWindowTitle(shown);
    setAccessibleName(shown);
}

/// Icons in the colours of day or night.
void MdiMain::look(bool /*day*/) {
    const LookColors colors = lookColors(appliedLook(*qApp));
    for (const auto& [button, action] : buttons_) action->setIcon(icon(qString(button->key), colors.text));
    setWindowIcon(icon(QStringLiteral("Zentaq4"), colors.accent));
}

void MdiMain::enableToolbar(bool on) {
    commandsOn_ = on;
    toolbar_->setEnabled(on);
    refresh();
}

bool MdiMain::enabled(const Entry& entry) const {
    if (!commandsOn_) return false;
    return entry.data->enabled != nullptr ? entry.data->enabled(session_) : entry.action->menu() != nullptr;
}

void MdiMain::refresh() {
    for (const Entry& entry : entries_) {
        // The table that opens the pop-up says what of it can be done, while anything can.
        const bool ofTable = entry.data->parent == tablePopup;
        if (!ofTable || commandsOn_ != popupOn_) entry.action->setEnabled(enabled(entry));
        if (entry.data->checked != nullptr) entry.action->setChecked(entry.data->checked(session_));
    }
    popupOn_ = commandsOn_;
    for (const auto& [button, action] : buttons_) {
        for (const Entry& entry : entries_) {
            if (entry.data->name == button->command) action->setEnabled(entry.action->isEnabled());
        }
    }
    showStates();
}

void MdiMain::follow() {
    const std::uint64_t console = session_.console.changes();
    const std::uint64_t link = session_.linkDisplay.status().changes;
    const bool moved = console != consoleSeen_ || link != linkSeen_;
    if (!moved && ++idleFirings_ < idleFiringsPerRefresh) return;
    idleFirings_ = 0;
    consoleSeen_ = console;
    linkSeen_ = link;
    refresh();
}

void MdiMain::run(std::string_view entry) {
    // The list of a field in a dialog lets the keys of the menu pass to here.
    if (session_.windows().boxOpen()) return;
    const auto again = [this, name = std::string(entry)] { run(name); };
    if (entry != killEngine && session_.saving.putsOffWhileReading(entry, again)) return;
    const Entry* row = find(entry);
    row != nullptr && row->data->afterEdits ? runBehindEdits(*row) : runNow(entry);
}

const MdiMain::Entry* MdiMain::find(std::string_view entry) const {
    const auto found = std::ranges::find(entries_, entry, [](const Entry& one) { return one.data->name; });
    return found == entries_.end() ? nullptr : &*found;
}

// What the edits wait for may take away what the command needs.
void MdiMain::runBehindEdits(const Entry& row) {
    const std::string caption = plainCaption(*row.data);
    const bool offered = enabled(row);
    session_.windows().afterEdits(caption, [this, &row, caption, offered] {
        if (!offered || enabled(row)) return runNow(row.data->name);
        tellNotRun(caption);
    });
}

void MdiMain::tellNotRun(const std::string& caption) {
    notRun_.push_back('"' + caption + '"');
    if (notRun_.size() > 1) return;
    session_.windows().later([this] {
        const std::vector<std::string> captions = std::exchange(notRun_, {});
        std::string names;
        for (const std::string& one : captions) names += (names.empty() ? "" : ", ") + one;
        session_.notice("Not run: " + names + ". What it needs has gone meanwhile.");
    });
}

void MdiMain::runNow(std::string_view entry) {
    endOnFailure([&] { perform(entry); },
                 [&](const std::string& why) {
                     session_.sysLog(std::string(entry) + ": " + why);
                     session_.show({frameTitle, why, Icon::Critical, Buttons::Ok});
                 });
    refresh();
}

void MdiMain::perform(std::string_view entry) {
    const Entry* row = find(entry);
    if (row != nullptr && row->data->run != nullptr) return row->data->run(commands_);
    if (row != nullptr && !row->data->window.empty()) return openWindow(*row->data);
    if (row != nullptr && ofTablePopup(*row->data))
        return session_.windows().tell(&WindowNews::tableCommand, std::string(entry));
    if (entry == "mnuExit") kernel_.System_Shutdown(false);
    if (entry == "mnuAbout") about();
    editCommand(entry, QApplication::focusWidget());
}

bool MdiMain::ofTablePopup(const MenuEntry& entry) const {
    if (entry.parent == tablePopup) return true;
    const Entry* above = find(entry.parent);
    return above != nullptr && above->data->parent == tablePopup;
}

void MdiMain::openWindow(const MenuEntry& entry) {
    const std::string on(entry.on);
    // A table wants a calibration that has it.
    if (entry.window == window::table) return commands_.openTable(on, tableTitle(on));
    session_.windows().open(entry.window, on);
}

void MdiMain::fillRecent(QMenu& menu) {
    fillRecentMenu(menu, session_.recentFiles.paths(), [this](const std::string& path) {
        endOnFailure([&] { commands_.files.open(path); },
                     [&](const std::string& why) {
                         session_.show({frameTitle, why, Icon::Critical, Buttons::Ok});
                     });
        refresh();
    });
}

void MdiMain::about() {
    FrmAbout(session_, this).exec();
}

}  // namespace zentaq
