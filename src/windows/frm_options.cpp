#include "windows/frm_options.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QShortcut>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>

#include "base/errors.h"
#include "qt/color_dialog.h"
#include "qt/colour_swatch.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/page_area.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "qt/window_placement.h"
#include "windows/form_maker.h"

namespace zentaq {

namespace {

/// A page's title without its access key.
QString pageTitle(OptionPage page) {
    QString title = qString(optionPages()[static_cast<std::size_t>(page)].title);
    return title.replace(QStringLiteral("&&"), QStringLiteral("\n")).remove(u'&').replace(u'\n', u'&');
}

std::vector<FindBox::Hit> foundOptions(const QString& query) {
    std::vector<FindBox::Hit> hits;
    for (const OptionRow* row : findOptions(query.toStdString())) {
        hits.push_back({qString(plainCaption(row->caption)) + "  (" + pageTitle(row->page) + ')',
                        QString::fromStdString(controlName(*row))});
    }
    return hits;
}

}  // namespace

FrmOptions::FrmOptions(Session& session, MainCommands& commands, QWidget* parent)
    : QDialog(parent),
      Form(this),
      session_(session),
      commands_(commands),
      options_(std::make_shared<Options>(session)),
      chooseColour_(chooseColor) {
    named(this, qString(window::options), "Options");
    setWindowTitle(accessibleName());
    setModal(false);

    fields_ = new OptionFields(
        *options_, [this] { return session_.platform().port.list(); }, this);
    finder_ = new FindBox({.box = "txtFind",
                           .list = "lstFound",
                           .caption = "&Find an option:",
                           .meaning = "Find an option",
                           .placeholder = "A word of its caption or its purpose",
                           .hits = "Options found",
                           .nothing = "No option found"},
                          foundOptions, this);
    makePages();
    lblHelp_ = plainLines("lblOptionHelp", "Help on the option", this);
    lblHelp_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblHelp_->setMinimumHeight(2 * lblHelp_->fontMetrics().lineSpacing());

    auto* column = new QVBoxLayout(this);
    column->addWidget(finder_);
    column->addWidget(cmbPage_);
    column->addWidget(SSTab1_, 1);
    column->addLayout(makeButtons());
    setTabOrder(&finder_->line(), cmbPage_);
    setTabOrder(cmbPage_, SSTab1_);

    connect(finder_, &FindBox::chosen, this, &FrmOptions::found);
    connect(fields_, &OptionFields::detectAsked, this, &FrmOptions::detectPort);
    connect(fields_, &OptionFields::colourAsked, this, &FrmOptions::chooseColour);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { focusMoved(now); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, &finder_->line(), [this] { finder_->line().setFocus(); });

    load();
    resize(sizeHint());
    if (!restorePlacement(*this, session_.settings()) && parent != nullptr) {
        centreForm(*this, *parent->window());
    }
}

FrmOptions::~FrmOptions() {
    disconnect(qApp, nullptr, this, nullptr);
    unload();
}

// ---- Making

void FrmOptions::makePages() {
    SSTab1_ = named(new QTabWidget(this), "SSTab1", "Pages of options");
    for (const OptionPageRow& row : optionPages()) {
        auto* scroll = new PageArea(SSTab1_);
        scroll->setProperty(helpKeyProperty, qString(row.help));
        scroll->setPage(fields_->makePage(row.page, scroll));
        SSTab1_->addTab(scroll, qString(row.title));
    }
    connect(SSTab1_, &QTabWidget::currentChanged, this, [this](int page) {
        mark(nullptr);
        helpOnPage(page);
        cmbPage_->setCurrentIndex(page);
    });
    cmbPage_ = named(new QComboBox(this), "cmbPage", "Page of options");
    for (int page = 0; page < SSTab1_->count(); ++page)
        cmbPage_->addItem(pageTitle(static_cast<OptionPage>(page)));
    cmbPage_->hide();
    connect(cmbPage_, &QComboBox::activated, SSTab1_, &QTabWidget::setCurrentIndex);
    helpOnPage(0);
    // From wherever the keyboard is, and without the tabs as well.
    turnWith(Qt::CTRL | Qt::Key_Tab, 1);
    turnWith(Qt::CTRL | Qt::Key_PageDown, 1);
    turnWith(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, -1);
    turnWith(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, -1);
    turnWith(Qt::CTRL | Qt::Key_PageUp, -1);
}

/// What F2 tells where no option is in hand.
void FrmOptions::helpOnPage(int page) {
    const QVariant help = SSTab1_->widget(page)->property(helpKeyProperty);
    SSTab1_->setProperty(helpKeyProperty, help);
    cmbPage_->setProperty(helpKeyProperty, help);
}

void FrmOptions::turnWith(const QKeySequence& keys, int pages) {
    auto* turn = new QShortcut(keys, this);
    connect(turn, &QShortcut::activated, this, [this, pages] {
        const int count = SSTab1_->count();
        const bool onPage = SSTab1_->currentWidget()->isAncestorOf(focusWidget());
        showPage((SSTab1_->currentIndex() + pages + count) % count);
        if (onPage) pageChooser().setFocus();  // the field that had the keyboard is out of sight
    });
}

/// Tabs that have no room beside each other would be cut, or out of sight: a list of the pages stands in
/// their place then.
void FrmOptions::fitTabs() {
    const bool fit = SSTab1_->tabBar()->sizeHint().width() <= SSTab1_->width();
    if (fit != cmbPage_->isHidden()) {
        const bool keyboard = focusWidget() == &pageChooser();
        SSTab1_->tabBar()->setVisible(fit);
        SSTab1_->setFocusPolicy(fit ? Qt::TabFocus : Qt::NoFocus);  // it is that of its tabs
        cmbPage_->setVisible(!fit);
        if (keyboard) pageChooser().setFocus();
    }
}

QWidget& FrmOptions::pageChooser() {
    return cmbPage_->isHidden() ? static_cast<QWidget&>(*SSTab1_->tabBar()) : *cmbPage_;
}

void FrmOptions::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    layout()->activate();
    fitTabs();
}

