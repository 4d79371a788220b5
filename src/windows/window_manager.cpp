#include "windows/window_manager.h"

#include <QApplication>
#include <QScopeGuard>
#include <QSplitter>
#include <utility>

#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "config/gui_rules.h"
#include "config/tree.h"
#include "link/flag_scope.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/qt_dialogs.h"
#include "qt/second_window.h"
#include "qt/window_placement.h"

namespace zentaq {

namespace {

/// The enabled state of menu entries is looked at this often when nothing else has changed, in firings.
constexpr int idleFiringsPerRefresh = 16;

/// The instruments' share of the frame's height before the user has moved the splitter.
constexpr int dashboardPercent = 26;

/// FrmTable::Load_Command: shows anew which toolbar items are enabled.
constexpr int refreshToolbar = 3;

constexpr auto placeSection = "Forms";
constexpr auto splitKey = "splCentre";

QString helpKeyOf(const QWidget* control) {
    for (const QWidget* widget = control; widget != nullptr; widget = widget->parentWidget()) {
        QString key = widget->property(helpKeyProperty).toString();
        if (!key.isEmpty()) return key;
    }
    return {};
}

}  // namespace

WindowManager::WindowManager(QApplication& application, Session& session, MainCommands& commands,
                             Kernel& kernel)
    : application_(application), session_(session), commands_(commands) {
    applyLook(application_, session.dayMode() ? DisplayMode::Day : DisplayMode::Night);
    main_ = std::make_unique<MdiMain>(session, commands, kernel);
    connect(main_.get(), &MdiMain::fastHelpAsked, this, &WindowManager::fastHelp);
    connect(&application_, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { focusChanged(now); });
    tmrRefresh_.setObjectName(QStringLiteral("tmrRefresh"));
    connect(&tmrRefresh_, &QTimer::timeout, this, &WindowManager::refresh);
    session_.attach(*this);
}

WindowManager::~WindowManager() {
    application_.disconnect(this);
    delete table_;
}

// ---- Start and end

void WindowManager::showMain() {
    main_->showFrame();
    tmrRefresh_.start(refreshMs);
}

void WindowManager::splash(std::string_view text) {
    if (closed_) return;
    if (!splash_) {
        splash_ = std::make_unique<FrmSplash>(QString::fromStdString(versionText()), main_.get());
    }
    splash_->status(text);
    if (session_.StartingUp == 1) hideSplash();
}

void WindowManager::hideSplash() {
    if (splash_) splash_->hide();
}

void WindowManager::makeCentre() {
    if (centre_ != nullptr) return;
    centre_ = new QSplitter(Qt::Vertical, main_.get());
    centre_->setObjectName(QStringLiteral("splCentre"));
    main_->setCentralWidget(centre_);
}

void WindowManager::showConfig() {
    if (closed_) return;
    makeCentre();
    if (!config_) {
        config_ = new FrmConfig(session_, commands_, centre_);
        connect(config_, &FrmConfig::entryAsked, main_.get(), &MdiMain::run);
        centre_->addWidget(config_);
    }
    config_->show();
    config_->showStartTab();
    refresh();
}

void WindowManager::showDashboard() {
    if (closed_) return;
    makeCentre();
    if (!dashboard_) {
        dashboard_ = new FrmDashBoard(session_, commands_, centre_);
        centre_->insertWidget(0, dashboard_);
        centre_->setStretchFactor(0, 0);
        centre_->setStretchFactor(1, 1);
        const std::string stored = session_.settings().get(placeSection, splitKey);
        if (stored.empty() ||
            !centre_->restoreState(QByteArray::fromBase64(QByteArray::fromStdString(stored)))) {
            const int strip = main_->height() * dashboardPercent / 100;
            centre_->setSizes({strip, main_->height() - strip});
        }
    }
    session_.applyMonitorMode();
    dashboard_->show();
    dashboard_->startTimers();
}

void WindowManager::showCommList(bool on) {
    if (config_) config_->showCommList(on);
}

void WindowManager::focusForm(const std::string& form) {
    if (form == "frmTABLE" && table_) {
        table_->window()->activateWindow();
        table_->takeFocus();
        return;
    }
    // A form keeps its own field in hand.
    if (QWidget* window = formNamed(form)) return window->activateWindow();
    if (!config_) return;
    main_->activateWindow();
    if (!config_->isAncestorOf(QApplication::focusWidget())) config_->focusTree();
}

/// A window of its own that is open; nullptr for the others.
QWidget* WindowManager::formNamed(const std::string& form) {
    for (QWidget* window : std::initializer_list<QWidget*>{generalConfig_, sensorEditor_, options_}) {
        if (window == nullptr || !window->isVisible()) continue;
        if (window->objectName().toStdString() == form) return window;
    }
    return nullptr;
}

void WindowManager::showTip(const std::string& text) {
    if (config_) config_->showTip(text);
}

void WindowManager::killTimers() {
    tmrRefresh_.stop();
    if (dashboard_) dashboard_->Kill_Timers();
}

void WindowManager::closeMain() {
    if (closed_) return;
    closed_ = true;
    killTimers();
    hideSplash();
    removeForms();
    const std::initializer_list<QWidget*> forms{generalConfig_, sensorEditor_, options_, fastHelp_, help_};
    for (QWidget* form : forms) {
        if (form != nullptr) form->close();
    }
    if (centre_ != nullptr) {
        skipFailing([&] {
            session_.settings().set(placeSection, splitKey, centre_->saveState().toBase64().toStdString());
        });
    }
    if (config_) session_.sysLog("Config App. Terminated.");
    main_->closeNow();
    Q_EMIT mainClosed();
}

// ---- The calibration in hand

void WindowManager::setupNodes() {
    if (!config_) return;
    if (!treeReady_) session_.sysLog("Advanced Config Initialized.");
    treeReady_ = true;
    config_->setupNodes();
    config_->showUnit();
    if (table_) table_->followPaint();
    // The table that may have had the keyboard stands behind a page now.
    config_->focusTree();
}

void WindowManager::showStartTab() {
    if (!config_) return;
    config_->showStartTab();
    config_->focusTree();
}

void WindowManager::onFlyChanged(bool on) {
    main_->showOnFly(on);
    if (config_) config_->onFlyChanged(on);
    if (generalConfig_) generalConfig_->onFlyChanged(on);
    if (table_) table_->Load_Command(refreshToolbar);
}

void WindowManager::onFlyLock(bool busy) {
    if (table_) table_->onFlyLock(busy);
}

void WindowManager::showUnit() {
    if (config_) config_->showUnit();
    if (table_) table_->showUnit();
    if (generalConfig_) generalConfig_->showUnit();
}

// ---- What has been typed before a command

void WindowManager::afterEdits(const std::string& caption, const std::function<void()>& command) {
    const auto again = [this, caption, command] { afterEdits(caption, command); };
    if (session_.saving.putsOffWhileReading(caption, again)) return;
    const auto inTurn = [this, command] {
        if (finishEdits()) command();
    };
    if (table_ && table_->keysWait()) {
        table_->behindKeys(caption, inTurn);
    } else {
        inTurn();
    }
}

/// False: an entry was refused, and the user has been told.
bool WindowManager::finishEdits() {
    if (generalConfig_ && !generalConfig_->finishEntry()) return false;
    return !table_ || table_->finishEdits();
}

// ---- Windows of their own

namespace {

/// In front of all others, with the keyboard.
void bringToFront(QWidget& window) {
    window.show();
    window.raise();
    window.activateWindow();
}

}  // namespace

// A form reads everything anew when it opens, so a closed one is done with.
template <typename Form>
void WindowManager::closesInto(QPointer<Form>& place) {
    connect(place, &Form::closed, this, [this, &place] {
        if (place) place->deleteLater();
        place = nullptr;
        if (closed_) return;
        // The sensor manager may have been opened from the general parameters.
        QWidget* next = formNamed("frmGeneralConfig");
        (next != nullptr ? next : main_.get())->activateWindow();
        if (next == nullptr) focusMain();
        main_->refresh();
        if (!config_) return;
        config_->showUnit();
        config_->refreshPorts();
    });
}

// The control in hand keeps the keyboard if it is still there and was chosen by the user.
void WindowManager::focusMain() {
    if (!config_) return;
    const QWidget* inHand = main_->focusWidget();
    if (inHand != nullptr && inHand != main_.get() && inHand->isVisibleTo(main_.get())) return;
    if (table_ && !table_->isWindow() && table_->isVisibleTo(main_.get())) return table_->takeFocus();
    config_->focusTree();
}

void WindowManager::openGeneralConfig() {
    if (closed_) return;
    if (!generalConfig_) {
        generalConfig_ = new FrmGeneralConfig(session_, commands_, main_.get());
        connect(generalConfig_, &FrmGeneralConfig::sensorManagerAsked, this,
                [this] { main_->run("mnuMAPSensors"); });
        closesInto(generalConfig_);
    }
    bringToFront(*generalConfig_);
}

bool WindowManager::closeGeneralConfig() {
    return !generalConfig_ || generalConfig_->close();
}

void WindowManager::saveGeneralConfig() {
    if (generalConfig_) generalConfig_->save();
}

void WindowManager::openSensorEditor() {
    if (closed_) return;
    if (!sensorEditor_) {
        sensorEditor_ = new FrmEditMAPSensors(session_, main_.get());
        closesInto(sensorEditor_);
    }
    bringToFront(*sensorEditor_);
}

void WindowManager::openOptions(OptionsPage page) {
    if (closed_) return;
    if (!options_) {
        options_ = new FrmOptions(session_, commands_, main_.get());
        closesInto(options_);
    }
    if (page == OptionsPage::Monitor) options_->showPage(FrmOptions::monitorPage);
    bringToFront(*options_);
}

void WindowManager::openHelp(const std::string& topic) {
    if (closed_) return;
    if (!help_) {
        help_ = new FrmHelp(guideFolder(session_.applicationFolder()), main_.get());
        help_->keepPlace(session_.settings());
    }
    help_->open(topic);
}

void WindowManager::temperaturesChanged() {
    showUnit();
    if (dashboard_) dashboard_->UPDATE_DISPLAY();
}

void WindowManager::updateRateChanged() {
    if (dashboard_) dashboard_->startTimers();
}

void WindowManager::clearTableColours() {
    if (table_) table_->clearColours();
}

void WindowManager::dashboardColours(const std::string& lights, const std::string& needle) {
    if (!dashboard_) return;
    dashboard_->Set_DashBoard_Color(lights);
    dashboard_->Set_Needle_Color(needle);
}

void WindowManager::sensorsChanged() {
    if (generalConfig_) generalConfig_->sensorsChanged();
    if (sensorEditor_) sensorEditor_->sensorsChanged();
    if (config_) config_->showUnit();
}

// The table may be closing from inside one of its own events, so it goes later.
// At once: what the table logs at its end must not stand between the lines of the command that closes it.
void WindowManager::removeForms() {
    if (!table_) return;
    // The program ends: its log tells what was not taken.
    const FrmTable::Left left = closed_ ? FrmTable::Left{} : table_->takeWaiting();
    leaveTable();
    delete table_;
    if (config_ && !closed_) config_->focusTree();
    handOn(left);
}

// What was typed for the program goes on without the table that it waited for; the keys for its cells are
// told.
void WindowManager::handOn(const FrmTable::Left& left) {
    FrmTable::tellNotTaken(session_, left.notTaken);
    if (left.commands.empty()) return;
    handedOn_.insert(handedOn_.end(), left.commands.begin(), left.commands.end());
    QTimer::singleShot(0, this, &WindowManager::runHandedOn);
}

// In order, and not under a box of the command that removed the table: that one has not come to its end.
void WindowManager::runHandedOn() {
    if (runsHandedOn_) return;
    const auto goOn = qScopeGuard([this] {
        if (!handedOn_.empty()) QTimer::singleShot(refreshMs, this, &WindowManager::runHandedOn);
    });
    const FlagScope scope(runsHandedOn_);
    while (!handedOn_.empty() && !closed_ && !boxOpen() && !session_.saving.reading()) {
        const std::function<void()> next = std::move(handedOn_.front());
        handedOn_.pop_front();
        next();
    }
    if (closed_) handedOn_.clear();
}

void WindowManager::leaveTable() {
    storePlacement(*table_, session_.settings());
    if (config_) config_->undock();
}

// The table asked for its end from inside one of its own events.
void WindowManager::tableClosed() {
    if (!table_) return;
    const FrmTable::Left left = table_->takeWaiting();
    leaveTable();
    table_->hide();
    table_->deleteLater();
    table_ = nullptr;
    main_->activateWindow();
    if (config_) config_->focusTree();
    handOn(left);
}

void WindowManager::makeTable() {
    if (table_) return;
    table_ = new FrmTable(session_, commands_, config_);
    connect(table_, &FrmTable::closed, this, &WindowManager::tableClosed);
    connect(table_, &FrmTable::dockingAsked, this, &WindowManager::placeTable);
}

void WindowManager::openTable(const std::string& table, const std::string& title) {
    if (!config_ || closed_) return;
    if (!table_ || !table_->keysWait()) return showTable(table, title);
    // What it comes behind may take the calibration away.
    table_->behindKeys(title, [this, table, title] {
        offersTable(table) ? showTable(table, title) : main_->tellNotRun(title);
    });
}

bool WindowManager::offersTable(const std::string& table) const {
    if (session_.currentUnit() == 0 || session_.creating()) return false;
    return hasTable(session_.currentUnitObject().kind(), table);
}

void WindowManager::showTable(const std::string& table, const std::string& title) {
    makeTable();
    // A second click on the same table keeps it as it is, selection and all.
    if (table_->tableName() != table) {
        if (!table_->finishEntry() || !table_) return;
        table_->Setup_Grid(table, title);
    }
    table_->setProperty(helpKeyProperty, QString::fromStdString(tableHelp(table)));
    placeTable(table_->docked());
}

// Inside the workspace, or in a window of its own.
void WindowManager::placeTable(bool docked) {
    if (!table_ || !config_) return;
    table_->setDocked(docked);
    const QString title = QString::fromStdString(table_->title());
    table_->setWindowTitle(title);
    // On its way the table loses the keyboard, and the toolkit would give it to the first field of the
    // window.
    table_->moves(true);
    if (docked) {
        storePlacement(*table_, session_.settings());
        if (table_->isWindow()) {
            // Before it becomes a part of the main window: it would take the program's keyboard along.
            table_->hide();
            main_->activateWindow();
        }
        config_->dock(table_, title);
    } else {
        undockTable();
    }
    table_->moves(false);
    table_->followLook();
    table_->takeFocus();
    // A tool bar that has moved shows its fields from the event loop: one that is in hand can take it then.
    QTimer::singleShot(0, table_, &FrmTable::takeFocus);
}

void WindowManager::undockTable() {
    if (config_->docked()) {
        const QSize size = table_->size();
        config_->undock();
        table_->setParent(main_.get(), secondWindow());
        if (!restorePlacement(*table_, session_.settings())) table_->resize(size);
    }
    table_->takeFocus();
    table_->show();
    table_->raise();
    table_->activateWindow();
}

// ---- Live

void WindowManager::dayMode() {
    applyLook(application_, DisplayMode::Day);
    main_->showLook();
    if (dashboard_) dashboard_->Day_Mode();
    if (table_) table_->Day_Mode();
    takeStoredColors();
}

void WindowManager::nightMode() {
    applyLook(application_, DisplayMode::Night);
    main_->showLook();
    if (dashboard_) dashboard_->Night_Mode();
    if (table_) table_->Night_Mode();
    takeStoredColors();
}

void WindowManager::takeStoredColors() {
    const SettingsStore& settings = session_.settings();
    dashboardColours(settings.get("System", "DashLights"), settings.get("System", "NeedleColor"));
    // Kept: LabelLights is stored and shown by the options and changes nothing.
}

void WindowManager::unitKindFound(int) {
    if (dashboard_) dashboard_->unitKindFound();
    // A monitor session opens the link anew, which cannot be done inside the reply that named the unit.
    QTimer::singleShot(0, this, &WindowManager::beginMonitoring);
}

bool WindowManager::boxOpen() const {
    return QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
}

void WindowManager::later(const std::function<void()>& something) {
    waiting_.push_back(something);
    QTimer::singleShot(0, this, &WindowManager::runWaiting);
}

// A box runs an event loop of its own: the next one would stand upon it and be read first.
void WindowManager::runWaiting() {
    if (runsWaiting_ || waiting_.empty()) return;
    // A box would stand on a calibration of which one half is in hand.
    // And one that is about to go would be left standing under it.
    if (session_.saving.reading() || boxEndsByItself()) {
        return QTimer::singleShot(refreshMs, this, &WindowManager::runWaiting);
    }
    const auto goOn = qScopeGuard([this] {
        if (!waiting_.empty()) QTimer::singleShot(0, this, &WindowManager::runWaiting);
    });
    const FlagScope scope(runsWaiting_);
    const std::function<void()> next = std::move(waiting_.front());
    waiting_.pop_front();
    next();
}

void WindowManager::beginMonitoring() {
    if (closed_ || session_.Monitoring || session_.link.transferPending()) return;
    // A search that found the unit has the port, and begins with it what it has to do.
    if (session_.link.searching()) {
        QTimer::singleShot(refreshMs, this, &WindowManager::beginMonitoring);
        return;
    }
    if (parseNumber(session_.settings().get(settings::system, settings::AutoMonitor)) != 1) return;
    constexpr int monitorStart = 2;
    endOnFailure([&] { commands_.loadCommand(monitorStart); },
                 [&](const std::string& why) { session_.sysLog(why); });
}

void WindowManager::codesReceived() {
    if (dashboard_) dashboard_->codesChanged();
}

void WindowManager::codesCleared() {
    if (dashboard_) dashboard_->codesChanged();
}

void WindowManager::frameDecoded() {
    if (table_) table_->refreshLive();
}

void WindowManager::updateDisplay() {
    if (dashboard_) dashboard_->UPDATE_DISPLAY();
}

void WindowManager::resetDashboard() {
    if (dashboard_) dashboard_->Reset_Dashboard();
}

// ---- Redrawing

void WindowManager::refresh() {
    const std::uint64_t console = session_.console.changes();
    const std::uint64_t link = session_.link.status().changes;
    const bool moved = console != consoleSeen_ || link != linkSeen_;
    if (!moved && ++idleFirings_ < idleFiringsPerRefresh) return;
    idleFirings_ = 0;
    main_->refresh();
    if (!config_) return;
    if (console != consoleSeen_) config_->refreshConsoles();
    if (link != linkSeen_) config_->refreshLink();
    consoleSeen_ = console;
    linkSeen_ = link;
}

// ---- Help and focus

void WindowManager::fastHelp() {
    QString key = helpKeyOf(QApplication::focusWidget());
    if (key.isEmpty() && config_) key = config_->helpKey();
    std::optional<HelpRow> row;
    skipFailing([&] {
        if (!key.isEmpty()) row = session_.requireReference().help(key.toStdString());
    });
    if (!row) {
        session_.messages.Display_Message(
            codes::Help, session_.reference() != nullptr ? "There is no help on this field."
                                                         : "There are no help texts: the reference database "
                                                           "could not be opened.");
        return;
    }
    if (!fastHelp_) {
        fastHelp_ = new FrmFastHelp(main_.get());
        connect(fastHelp_, &FrmFastHelp::guideAsked, this,
                [this](const QString& topic) { openHelp(topic.toStdString()); });
    }
    fastHelp_->show(*row);
}

void WindowManager::focusChanged(QWidget* now) {
    if (now == nullptr || !config_) return;
    // By its control: the window of a form may have become active only now.
    const std::string form = now->window()->objectName().toStdString();
    if (formNamed(form) != nullptr) {
        session_.messages.ActiveFormName = form;
    } else if (table_ && (now == table_ || table_->isAncestorOf(now))) {
        session_.messages.ActiveFormName = "frmTABLE";
    } else if (now == config_ || config_->isAncestorOf(now)) {
        session_.messages.ActiveFormName = "frmConfig";
    }
}

}  // namespace zentaq
