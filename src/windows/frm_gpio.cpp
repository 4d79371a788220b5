#include "windows/frm_gpio.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "base/text.h"
#include "config/page_rows.h"
#include "qt/enter_key.h"
#include "qt/help_key.h"
#include "qt/icons.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/paper.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/form_maker.h"
#include "windows/frm_config.h"

namespace zentaq {

namespace {

enum GpioColumn { modeColumn, valueColumn, unitColumn, rangeColumn, gpioColumns };
// Padded, as the buttons of the table are.
constexpr auto dockCaption = "Dock ";
constexpr auto undockCaption = "Undock";
/// Of the pins, in a narrow window; the rest scrolls.
constexpr int pinLetters = 12;
constexpr int functionLetters = 16;

bool startsEntry(const QKeyEvent& event) {
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString text = event.text();
    if ((event.modifiers() & commands) != 0 || text.size() != 1) return false;
    return text[0].isDigit() || QStringLiteral("-.,").contains(text[0]);
}

}  // namespace

FrmGpio::FrmGpio(Session& session, MainCommands& commands, QWidget* parent)
    : QWidget(parent), DockingForm(this), session_(session), commands_(commands), core_(session) {
    named(this, qString(window::gpio), "General Purpose Input/Output Manager");
    setWindowTitle(QString::fromStdString(title()));
    setProperty(helpKeyProperty, QStringLiteral("helpgpio"));
    makeToolbar();
    auto* columns = new QHBoxLayout;
    columns->addWidget(makePins(), 2);
    columns->addWidget(makeParameters(), 5);
    auto* whole = new QVBoxLayout(this);
    const int gap = space(fontMetrics(), Space::Tight);
    whole->setContentsMargins(gap, 0, gap, gap);
    whole->setSpacing(gap);
    whole->addWidget(Toolbar1_);
    whole->addLayout(columns, 1);
    showPins();
}

FrmGpio::~FrmGpio() {
    // Children outlive this part of the object.
    for (QObject* watched : {static_cast<QObject*>(lstGPIO_), static_cast<QObject*>(txtGPIOParam_)})
        watched->removeEventFilter(this);
}

// ---- Making

QAction* FrmGpio::addKey(const char* key, const QString& caption, const QString& tip,
                         void (FrmGpio::*run)()) {
    QAction* action = named(Toolbar1_->addAction(icon(key), caption), key);
    action->setToolTip(tip);
    QWidget* button = Toolbar1_->widgetForAction(action);
    named(button, QStringLiteral("Toolbar1_") + QLatin1String(key), caption);
    button->setFocusPolicy(Qt::TabFocus);
    connect(action, &QAction::triggered, this, run);
    return action;
}

void FrmGpio::makeToolbar() {
    Toolbar1_ = named(new QToolBar("Input/output keys", this), "Toolbar1", "Input/output keys");
    Toolbar1_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const int size = fontMetrics().height() * 5 / 4;
    Toolbar1_->setIconSize({size, size});
    addKey("Save", "Save", "Takes what is being typed", &FrmGpio::save);
    addKey("Print", "Print", "Prints the parameters of the pin in hand", &FrmGpio::printAsked);
    docking_ = addKey("Undock", undockCaption, "Into a window of its own, or back", &FrmGpio::toggleDocking);
    docking_->setObjectName(QStringLiteral("Docking"));
    addKey("Close", "Close", "Closes the manager", &FrmGpio::closeAsked);
}

QWidget* FrmGpio::makePins() {
    lstGPIO_Menu_ = named(new QListWidget(this), "lstGPIO_Menu", "Pins");
    lstGPIO_Menu_->setFont(consoleFont());
    lstGPIO_Menu_->setMinimumHeight(2 * fontMetrics().height());
    connect(lstGPIO_Menu_, &QListWidget::currentRowChanged, this, [this] {
        if (txtGPIOParam_->commit()) showPin();
    });
    return lstGPIO_Menu_;
}

QWidget* FrmGpio::makeParameters() {
    auto* part = new QWidget(this);
    cmbGPIO_ = named(new QComboBox(part), "cmbGPIO", "Function of the pin");
    cmbGPIO_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cmbGPIO_->setMinimumContentsLength(functionLetters);
    cmbGPIO_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(cmbGPIO_, &QComboBox::activated, this, &FrmGpio::functionChosen);
    auto* caption = named(new QLabel("F&unction", part), "lblGPIO");
    caption->setBuddy(cmbGPIO_);
    lstGPIO_ = named(new QTableWidget(0, gpioColumns, part), "lstGPIO", "Parameters of the function");
    lstGPIO_->setHorizontalHeaderLabels({"Mode", "Value", "Unit", "Range"});
    lstGPIO_->verticalHeader()->hide();
    lstGPIO_->setShowGrid(false);
    lstGPIO_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstGPIO_->setSelectionBehavior(QAbstractItemView::SelectRows);
    lstGPIO_->setSelectionMode(QAbstractItemView::SingleSelection);
    lstGPIO_->setTabKeyNavigation(false);
    lstGPIO_->horizontalHeader()->setHighlightSections(false);
    lstGPIO_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lstGPIO_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    lstGPIO_->horizontalHeader()->setSectionResizeMode(valueColumn, QHeaderView::Fixed);
    lstGPIO_->setColumnWidth(valueColumn, valueWidth());
    lstGPIO_->horizontalHeader()->setStretchLastSection(true);
    lstGPIO_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    lstGPIO_->setMinimumHeight(2 * fontMetrics().height());
    lstGPIO_->installEventFilter(this);
    connect(lstGPIO_, &QTableWidget::cellDoubleClicked, this, [this](int row) { pressRow(row); });
    connect(lstGPIO_->verticalScrollBar(), &QScrollBar::valueChanged, this, &FrmGpio::placeBox);
    txtGPIOParam_ =
        named(new EntryBox([this](const QString& text) { return entered(text); }, lstGPIO_->viewport()),
              "txtGPIOParam", "Value of the parameter");
    txtGPIOParam_->installEventFilter(this);
    txtGPIOParam_->hide();
    lblHint_ = plainLines("lblHint", "What this function needs", part);
    auto* top = new QHBoxLayout;
    top->addWidget(caption);
    top->addWidget(cmbGPIO_);
    top->addStretch(1);
    auto* column = new QVBoxLayout(part);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(top);
    column->addWidget(lstGPIO_, 1);
    column->addWidget(lblHint_);
    return part;
}

// ---- Showing

int FrmGpio::pin() const {
    const int row = lstGPIO_Menu_->currentRow();
    return row < 0 || row >= static_cast<int>(pins_.size()) ? -1 : pins_[static_cast<std::size_t>(row)].pin;
}

void FrmGpio::showPins() {
    const int before = std::max(0, lstGPIO_Menu_->currentRow());
    {
        const QSignalBlocker quiet(lstGPIO_Menu_);
        pins_ = core_.pins();
        lstGPIO_Menu_->clear();
        for (const GpioPinRow& row : pins_) lstGPIO_Menu_->addItem(shownString(row.text));
        lstGPIO_Menu_->setCurrentRow(std::min(before, static_cast<int>(pins_.size()) - 1));
        const int bar = lstGPIO_Menu_->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        lstGPIO_Menu_->setMaximumWidth(lstGPIO_Menu_->sizeHintForColumn(0) + 2 * bar);
        lstGPIO_Menu_->setMinimumWidth(
            std::min(lstGPIO_Menu_->maximumWidth(), pinLetters * fontMetrics().averageCharWidth()));
    }
    showPin();
}

void FrmGpio::showPin() {
    const QSignalBlocker quiet(cmbGPIO_);
    const GpioFunctionList list = pin() < 0 ? GpioFunctionList() : core_.functions(pin());
    functions_ = list.items;
    cmbGPIO_->clear();
    for (const auto& item : functions_) cmbGPIO_->addItem(shownString(item.text));
    // A function that the list does not have, as a file may hold it, leaves it without a selection.
    cmbGPIO_->setCurrentIndex(list.selected);
    cmbGPIO_->setEnabled(pin() >= 0);
    lblHint_->setText(session_.currentUnitObject().ONFLY_MODE()
                          ? QStringLiteral("Functions cannot be changed while the unit is connected.")
                          : QString());
    lblHint_->setVisible(!lblHint_->text().isEmpty());
    showParameters();
}

void FrmGpio::showParameters() {
    const int before = std::max(0, lstGPIO_->currentRow());
    rows_ = pin() < 0 ? std::vector<GpioParamRow>() : core_.parameters(pin());
    const QSignalBlocker quiet(lstGPIO_);
    lstGPIO_->setRowCount(static_cast<int>(rows_.size()));
    for (int row = 0; row < lstGPIO_->rowCount(); ++row) {
        const GpioParamRow& one = rows_[static_cast<std::size_t>(row)];
        const auto put = [&](int column, const std::string& text) {
            lstGPIO_->setItem(row, column, new QTableWidgetItem(shownString(text)));
        };
        put(modeColumn, std::string(trimmed(one.mode)));
        put(valueColumn, one.value);
        put(unitColumn, one.unit);
        put(rangeColumn, withoutParentheses(one.limits.text));
        lstGPIO_->item(row, valueColumn)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (!rows_.empty())
        lstGPIO_->setCurrentCell(std::min(before, static_cast<int>(rows_.size()) - 1), valueColumn);
    placeBox();
}

void FrmGpio::showUnit() {
    if (session_.slotInHand() == 0) return;
    showPins();
}

// ---- Functions and rows

void FrmGpio::functionChosen(int index) {
    if (index < 0 || index >= static_cast<int>(functions_.size()) || pin() < 0) return;
    const QPointer<FrmGpio> self(this);
    closeBox();
    core_.choose(pin(), functions_[static_cast<std::size_t>(index)].code);
    if (self) showPin();
}

bool FrmGpio::editable(int row) const {
    return row >= 0 && row < static_cast<int>(rows_.size()) &&
           rows_[static_cast<std::size_t>(row)].parameter >= 0;
}

void FrmGpio::pressRow(int row) {
    if (row < 0 || row >= static_cast<int>(rows_.size())) return;
    switch (rows_[static_cast<std::size_t>(row)].form) {
        case GpioRowForm::EditTable:
            return commands_.editPinTable(pin());
        case GpioRowForm::Retrieve:
            return core_.retrieveDatalog();
        default:
            edit(row);
    }
}

void FrmGpio::edit(int row, const QString& first) {
    if (!editable(row) || !txtGPIOParam_->commit()) return;
    lstGPIO_->setCurrentCell(row, valueColumn);
    editedRow_ = row;
    editedPin_ = pin();
    const GpioParamRow& one = rows_[static_cast<std::size_t>(row)];
    txtGPIOParam_->setModified(false);
    txtGPIOParam_->showText(qString(one.value));
    txtGPIOParam_->setAccessibleName(qString(std::string(trimmed(one.label))));
    txtGPIOParam_->setAccessibleDescription(qString(one.limits.text));
    placeBox();
    txtGPIOParam_->show();
    txtGPIOParam_->setFocus(Qt::OtherFocusReason);
    if (first.isEmpty()) return txtGPIOParam_->selectAll();
    txtGPIOParam_->setText(first);
    txtGPIOParam_->setModified(true);
}

int FrmGpio::valueWidth() const {
    constexpr int digits = 8;
    return digitsWidth(fontMetrics(), digits) + fontMetrics().height();
}

void FrmGpio::placeBox() {
    if (editedRow_ < 0 || editedRow_ >= lstGPIO_->rowCount()) return;
    QRect place = lstGPIO_->visualItemRect(lstGPIO_->item(editedRow_, valueColumn));
    const int high = std::max(place.height(), txtGPIOParam_->sizeHint().height());
    place.translate(0, (place.height() - high) / 2);
    place.setHeight(high);
    txtGPIOParam_->setGeometry(place);
}

bool FrmGpio::entered(const QString& text) {
    const QPointer<FrmGpio> self(this);
    const int row = editedRow_;
    const bool taken = core_.enter(editedPin_, row, text.toStdString());
    if (!self) return taken;
    showParameters();
    if (row >= 0 && row < static_cast<int>(rows_.size()))
        txtGPIOParam_->showText(qString(rows_[static_cast<std::size_t>(row)].value));
    return taken;
}

void FrmGpio::closeBox() {
    if (txtGPIOParam_->isHidden()) return;
    txtGPIOParam_->bringBack();
    const bool inHand = txtGPIOParam_->hasFocus();
    editedRow_ = -1;
    txtGPIOParam_->hide();
    if (inHand) lstGPIO_->setFocus();
}

bool FrmGpio::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (watched == lstGPIO_ && isEnterKey(key)) {
            pressRow(lstGPIO_->currentRow());
            return true;
        }
        if (watched == lstGPIO_ && (startsEntry(key) || key.key() == Qt::Key_Space)) {
            edit(lstGPIO_->currentRow(), key.key() == Qt::Key_Space ? QString() : key.text());
            return true;
        }
        if (watched == txtGPIOParam_ && key.key() == Qt::Key_Escape) {
            closeBox();
            return true;
        }
        if (watched == txtGPIOParam_ && isEnterKey(key)) {
            if (txtGPIOParam_->commit()) closeBox();
            return true;
        }
    }
    const bool left = watched == txtGPIOParam_ && event->type() == QEvent::FocusOut;
    if (left && !moving_) {
        const bool handled = QWidget::eventFilter(watched, event);
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (!txtGPIOParam_->hasFocus() && !txtGPIOParam_->pending()) closeBox();
            },
            Qt::QueuedConnection);
        return handled;
    }
    return QWidget::eventFilter(watched, event);
}