QLayout* FrmOptions::makeButtons() {
    cmdOK_ = makeButton("cmdOK", "&OK");
    cmdCancel_ = makeButton("cmdCancel", "Cancel");
    cmdApply_ = makeButton("cmdApply", "&Apply");
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, &FrmOptions::applyAndClose);
    connect(cmdCancel_, &QPushButton::clicked, this, &FrmOptions::reject);
    connect(cmdApply_, &QPushButton::clicked, this, &FrmOptions::applyAll);
    // Beside the buttons the help leaves the pages the most of a low screen.
    auto* row = new QHBoxLayout;
    row->addWidget(lblHelp_, 1);
    row->addWidget(cmdOK_);
    row->addWidget(cmdCancel_);
    row->addWidget(cmdApply_);
    return row;
}

QPushButton* FrmOptions::makeButton(const char* name, const QString& text) {
    QPushButton* button = namedButton(name, text, this);
    button->setAutoDefault(false);
    return button;
}

/// Room for all pages' tabs beside each other, which the tab widget itself does not ask for.
QSize FrmOptions::sizeHint() const {
    QSize size = QDialog::sizeHint();
    const int besideTabs = 2 * fontMetrics().height();
    size.setWidth(std::max(size.width(), SSTab1_->tabBar()->sizeHint().width() + besideTabs));
    return size;
}

// ---- Load and unload

void FrmOptions::load() {
    loaded_ = true;
    options_->load();
    fields_->showAll();
    showPage(0);
    pageChooser().setFocus();
    focusMoved(nullptr);
    session_.sysLog("Control Panel Initialized.");
}

void FrmOptions::unload() {
    if (!loaded_) return;
    loaded_ = false;
    storePlacement(*this, session_.settings());
    session_.sysLog("Control Panel Terminated.");
}

void FrmOptions::done(int result) {
    const bool wasLoaded = loaded_;
    unload();
    QDialog::done(result);
    if (wasLoaded) tellClosed();
}

void FrmOptions::showEvent(QShowEvent* event) {
    if (!loaded_) load();
    QDialog::showEvent(event);
}

void FrmOptions::openOn(const std::string& on, const std::string& title) {
    if (on == zentaq::monitorPage) showPage(monitorPage);
    Form::openOn(on, title);
}

void FrmOptions::showPage(int page) {
    SSTab1_->setCurrentIndex(page >= 0 && page < SSTab1_->count() ? page : 0);
}

// ---- What others store meanwhile

bool FrmOptions::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) takeOver();
    return QDialog::event(event);
}

void FrmOptions::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    paintMark();
    takeOver();  // a menu's day or night mode
}

void FrmOptions::takeOver() {
    if (loaded_ && options_->refresh()) fields_->showAll();
}

