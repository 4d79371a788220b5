#include "windows/frm_general_config.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

#include "base/errors.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/second_window.h"
#include "qt/window_placement.h"
#include "windows/window_registry.h"

namespace zentaq {

namespace {

constexpr auto formTitle = "General Engine Configuration";

}  // namespace

FrmGeneralConfig::FrmGeneralConfig(Session& session, QWidget* parent)
    : QWidget(parent, secondWindow()),
      Form(this),
      session_(session),
      core_(std::make_shared<GeneralConfig>(session)) {
    named(this, qString(window::generalConfig), formTitle);
    setWindowTitle(QLatin1String(formTitle));
    run([&] { core_->load(); });
    makeToolbar();
    makeForm();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Toolbar1_);
    layout->addWidget(scroll_, 1);
    chainTab();
    showIcons();
    showState();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
}

FrmGeneralConfig::~FrmGeneralConfig() {
    qApp->disconnect(this);
    unload();
}

// ---- Making

void FrmGeneralConfig::makeToolbar() {
    Toolbar1_ =
        named(new QToolBar("General configuration keys", this), "Toolbar1", "General configuration keys");
    Toolbar1_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const int size = fontMetrics().height() * 5 / 4;
    Toolbar1_->setIconSize({size, size});
    save_ = addKey("Save", "Save", "Store the calibration in a file (Ctrl+S)");
    connect(save_, &QAction::triggered, this, &FrmGeneralConfig::save);
    cancel_ = addKey("Cancel", "Cancel", "Close this window (Esc)");
    connect(cancel_, &QAction::triggered, this, &QWidget::close);
    lblHint_ = plainLabel("lblHint", "What is still missing", Toolbar1_);
    QFont bold = font();
    bold.setBold(true);
    lblHint_->setFont(bold);
    lblHint_->setContentsMargins(fontMetrics().height(), 0, 0, 0);
    Toolbar1_->addWidget(lblHint_);
}

QAction* FrmGeneralConfig::addKey(const char* key, const QString& caption, const QString& tip) {
    QAction* action = Toolbar1_->addAction(caption);
    action->setObjectName(QLatin1String(key));
    action->setToolTip(tip);
    QWidget* button = Toolbar1_->widgetForAction(action);
    named(button, QStringLiteral("Toolbar1_") + QLatin1String(key), caption);
    // By Tab and not by the mouse: a click on "Cancel" drops what is being typed instead of checking it.
    button->setFocusPolicy(Qt::TabFocus);
    return action;
}

void FrmGeneralConfig::makeForm() {
    scroll_ = named(new QScrollArea(this), "scrGeneral");
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setFocusPolicy(Qt::NoFocus);
    GeneralConfigForm::Core core;
    core.field = [this](const std::string& control) {
        Field field;
        run([&] { field = core_->field(control); });
        return field;
    };
    core.enter = [this](const std::string& control, const std::string& text) {
        bool taken = false;
        const auto held = core_;  // the form may go under the box of a refusal
        run([&] { taken = held->enter(control, text); });
        return taken;
    };
    core.computed = [this] { return QString::fromStdString(core_->lblUAP()); };
    form_ = new GeneralConfigForm(std::move(core), scroll_);
    form_->highlight(session_.currentUnitObject().ONFLY_MODE());
    connect(form_, &GeneralConfigForm::sensorManagerAsked, this, &FrmGeneralConfig::sensorManagerAsked);
    connect(form_, &GeneralConfigForm::entered, this, &FrmGeneralConfig::showState);
    scroll_->setWidget(form_);
}

/// From the first field to the last, then to the keys.
void FrmGeneralConfig::chainTab() {
    std::vector<QWidget*> order = form_->tabOrder();
    order.push_back(Toolbar1_->widgetForAction(save_));
    order.push_back(Toolbar1_->widgetForAction(cancel_));
    for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

QSize FrmGeneralConfig::sizeHint() const {
    return form_->sizeHint() + QSize(scroll_->verticalScrollBar()->sizeHint().width(),
                                     Toolbar1_->sizeHint().height() + form_->growth());
}

/// Where the user has left it; else whole, over the window that it belongs to.
void FrmGeneralConfig::place() {
    if (restorePlacement(*this, session_.settings())) return;
    form_->fitTo(screen()->availableSize().width());
    resize(sizeHint().boundedTo(screen()->availableSize()));
    if (parentWidget() != nullptr) centreForm(*this, *parentWidget()->window());
}

void FrmGeneralConfig::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    form_->fitTo(width() - scroll_->verticalScrollBar()->sizeHint().width());
}

void FrmGeneralConfig::showEvent(QShowEvent* event) {
    if (!placed_) {
        placed_ = true;
        place();
        form_->focusFirst();
    }
    QWidget::showEvent(event);
}

// ---- Showing

void FrmGeneralConfig::showState() {
    // What was accepted for a calibration in hand stays; only a new one is given up.
    const QString close = core_->creating() ? "Cancel" : "Close";
    cancel_->setText(close);
    cancel_->setToolTip("Close this window (Esc)");
    Toolbar1_->widgetForAction(cancel_)->setAccessibleName(close);
    const QString missing = form_->missing();
    if (!core_->creating()) {
        lblHint_->clear();
    } else if (missing.isEmpty()) {
        lblHint_->setText("Ready to save");
    } else {
        lblHint_->setText(missing);
    }
}

