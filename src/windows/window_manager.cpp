#include "windows/window_manager.h"

#include <QApplication>
#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "qt/look.h"
#include "qt/paper.h"
#include "qt/qt_dialogs.h"
#include "windows/frm_config.h"
#include "windows/frm_doubts.h"

namespace zentaq {

WindowManager::WindowManager(QApplication& application, Session& session, MainCommands& commands,
                             Kernel& kernel)
    : application_(application),
      session_(session),
      commands_(commands),
      waiting_(session, {[this] { return whereKeysWait(); }, [this] { return finishEdits(); }}) {
    choosePrinter = showPrinterDialog;
    for (const WindowRow& row : windowRows()) windows_.push_back({&row});
    own_.look(session.dayMode());
    main_ = std::make_unique<MdiMain>(session, commands, kernel);
    connect(&application_, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { focusChanged(now); });
    tmrRefresh_.setObjectName(QStringLiteral("tmrRefresh"));
    connect(&tmrRefresh_, &QTimer::timeout, this, &WindowManager::refresh);
    session_.attach(*this);
}

WindowManager::~WindowManager() {
    application_.disconnect(this);
    for (auto one = windows_.rbegin(); one != windows_.rend(); ++one) delete takeOut(*one);
}

// ---- Opening

WindowManager::Open* WindowManager::find(std::string_view name) {
    for (Open& one : windows_) {
        if (one.row->name == name) return &one;
    }
    return nullptr;
}

void WindowManager::open(std::string_view name, const std::string& on, const std::string& title) {
    if (closed_) return;
    if (name == window::main) {
        main_->openOn(on, title);
        return tmrRefresh_.start(refreshMs);
    }
    Open* place = find(name);
    if (place == nullptr) return;
    Form* form = place->get();
    if (form == nullptr || !form->keysWait()) return show(*place, on, title);
    // What it comes behind may take away what it would show.
    form->behindKeys(title, [this, place, on, title] {
        const auto offered = place->row->offered;
        offered == nullptr || offered(session_, on) ? show(*place, on, title) : main_->tellNotRun(title);
    });
}

void WindowManager::show(Open& place, const std::string& on, const std::string& title) {
    if (closed_ || !make(place)) return;
    place.form->openOn(on, title);
}

bool WindowManager::make(Open& place) {
    if (place.get() != nullptr) return true;
    QWidget* parent = parentFor(place.row->place);
    if (parent == nullptr) return false;
    place.form = place.row->make({session_, commands_, parent,
                                  [this](std::string_view entry) { main_->run(entry); }, place.row->name});
    place.widget = &place.form->widget();
    place.form->onClosed([this, &place] { formClosed(place); });
    if (place.row->place == FormPlace::Above) main_->putAbove(*place.widget);
    if (place.row->place == FormPlace::Below) main_->putBelow(*place.widget);
    return true;
}

QWidget* WindowManager::parentFor(FormPlace place) {
    if (place == FormPlace::Docked) return form<FrmConfig>();
    return place == FormPlace::Beside ? static_cast<QWidget*>(main_.get()) : main_->centre();
}

// ---- Closing

/// The window of a row, which nobody finds any more.
QWidget* WindowManager::takeOut(Open& place) {
    QWidget* widget = place.widget;
    place.widget.clear();
    return widget;
}

bool WindowManager::close(std::string_view name) {
    if (name == window::main) {
        closeMain();
        return true;
    }
    const Open* place = find(name);
    return place == nullptr || place->widget == nullptr || place->widget->close();
}

// The window asks for its end from inside one of its own events.
void WindowManager::formClosed(Open& place) {
    if (place.get() == nullptr) return;
    const Form::Left left = place.form->takeWaiting();
    QWidget* widget = takeOut(place);
    if (place.row->place == FormPlace::Docked) {
        form<FrmConfig>()->dock().leave(*widget);
        widget->hide();
    }
    widget->deleteLater();
    if (!closed_) focusBehind(*place.row);
    waiting_.handOn(left);
}

void WindowManager::focusBehind(const WindowRow& closed) {
    const auto next = std::ranges::find_if(windows_, [](const Open& one) {
        return one.row->opensOthers && one.get() != nullptr && one.widget->isVisible();
    });
    if (closed.place == FormPlace::Beside && next != windows_.end()) {
        next->widget->activateWindow();
    } else {
        main_->activateWindow();
        auto* config = form<FrmConfig>();
        if (config == nullptr) return main_->windowClosed();
        closed.place == FormPlace::Docked ? config->focusTree() : config->takeFocusIfFree();
    }
    if (closed.place != FormPlace::Beside) return;
    main_->windowClosed();
    for (const Open& one : windows_) {
        if (Form* form = one.get()) form->windowClosed();
    }
}

// At once: what the table logs at its end must not stand between the lines of the command that closes it.
void WindowManager::removeForms() {
    auto* config = form<FrmConfig>();
    for (Open& one : windows_) {
        if (!one.row->ofCalibration || one.get() == nullptr) continue;
        // The program ends: its log tells what was not taken.
        const Form::Left left = closed_ ? Form::Left{} : one.form->takeWaiting();
        QWidget* widget = takeOut(one);
        if (config != nullptr) config->dock().leave(*widget);
        delete widget;
        if (config != nullptr && !closed_) config->focusTree();
        waiting_.handOn(left);
    }
}

void WindowManager::closeMain() {
    if (std::exchange(closed_, true)) return;
    waiting_.drop();
    tell(&WindowNews::killTimers);
    removeForms();
    for (const Open& one : windows_) {
        if (one.row->place == FormPlace::Beside && one.widget != nullptr) one.widget->close();
    }
    if (form<FrmConfig>() != nullptr) session_.sysLog("Config App. Terminated.");
    main_->closeNow();
    Q_EMIT mainClosed();
}

// ---- Telling all

void WindowManager::toEach(const std::function<void(WindowNews&)>& tell) {
    tell(own_);
    tell(*main_);
    for (const Open& one : windows_) {
        if (Form* form = one.get()) tell(*form);
    }
}

void WindowManager::refresh() {
    main_->follow();
    for (const Open& one : windows_) {
        if (Form* form = one.get()) form->follow();
    }
}

void WindowManager::Own::look(bool day) {
    applyLook(all_.application_, day ? DisplayMode::Day : DisplayMode::Night);
}

// ---- What has been typed before a command

Form* WindowManager::whereKeysWait() const {
    for (const Open& one : windows_) {
        if (Form* form = one.get(); form != nullptr && form->keysWait()) return form;
    }
    return nullptr;
}

bool WindowManager::finishEdits() {
    for (const Open& one : windows_) {
        if (Form* form = one.get(); form != nullptr && !form->finishEdits()) return false;
    }
    return true;
}

bool WindowManager::showDoubts(const std::vector<Doubt>& doubts) {
    if (closed_) return false;
    const QPointer<FrmDoubts> box(new FrmDoubts(doubts, main_.get()));
    const bool leaves = box->exec() == QDialog::Accepted;
    delete box;
    if (!leaves && form<FrmConfig>() != nullptr) form<FrmConfig>()->focusTree();
    return leaves && !closed_;
}

bool WindowManager::boxOpen() const {
    return boxStands();
}

bool WindowManager::noticesSeen() const {
    const QWidget* active = QApplication::activeWindow();
    return active == nullptr || active == main_.get();
}

// ---- Focus

void WindowManager::focus(std::string_view name) {
    const Open* place = find(name);
    const bool seen = place != nullptr && place->get() != nullptr &&
                      (place->row->place != FormPlace::Beside || place->widget->isVisible());
    if (!seen) place = find(window::config);
    if (Form* form = place->get()) form->takeBack();
}

// By its control: the window of a form may have become active only now.
void WindowManager::focusChanged(QWidget* now) {
    for (QWidget* widget = now; widget != nullptr; widget = widget->parentWidget()) {
        for (const Open& one : windows_) {
            if (one.widget == widget && one.row->hasEntries) {
                session_.messages.ActiveFormName = one.row->name;
                return;
            }
        }
        if (widget->isWindow()) return;
    }
}

// ---- A unit that has come

// A monitor session opens the link anew, which cannot be done inside the reply that named the unit.
void WindowManager::Own::unitKindFound(int /*slot*/) {
    QTimer::singleShot(0, &all_, &WindowManager::beginMonitoring);
}

void WindowManager::beginMonitoring() {
    if (closed_ || session_.Monitoring || session_.link.transfer().pending()) return;
    // A search that found the unit has the port, and begins with it what it has to do.
    if (session_.link.searching()) {
        QTimer::singleShot(refreshMs, this, &WindowManager::beginMonitoring);
        return;
    }
    if (parseNumber(session_.settings().get(settings::system, settings::AutoMonitor)) != 1) return;
    constexpr int monitorStart = 2;
    endOnFailure([&] { commands_.Load_Command(monitorStart); },
                 [&](const std::string& why) { session_.sysLog(why); });
}

}  // namespace zentaq