// ---- Commands

bool FrmOptions::applyAll() {
    const QPointer<FrmOptions> alive(this);
    const auto options = options_;
    std::vector<std::string> refused;
    const bool whole = endOnFailure([&] { refused = options->apply(); },
                                    [&](const std::string& why) {
                                        session_.sysLog("Options not applied: " + why);
                                        session_.show({"Options", why, Icon::Critical, Buttons::Ok});
                                    });
    if (!alive) return false;
    fields_->showAll();
    if (refused.empty()) return whole;
    // The warning has given the focus to another form; it belongs to the entry that it told of.
    activateWindow();
    goTo(QString::fromStdString(refused.front()));
    return false;
}

void FrmOptions::applyAndClose() {
    if (applyAll()) accept();
}

void FrmOptions::detectPort() {
    const QPointer<FrmOptions> alive(this);
    const auto options = options_;
    searching(true);
    endOnFailure([&] { options->detectPort(commands_.unit); },
                 [&](const std::string& why) {
                     session_.show({"Options", why, Icon::Critical, Buttons::Ok});
                 });
    if (!alive) return;  // the search yields, and the program may have ended
    searching(false);
    fields_->showAll();
}

/// The search yields: nothing may start a second one or store a port under it.
void FrmOptions::searching(bool on) {
    for (const char* name : {"cmbCOMM", "cmdAutoDetectPort"}) {
        fields_->control(QLatin1String(name))->setEnabled(!on);
    }
    cmdOK_->setEnabled(!on);
    cmdApply_->setEnabled(!on);
    if (on) {
        lblHelp_->setText("Searching a unit on ports 1 to 12 . . .");
    } else {
        fields_->control(QStringLiteral("cmdAutoDetectPort"))->setFocus();
    }
}

void FrmOptions::chooseColour(const QString& control) {
    const std::string name = control.toStdString();
    const auto former = storedColor(options_->value(name));
    const QString title = fields_->control(control)->accessibleName();
    const QPointer<FrmOptions> alive(this);
    const std::optional<QColor> chosen =
        chooseColour_(former.value_or(lookColors(appliedLook(*qApp)).text), title, this);
    if (!alive) return;
    keeper_.keep(*this);
    if (!chosen) return;
    options_->change(name, colourText(*chosen).toStdString());
    fields_->showAll();
}

// ---- Finding

void FrmOptions::found(const QString& control, const QString& query) {
    goTo(control);
    if (control == QLatin1String("viewList")) fields_->showDataPoint(query);
}

void FrmOptions::goTo(const QString& control) {
    QWidget* target = fields_->control(control);
    QWidget* strip = fields_->strip(control);
    const OptionRow* row = fields_->rowAt(target);
    if (row == nullptr) return;
    showPage(static_cast<int>(row->page));
    if (target->isEnabled()) {
        target->setFocus(Qt::ShortcutFocusReason);
    } else {
        SSTab1_->setFocus();
    }
    if (auto* text = qobject_cast<QLineEdit*>(target)) text->selectAll();
    static_cast<QScrollArea*>(SSTab1_->currentWidget())->ensureWidgetVisible(strip);
    mark(strip);
    lblHelp_->setText(qString(row->tip));
}

void FrmOptions::focusMoved(QWidget* now) {
    if (now != nullptr && !isAncestorOf(now)) return;
    const OptionRow* row = fields_->rowAt(now);
    lblHelp_->setText(row == nullptr ? "F2 tells more about the option in hand." : qString(row->tip));
    if (marked_ != nullptr && now != nullptr && !marked_->isAncestorOf(now)) mark(nullptr);
}

void FrmOptions::mark(QWidget* strip) {
    if (marked_ != nullptr) {
        marked_->setAutoFillBackground(false);
        marked_->setPalette(QPalette());
    }
    marked_ = strip;
    paintMark();
}

void FrmOptions::paintMark() {
    if (marked_ == nullptr) return;
    const LookColors colors = lookColors(appliedLook(*qApp));
    QPalette palette;
    palette.setColor(QPalette::Window, colors.highlight);
    palette.setColor(QPalette::WindowText, colors.highlightText);
    if (marked_->palette() != palette) marked_->setPalette(palette);
    marked_->setAutoFillBackground(true);
}

template Form* makeForm<FrmOptions>(const FormNeeds& needs);

}  // namespace zentaq