void FrmGeneralConfig::showIcons() {
    save_->setIcon(icon(QStringLiteral("Save"), lookColors(appliedLook(*qApp)).text));
}

void FrmGeneralConfig::reload() {
    form_->bringBack();
    run([&] { core_->load(); });
    onFlyChanged(session_.currentUnitObject().ONFLY_MODE());
    showState();
    form_->focusFirst();
}

void FrmGeneralConfig::reset() {
    form_->bringBack();
    form_->refresh();
    showState();
}

void FrmGeneralConfig::onFlyChanged(bool on) {
    form_->refresh();  // which fields act on the engine follows the mode
    form_->highlight(on);
}

void FrmGeneralConfig::showUnit() {
    form_->refresh();
    showState();
}

void FrmGeneralConfig::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && save_ != nullptr) showIcons();
}

// ---- Keys and focus

bool FrmGeneralConfig::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) session_.messages.ActiveFormName = window::generalConfig;
    // The main window has this key, too; here it means the form, with what is being typed.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Save)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void FrmGeneralConfig::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (event->matches(QKeySequence::Save)) {
        save();
    } else {
        QWidget::keyPressEvent(event);
    }
}

/// A field that gets the focus comes into view. Going on in another window of the program leaves the field; a
/// box in front of it, or another program, does not.
void FrmGeneralConfig::focusMoved(QWidget* now) {
    if (now == nullptr || !isVisible() || busy_) return;
    if (now->window() == this) {
        // Also from the toolbar, which is no part of what scrolls.
        if (form_->isAncestorOf(now)) scroll_->ensureWidgetVisible(now);
        return;
    }
    if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr) return;
    const QPointer<FrmGeneralConfig> self(this);
    if (form_->commit() || !self) return;
    raise();
    activateWindow();
}

// ---- The work

template <typename Command>
bool FrmGeneralConfig::run(Command&& command) {
    return endOnFailure(std::forward<Command>(command), [&](const std::string& why) {
        session_.sysLog(std::string(window::generalConfig) + ": " + why);
        session_.show({formTitle, why, Icon::Critical, Buttons::Ok});
    });
}

bool FrmGeneralConfig::finishEdits() {
    return busy_ || !isVisible() || form_->commit();
}

void FrmGeneralConfig::save() {
    if (busy_) return;
    const QPointer<FrmGeneralConfig> self(this);
    session_.windows().afterEdits("Save", [self] {
        if (self) self->saveNow();
    });
}

void FrmGeneralConfig::saveNow() {
    if (busy_ || !form_->commit()) return;
    const QPointer<FrmGeneralConfig> self(this);
    busy_ = true;
    const auto held = core_;
    const bool begun = run([&] {
        held->save([self](bool stored) {
            if (self) self->saveEnded(stored);
        });
    });
    if (!self) return;
    if (!begun) return saveEnded(false);
    // What is entered while the disk is busy would be in no file.
    if (!busy_) return;
    focusAtSave_ = focusWidget();
    setEnabled(false);
}

void FrmGeneralConfig::saveEnded(bool stored) {
    const QPointer<FrmGeneralConfig> self(this);
    busy_ = false;
    if (!isEnabled()) {
        setEnabled(true);
        if (focusAtSave_) focusAtSave_->setFocus();
    }
    form_->refresh();
    showState();
    if (!stored) return;
    Q_EMIT saved();
    if (self && isVisible()) close();
}

/// True when nothing would be lost, or the user wants to lose it.
bool FrmGeneralConfig::mayClose() {
    if (unloaded_ || !core_->creating() || !core_->modified()) return true;
    const QPointer<FrmGeneralConfig> self(this);
    busy_ = true;
    const Answer answer = session_.dialogs().show({.title = formTitle,
                                                   .text = "Drop the new calibration?",
                                                   .icon = Icon::Question,
                                                   .buttons = Buttons::YesNo,
                                                   .declines = true});
    if (!self) return false;
    busy_ = false;
    return answer == Answer::Yes;
}

void FrmGeneralConfig::closeEvent(QCloseEvent* event) {
    if (busy_ || !mayClose()) {
        event->ignore();
        return;
    }
    form_->bringBack();  // the window goes; what was being typed is not an entry
    storePlacement(*this, session_.settings());
    unload();
    event->accept();
    tellClosed();
}

void FrmGeneralConfig::unload() {
    if (std::exchange(unloaded_, true)) return;
    run([&] { core_->unload(); });
}

template <>
Form* makeForm<FrmGeneralConfig>(const FormNeeds& needs) {
    auto* form = new FrmGeneralConfig(needs.session, needs.parent);
    QObject::connect(form, &FrmGeneralConfig::sensorManagerAsked, form,
                     [run = needs.run] { run("mnuMAPSensors"); });
    return form;
}

}  // namespace zentaq