// ---- The window

void FrmGpio::openOn(const std::string& /*on*/, const std::string& /*title*/) {
    showPins();
    Q_EMIT dockingAsked(docked_);
}

void FrmGpio::takeBack() {
    window()->activateWindow();
    takeFocus();
}

void FrmGpio::takeFocus() {
    if (txtGPIOParam_->isVisible()) return txtGPIOParam_->setFocus();
    lstGPIO_Menu_->setFocus();
}

void FrmGpio::setDocked(bool docked) {
    docked_ = docked;
    docking_->setText(docked ? undockCaption : dockCaption);
    docking_->setIcon(icon(docked ? "Undock" : "Dock"));
}

void FrmGpio::toggleDocking() {
    setDocked(!docked_);
    Q_EMIT dockingAsked(docked_);
    if (!docked_) setWindowTitle(QStringLiteral("GPIO Manager"));
}

void FrmGpio::save() {
    const QPointer<FrmGpio> self(this);
    if (txtGPIOParam_->commit() && self) closeBox();
}

void FrmGpio::printAsked() {
    const QPointer<FrmGpio> self(this);
    const Answer answer = session_.dialogs().show(
        {"Print", "Are you sure you want to print this form?", Icon::Question, Buttons::YesNo});
    if (!self || answer != Answer::Yes) return;
    session_.sysLog("USER: Print Current Form Requested.");
    if (print) return print();
    const QString pinText =
        lstGPIO_Menu_->currentItem() == nullptr ? QString() : lstGPIO_Menu_->currentItem()->text();
    const QString heading = pinText.simplified() + ", " + cmbGPIO_->currentText();
    if (!printTable(*lstGPIO_->model(), heading, shownString(session_.CurrentFile), this))
        session_.sysLog("Print Request Aborted.");
}

void FrmGpio::closeAsked() {
    close();
}

void FrmGpio::closeEvent(QCloseEvent* event) {
    const QPointer<FrmGpio> self(this);
    if (!txtGPIOParam_->commit()) return event->ignore();
    if (!self) return;
    event->accept();
    tellClosed();
}

/// Its parent is the workspace.
template <>
Form* makeForm<FrmGpio>(const FormNeeds& needs) {
    auto* workspace = static_cast<FrmConfig*>(needs.parent);
    auto* form = new FrmGpio(needs.session, needs.commands, workspace);
    QObject::connect(form, &FrmGpio::dockingAsked, workspace,
                     [workspace, form](bool docked) { workspace->dock().place(*form, docked); });
    return form;
}

}  // namespace zentaq
