#include "windows/frm_table.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMenu>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QValidator>

#include "base/number_text.h"
#include "config/tree.h"
#include "qt/field_focus.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/qt_text.h"
#include "unit/parameter_names.h"

namespace zentaq {
namespace {

/// Far more than anybody types while a unit answers, or is given up.
constexpr std::size_t mostHeldKeys = 1000;
/// How often what waits looks whether a box over the window has gone.
constexpr int boxPollMs = 20;
/// Digits of the edit box against those of the grid: what is being typed is read at arm's length.
constexpr qreal inputSize = 1.35;
constexpr int inputBorder = 2;
constexpr int inputPlaces = 6;
constexpr auto popupName = "mnuPopupTable";
constexpr auto dockCaption = "Dock          ";
constexpr auto undockCaption = "Undock        ";
constexpr auto headerBoxTitle = "Table Setup";

/// Lets through what may be typed on the way to a number.
class TypingValidator : public QValidator {
 public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        return TableEditor::mayBeTyped(text.toStdString()) ? Acceptable : Invalid;
    }
};

bool isEnter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool isPlain(const QKeyEvent& event) {
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
}

/// The one printable ASCII character of a key press, or 0.
char typedCharacter(const QKeyEvent& event) {
    const QString text = event.text();
    if (!isPlain(event) || text.size() != 1) return 0;
    const char16_t letter = text.front().unicode();
    return letter >= u' ' && letter <= u'~' ? static_cast<char>(letter) : '\0';
}

bool isClipboardKey(const QKeyEvent& event) {
    return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::Cut) ||
           event.matches(QKeySequence::Paste);
}

bool movesCursor(int key) {
    return (key >= Qt::Key_Home && key <= Qt::Key_PageDown) || key == Qt::Key_Tab || key == Qt::Key_Backtab;
}

bool isModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr;
}

/// What waits, in words: "2 keys, Store Changes in ORB".
template <typename Waiting>
std::string namesOf(const Waiting& held) {
    int keys = 0;
    int clicks = 0;
    std::string commands;
    for (const auto& one : held) {
        if (one.command) {
            commands += ", " + one.caption;
        } else {
            ++(one.click != QEvent::None ? clicks : keys);
        }
    }
    const auto counted = [](int count, const std::string& what) {
        return count == 0 ? std::string() : ", " + numberText(count) + " " + what + (count == 1 ? "" : "s");
    };
    const std::string all = counted(keys, "key") + counted(clicks, "click") + commands;
    return all.empty() ? all : all.substr(2);
}

/// What a number of the setting TableColor stands for.
TableColour colourModeOf(int setting) {
    return setting == 1 ? TableColour::Afr : TableColour::Normal;
}

}  // namespace

FrmTable::FrmTable(Session& session, MainCommands& commands, QWidget* parent)
    : QWidget(parent), DockingForm(this), session_(session), commands_(commands) {
    setObjectName("frmTABLE");
    setAccessibleName("Table");
    redraw_ = new RedrawGate(
        session.platform().clock, [this] { drawLive(); }, this, RedrawGate::markUs);
    makeToolbar();
    Grid1_ = new TableGridView(this);
    Grid1_->setObjectName("Grid1");
    Grid1_->setAccessibleName("Cells of the table");
    Grid1_->setContextMenuPolicy(Qt::CustomContextMenu);
    Grid1_->installEventFilter(this);
    Grid1_->viewport()->installEventFilter(this);
    txtInputValue_ = new QLineEdit(Grid1_->viewport());
    txtInputValue_->setObjectName("txtInputValue");
    txtInputValue_->setAccessibleName("New value of the selected cells");
    txtInputValue_->setFrame(false);
    txtInputValue_->setAlignment(Qt::AlignRight);
    txtInputValue_->setFont(valueFont(inputSize));
    txtInputValue_->setValidator(new TypingValidator(txtInputValue_));
    txtInputValue_->installEventFilter(this);
    txtInputValue_->hide();

    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(2);
    whole->addWidget(Toolbar1_);
    whole->addWidget(Grid1_, 1);
    setFocusProxy(Grid1_);

    connect(Grid1_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FrmTable::selectionChanged);
    connect(Grid1_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FrmTable::selectionChanged);
    connect(Grid1_, &QTableView::doubleClicked, this, &FrmTable::cellDoubleClicked);
    connect(Grid1_, &TableGridView::resized, this, &FrmTable::placeEdit);
    connect(Grid1_, &QWidget::customContextMenuRequested, this, &FrmTable::showPopup);
    connect(Grid1_->horizontalHeader(), &QHeaderView::sectionDoubleClicked, this,
            [this](int section) { headerDoubleClicked(0, section + 1); });
    connect(Grid1_->verticalHeader(), &QHeaderView::sectionDoubleClicked, this,
            [this](int section) { headerDoubleClicked(section + 1, 0); });
    setMode(appliedLook(*qApp));
    framesFollowed_ = session_.frames.follow([this] { refreshLive(); });
    session_.sysLog("TABLE App. Loaded.");
}

FrmTable::~FrmTable() {
    // Children outlive this part of the object; their last focus events are no business of the form any more.
    framesFollowed_.reset();
    Grid1_->removeEventFilter(this);
    Grid1_->viewport()->removeEventFilter(this);
    txtInputValue_->removeEventFilter(this);
    txtTOG_->removeEventFilter(this);
    txtIOT_->removeEventFilter(this);
    Grid1_->selectionModel()->disconnect(this);
    Grid1_->cells().show(nullptr);
    if (!held_.empty()) session_.sysLog("TABLE: Closed before " + namesOf(held_) + ".");
    session_.sysLog("TABLE App. Terminated.");
}

Form::Left FrmTable::takeWaiting() {
    Left left;
    std::deque<Held> notTaken;
    for (Held& one : std::exchange(held_, {})) {
        if (one.command && !one.ofTable) {
            left.commands.push_back(std::move(one.command));
        } else {
            notTaken.push_back(std::move(one));
        }
    }
    left.notTaken = namesOf(notTaken);
    return left;
}

// ---- Toolbar

void FrmTable::makeToolbar() {
    Toolbar1_ = new QToolBar(this);
    Toolbar1_->setObjectName("Toolbar1");
    Toolbar1_->setToolButtonStyle(Qt::ToolButtonTextOnly);
    lblTitle_ = new QLabel(Toolbar1_);
    lblTitle_->setObjectName("lblTitle");
    QFont bold = lblTitle_->font();
    bold.setBold(true);
    lblTitle_->setFont(bold);
    lblTitle_->setContentsMargins(6, 0, 12, 0);
    Toolbar1_->addWidget(lblTitle_);
    addButton("Home", "Home", "Show the values with the lowest row at the bottom", &FrmTable::home);
    addButton("Save", "Save", "Write the grid back to the calibration", &FrmTable::save);
    makeColourMenu();
    makeTableMenu();
    addLater("Manage", "Manage");
    addLater("Print", "Print");
    addButton("Docking", undockCaption, "Inside the main window, or a window of its own",
              &FrmTable::toggleDocking);
    addButton("Close", "Close", "Close the table (Shift+X)", &FrmTable::closeTable);
    Toolbar1_->addWidget(makeFields());
}

QAction* FrmTable::addButton(const QString& key, const QString& caption, const QString& tip,
                             void (FrmTable::*run)()) {
    QAction* action = Toolbar1_->addAction(caption, this, [this, run, caption] { inOrder(caption, run); });
    action->setObjectName(key);
    action->setToolTip(tip);
    actions_[key] = action;
    return action;
}

void FrmTable::addLater(const QString& key, const QString& caption) {
    QAction* action = Toolbar1_->addAction(caption);
    action->setObjectName(key);
    action->setEnabled(false);
    actions_[key] = action;
}

void FrmTable::addLaterItem(QMenu* menu, const QString& key, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(key);
    action->setEnabled(false);
    actions_[key] = action;
}

QAction* FrmTable::addItem(QMenu* menu, const QString& key, const QString& caption, void (FrmTable::*run)()) {
    QAction* action = menu->addAction(caption, this, [this, run, caption] { inOrder(caption, run); });
    action->setObjectName(key);
    actions_[key] = action;
    return action;
}

void FrmTable::makeColourMenu() {
    auto* button = new QToolButton(Toolbar1_);
    button->setText("Overlay");
    button->setObjectName("Overlay");
    button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(button);
    addItem(menu, "Colors", "Turn Overlay OFF", &FrmTable::toggleColors);
    addItem(menu, "ColorsNorm", "Normal Colors", &FrmTable::colorsNorm)->setCheckable(true);
    addItem(menu, "ColorsAFR", "AFR Colors", &FrmTable::colorsAfr)->setCheckable(true);
    addItem(menu, "ColorsPersist", "Color Persist ON", &FrmTable::colorsPersist);
    addItem(menu, "ColorsWhiteOut", "White Out", &FrmTable::colorsWhiteOut);
    button->setMenu(menu);
    Toolbar1_->addWidget(button);
}

void FrmTable::makeTableMenu() {
    auto* button = new QToolButton(Toolbar1_);
    button->setText("View");
    button->setObjectName("View");
    button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(button);
    addItem(menu, "Pulsewidth", "Pulse Width (Shift+P)", &FrmTable::pulsewidth)->setCheckable(true);
    addItem(menu, "DutyCycle", "Duty Cycle (Shift+D)", &FrmTable::dutyCycle)->setCheckable(true);
    addItem(menu, "Absolute", "Absolute VE (Shift+A)", &FrmTable::absolute)->setCheckable(true);
    addItem(menu, "Invert", "Invert Rows", &FrmTable::invert)->setCheckable(true);
    addLaterItem(menu, "Graph", "Graph");
    addLaterItem(menu, "AutoVE", "AutoVE");
    menu->addSeparator();
    addItem(menu, "Reset", "Reset", &FrmTable::resetTable);
    addItem(menu, "Discard", "Discard Changes", &FrmTable::discard);
    button->setMenu(menu);
    Toolbar1_->addWidget(button);
}

QLineEdit* FrmTable::makeTimeField(const QString& name, const char* member, const char* helpKey) {
    auto* field = new QLineEdit(Toolbar1_);
    const QString meaning = qString(nameOfParameter(member));
    field->setObjectName(name);
    field->setAccessibleName(meaning);
    field->setToolTip(meaning);
    field->setProperty(helpKeyProperty, QLatin1String(helpKey));
    field->setAlignment(Qt::AlignRight);
    field->setMaximumWidth(field->fontMetrics().averageCharWidth() * 9);
    field->setValidator(new TypingValidator(field));
    field->installEventFilter(this);
    return field;
}

QWidget* FrmTable::makeFields() {
    auto* fields = new QWidget(Toolbar1_);
    auto* row = new QHBoxLayout(fields);
    row->setContentsMargins(12, 0, 6, 0);
    const auto label = [&](const QString& name, const QString& text) {
        auto* made = new QLabel(text, fields);
        made->setObjectName(name);
        row->addWidget(made);
        return made;
    };
    lblTOG_ = label("lblTOG", "TOG:");
    txtTOG_ = makeTimeField("txtTOG", "scale1", "helptog");
    row->addWidget(txtTOG_);
    lblIOT_ = label("lblIOT", "IOT:");
    txtIOT_ = makeTimeField("txtIOT", "INJ_On", "helptiot");
    row->addWidget(txtIOT_);
    lblDspTable_ = label("lblDspTable", {});
    lblDspTableVal_ = label("lblDspTableVal", {});
    lblDspTableVal_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblDspTableVal_->setMinimumWidth(digitsWidth(lblDspTableVal_->fontMetrics(), 5));
    row->addStretch(1);
    fields->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return fields;
}

// ---- Building

void FrmTable::openOn(const std::string& table, const std::string& title) {
    if (tableName() != table) {
        const QPointer<FrmTable> self(this);
        if (!finishEntry() || !self) return;
        Setup_Grid(table, title);
    }
    setProperty(helpKeyProperty, QString::fromStdString(tableHelp(table)));
    Q_EMIT dockingAsked(docked_);
}

void FrmTable::takeBack() {
    window()->activateWindow();
    takeFocus();
}

void FrmTable::Setup_Grid(const std::string& table, const std::string& title) {
    Unit& unit = session_.currentUnitObject();
    std::shared_ptr<TableModel> fresh;
    if (!model_ || unit_ != &unit) {
        fresh = std::make_shared<TableModel>(unit, session_.ecu, session_.live, session_.paintMemory);
    }
    TableModel& shown = fresh ? *fresh : *model_;
    shown.overlay().colourMode(colourModeOf(session_.TableColorMode));
    // Throws for a table that cannot be shown: the window keeps the one that it has, and an open edit.
    const auto refused = shown.Setup_Grid(table, title, shown.sheet().inverted());
    closeEdit();
    textLeft_ = false;
    if (fresh) {
        Grid1_->cells().show(nullptr);
        model_ = std::move(fresh);
        unit_ = &unit;
    }
    const QSignalBlocker quiet(Grid1_->selectionModel());
    Grid1_->cells().show(&model_->sheet().grid());
    Grid1_->placeMarker(false, 1, 1);
    showAll();
    sizeColumns();
    showCursor();
    tell(refused);
}

void FrmTable::showUnit() {
    if (ownChange_ || !model_ || unit_ != &session_.currentUnitObject()) return;
    // A value elsewhere has changed; what is being typed here goes on, where its cell is still there.
    const GridCell cell{model_->cursor().row(), model_->cursor().column()};
    const TableView view = model_->estimates().view();
    model_->rebuild();
    if (view != TableView::Values) model_->showView(view);
    if (cell != GridCell{model_->cursor().row(), model_->cursor().column()}) closeEdit();
    showAll();
    sizeColumns();
    placeEdit();
}

void FrmTable::sizeColumns() {
    Grid1_->sizeColumns(session_.settings().get("System", "Column_Type") == "1");
}

void FrmTable::showAll() {
    const QString title = QString::fromStdString(model_->sheet().title());
    lblTitle_->setText(title);
    setWindowTitle(docked_ ? QString() : title);
    Grid1_->setAccessibleName(title);
    Grid1_->cells().refresh();
    showTimes();
    showItems();
    showCursor();
}

void FrmTable::showTimes() {
    const auto show = [this](QLineEdit& field, const std::string& time) {
        // The same text once more would only move the cursor.
        if (!timeBeingTyped(field) && field.text().toStdString() != time) field.setText(qString(time));
    };
    show(*txtTOG_, model_->estimates().timeOfGap());
    show(*txtIOT_, model_->estimates().injectorOn());
}

void FrmTable::showItems() {
    const ToolbarItems items = model_->toolbarItems();
    for (const auto* key : {"Colors", "ColorsNorm", "ColorsAFR", "ColorsPersist", "ColorsWhiteOut"}) {
        actions_.at(key)->setEnabled(items.onFlyItems);
    }
    for (const auto* key : {"Pulsewidth", "DutyCycle"}) actions_.at(key)->setVisible(items.fuelViews);
    for (QWidget* field : std::initializer_list<QWidget*>{lblTOG_, txtTOG_, lblIOT_, txtIOT_}) {
        field->setVisible(items.fuelViews);
    }
    actions_.at("Colors")->setText(QString::fromStdString(items.overlayItem));
    actions_.at("Absolute")->setVisible(model_->sheet().table() == "VE");
    actions_.at("Absolute")->setChecked(model_->sheet().absoluteVe());
    actions_.at("Pulsewidth")->setChecked(model_->estimates().view() == TableView::PulseWidth);
    actions_.at("DutyCycle")->setChecked(model_->estimates().view() == TableView::DutyCycle);
    actions_.at("Invert")->setChecked(model_->sheet().inverted());
    actions_.at("Invert")->setEnabled(!items.axisButtons);
    actions_.at("ColorsNorm")->setChecked(model_->overlay().colourMode() == TableColour::Normal);
    actions_.at("ColorsAFR")->setChecked(model_->overlay().colourMode() == TableColour::Afr);
    actions_.at("Docking")->setText(docked_ ? undockCaption : dockCaption);
    lblDspTable_->setText(QString::fromStdString(items.displayCaption));
    lblDspTable_->setVisible(!items.displayCaption.empty());
    lblDspTableVal_->setVisible(!items.displayCaption.empty());
}

void FrmTable::onFlyChanged(bool /*on*/) {
    constexpr int refreshToolbar = 3;
    Load_Command(refreshToolbar);
}

void FrmTable::Load_Command(int command) {
    if (command == 1) Q_EMIT dockingAsked(docked_);
    if (command == 3 && model_) showItems();
}

void FrmTable::setMode(DisplayMode mode) {
    Grid1_->setMode(mode);
    const LookColors look = lookColors(mode);
    txtInputValue_->setStyleSheet(
        QStringLiteral("border: %4px solid %1; background: %2; color: %3; padding: 0px; margin: 0px;")
            .arg(look.accent.name(), look.highlight.name(), look.highlightText.name())
            .arg(inputBorder));
}

void FrmTable::followLook() {
    setMode(appliedLook(*qApp));
}

void FrmTable::setDocked(bool docked) {
    docked_ = docked;
    if (model_) showAll();
}

// ---- Cursor and selection

void FrmTable::showCursor() {
    const QModelIndex cell = Grid1_->cells().index(model_->cursor().row() - 1, model_->cursor().column() - 1);
    if (cell == Grid1_->currentIndex() || model_->cursor().selection().present) return;
    syncing_ = true;
    Grid1_->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::ClearAndSelect);
    // The view keeps the cell where a selection begins by itself: Shift would select from the one that was
    // clicked last.
    Grid1_->setCurrentIndex(cell);
    syncing_ = false;
}

void FrmTable::selectionChanged() {
    if (syncing_ || !model_) return;
    const QModelIndex current = Grid1_->currentIndex();
    if (!current.isValid()) return;
    if (txtInputValue_->isVisible()) {
        // A box that goes with the keyboard in it gives it to any other control.
        const bool inHand = txtInputValue_->hasFocus();
        leaveEdit();
        if (inHand) Grid1_->setFocus();
        holdCursor();  // the former edit has let go, and here the user stands on another cell
    }
    const int row = current.row() + 1;
    const int column = current.column() + 1;
    const QItemSelection chosen = Grid1_->selectionModel()->selection();
    if (chosen.isEmpty() || !chosen.contains(current)) {
        model_->cursor().select(row, column, row, column);
        return;
    }
    const QItemSelectionRange& block = chosen.first();
    // The corner across from the current cell; between two corners the far one makes the block.
    const int otherRow = row == block.top() + 1 ? block.bottom() + 1 : block.top() + 1;
    const int otherColumn = column == block.left() + 1 ? block.right() + 1 : block.left() + 1;
    model_->cursor().select(row, column, otherRow, otherColumn);
}

// ---- Events

bool FrmTable::eventFilter(QObject* watched, QEvent* event) {
    const QPointer<FrmTable> self(this);
    if (model_ && handled(watched, event)) return true;
    // A refusal's box may have let the table go.
    return !self || QWidget::eventFilter(watched, event);
}

bool FrmTable::handled(const QObject* watched, QEvent* event) {
    if (watched == Grid1_) return gridEvent(event);
    if (watched == Grid1_->viewport()) return viewportEvent(event);
    if (watched == txtInputValue_) return boxEvent(event);
    if (watched == txtTOG_) return timeFieldEvent(txtTOG_, event);
    if (watched == txtIOT_) return timeFieldEvent(txtIOT_, event);
    return false;
}

bool FrmTable::gridEvent(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // The edit menu has the same keys; on the grid they mean its cells.
        if (isClipboardKey(*static_cast<QKeyEvent*>(event))) event->accept();
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    return waits() ? hold(key) : gridKey(key);
}

/// While a change is on its way a click waits as keys do: what is typed behind it is meant for its cell. A
/// click holds the cursor, wherever the engine has gone.
bool FrmTable::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick) {
        return false;
    }
    if (!waits()) {
        holdCursor();
        return false;
    }
    hold(*static_cast<QMouseEvent*>(event));
    return true;
}

bool FrmTable::gridKey(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Copy) || event.matches(QKeySequence::Cut)) {
        copy();  // Kept: "X" removes nothing.
        return true;
    }
    if (event.matches(QKeySequence::Paste)) {
        paste();
        return true;
    }
    if (const char key = typedCharacter(event); key != 0) {
        pressed(key);
        return true;
    }
    if (movesCursor(event.key())) holdCursor();
    if (event.key() == Qt::Key_Escape) letCursorGo();
    return false;
}

bool FrmTable::boxEvent(QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        const bool stays = staysInField(static_cast<QFocusEvent*>(event)->reason());
        if (!committing_ && !moving_ && !stays) leaveEdit();
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    // Digits show up at once even while locked; only the change itself waits, and what is typed after it.
    if (keysWait() || (locked_ && isEnter(key))) return hold(key);
    if (isEnter(key)) {
        commitEdit();
        return true;
    }
    if (key.key() != Qt::Key_Escape) return false;
    closeEdit();
    Grid1_->setFocus();
    return true;
}

// ---- The lock

void FrmTable::onFlyLock(bool busy) {
    if (busy == locked_) return;
    locked_ = busy;
    if (busy) return;
    // The grid has the keyboard again, unless the user has begun to type into another field meanwhile.
    takeFocus();
    // Not from inside the link's tick: a refused entry shows a box.
    playLater(0);
}

// Never to the first field of the window by chance: the next digit would be an injector's time.
void FrmTable::takeFocus() {
    QWidget* typed = txtInputValue_->isHidden() ? timeInHand() : txtInputValue_;
    (typed != nullptr ? typed : Grid1_)->setFocus();
}

QLineEdit* FrmTable::timeInHand() const {
    for (QLineEdit* field : {txtTOG_, txtIOT_}) {
        if (timeBeingTyped(*field)) return field;
    }
    return nullptr;
}

bool FrmTable::hold(const QKeyEvent& event) {
    // A held-down key would go on long after it was let go; Shift and its like come with the next key.
    if (event.isAutoRepeat() || isModifier(event.key())) return true;
    Held held;
    held.key = event.key();
    held.modifiers = event.modifiers();
    held.text = event.text();
    hold(std::move(held));
    return true;
}

void FrmTable::hold(const QMouseEvent& event) {
    const QModelIndex cell = Grid1_->indexAt(event.position().toPoint());
    if (event.button() != Qt::LeftButton || !cell.isValid()) return;
    Held held;
    held.click = event.type();
    held.modifiers = event.modifiers();
    held.cell = {cell.row() + 1, cell.column() + 1};
    hold(std::move(held));
}

void FrmTable::hold(Held held) {
    if (held_.size() < mostHeldKeys) return held_.push_back(std::move(held));
    QApplication::beep();
    const bool command = static_cast<bool>(held.command);
    const std::string names = namesOf(std::deque<Held>{std::move(held)});
    session_.sysLog("TABLE: Too much waits for the unit; not taken: " + names + ".");
    // A key is missed by whoever types; a command that did not come passes for one that did.
    if (command) session_.inform("Too much waits for the unit.\nNot taken: " + names + ".");
}

void FrmTable::behindKeys(const std::string& caption, std::function<void()> command) {
    Held held;
    held.caption = caption;
    held.command = std::move(command);
    hold(std::move(held));
}

void FrmTable::behindOwnKeys(const std::string& caption, std::function<void()> command) {
    Held held;
    held.caption = caption;
    held.command = std::move(command);
    held.ofTable = true;
    hold(std::move(held));
}

void FrmTable::inOrder(const QString& caption, void (FrmTable::*run)()) {
    if (!keysWait()) return (this->*run)();
    behindOwnKeys(caption.trimmed().toStdString(), [this, run] { (this->*run)(); });
}

void FrmTable::playLater(int ms) {
    QTimer::singleShot(ms, this, &FrmTable::playBack);
}

void FrmTable::playBack() {
    if (playing_ || locked_ || held_.empty()) return;
    // What was typed before a box came is not meant for it, and its own boxes come after it.
    if (QApplication::activeModalWidget() != nullptr) return playLater(boxPollMs);
    const QPointer<FrmTable> self(this);
    playing_ = true;
    // Also when a command fails: what waits behind it has its turn.
    const auto done = qScopeGuard([self] {
        if (!self) return;
        self->playing_ = false;
        if (!self->held_.empty() && !self->locked_) self->playLater(0);
    });
    while (!held_.empty() && !locked_ && !closing_) {
        const Held next = std::move(held_.front());
        held_.pop_front();
        const int refusals = refusals_;
        play(next);
        if (!self) return;  // the command has closed the table, and what waited was taken from it
        if (!next.command && refusals_ != refusals) dropHeld();
    }
}

void FrmTable::play(const Held& held) {
    if (held.command) return held.command();
    if (held.click != QEvent::None) return click(held);
    QKeyEvent press(QEvent::KeyPress, held.key, held.modifiers, held.text);
    QWidget* target = txtInputValue_->isVisible() ? static_cast<QWidget*>(txtInputValue_) : Grid1_;
    QApplication::sendEvent(target, &press);
}

void FrmTable::click(const Held& held) {
    Grid1_->setFocus(Qt::MouseFocusReason);
    QWidget* area = Grid1_->viewport();
    const QPointF place = Grid1_->cellRect(held.cell.row, held.cell.column).center();
    const QPointF onScreen = area->mapToGlobal(place);
    QMouseEvent press(held.click, place, onScreen, Qt::LeftButton, Qt::LeftButton, held.modifiers);
    QApplication::sendEvent(area, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, place, onScreen, Qt::LeftButton, Qt::NoButton,
                        held.modifiers);
    QApplication::sendEvent(area, &release);
}

// What was typed behind a refused entry was meant for a grid that took it: the digits of the next cell would
// land in this one.
void FrmTable::dropHeld() {
    if (held_.empty()) return;
    const std::string names = namesOf(std::exchange(held_, {}));
    session_.sysLog("TABLE: After the refused entry not taken: " + names + ".");
    session_.inform("The entry was refused.\nWhat was typed behind it was not taken: " + names +
                    ".\nPlease look at the cell and enter it again.");
}

// ---- Keys

void FrmTable::pressed(char key) {
    switch (model_->keyOnGrid(key)) {
        case KeyResult::Unload:
            close();
            return;
        case KeyResult::StartEdit:
            openEdit(key);
            break;
        case KeyResult::Nudge:
            nudge(key == '.');
            break;
        case KeyResult::Done:
            showAll();
            sizeColumns();
            break;
        case KeyResult::Ignored:
            showItems();
            break;
    }
}

void FrmTable::nudge(bool up) {
    const int written = model_->sheet().cellsWritten();
    const auto nudged = model_->editor().nudge(up);
    markIfWritten(written);
    showAll();
    tell(nudged);
}

// ---- Editing

bool FrmTable::tell(const EntryOutcome& outcome) {
    std::vector<Refusal> refused;
    noteRefusal(refused, outcome);
    return tell(refused);
}

bool FrmTable::tell(std::span<const Refusal> refused) {
    if (refused.empty()) return true;
    ++refusals_;
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    // The live point stays away from the cell that the box is about.
    const TableCursor::Hold hold(model->cursor());
    committing_ = true;
    session_.messages.tell(refused);
    if (!self) return false;
    committing_ = false;
    return model == model_;
}

void FrmTable::openEdit(char key) {
    const auto start = model_->editor().startEdit(key);
    showItems();
    if (!start) {
        Grid1_->setFocus();
        tell(TableEditor::checkFirstKey(key));
        return;
    }
    boxEntered_ = key != ' ';
    txtInputValue_->setText(QString::fromStdString(start->text));
    placeEdit();
    txtInputValue_->show();
    txtInputValue_->raise();
    txtInputValue_->setFocus();
    txtInputValue_->end(false);
    if (start->selectedCharacters > 0) txtInputValue_->setSelection(0, start->selectedCharacters);
}

void FrmTable::placeEdit() {
    if (!model_) return;
    const QRect cell = Grid1_->cellRect(model_->cursor().row(), model_->cursor().column());
    // Larger than its cell, so that the digits are; it grows to the left and to both sides in height, and
    // stays in sight at the edges of the grid.
    const QFontMetrics metrics = txtInputValue_->fontMetrics();
    const int width = std::max(cell.width(), digitsWidth(metrics, inputPlaces) + 4 * inputBorder);
    const int height = std::max(cell.height(), metrics.height() + 2 * inputBorder);
    QRect place(cell.right() + 1 - width, cell.center().y() - height / 2, width, height);
    const QRect sight = Grid1_->viewport()->rect();
    place.moveLeft(std::max(place.left(), 0));
    place.moveTop(std::clamp(place.top(), 0, std::max(0, sight.height() - height)));
    txtInputValue_->setGeometry(place);
}

bool FrmTable::finishEntry() {
    if (!model_) return true;
    for (QLineEdit* field : {txtTOG_, txtIOT_}) {
        if (timeBeingTyped(*field) && !takeTime(field)) return false;
    }
    if (txtInputValue_->isHidden()) return true;
    // A box that only shows its cell must not fill a whole selection with it.
    if (boxEntered_ || txtInputValue_->isModified()) return commitEdit();
    closeEdit();
    Grid1_->setFocus();
    return true;
}

bool FrmTable::finishEdits() {
    if (!finishEntry()) return false;
    return !textLeft_ || !model_->estimates().showsValues() || saveGrid();
}

bool FrmTable::commitEdit() {
    const auto entered = model_->editor().enterValue(txtInputValue_->text().toStdString());
    if (entered) {
        closeEdit();
        session_.markModified();
        Grid1_->setFocus();
        showAll();
        return true;
    }
    if (!tell(entered)) return false;
    const std::string& old = model_->sheet().grid().text(model_->cursor().row(), model_->cursor().column());
    txtInputValue_->setText(QString::fromStdString(old));
    boxEntered_ = false;
    txtInputValue_->show();
    txtInputValue_->setFocus();
    txtInputValue_->selectAll();
    return false;
}

/// Kept: leaving the box puts its text into the cell with no check; the unit gets it with the next "Save".
void FrmTable::leaveEdit() {
    if (!txtInputValue_->isVisible()) return;
    const int row = model_->cursor().row();
    const int column = model_->cursor().column();
    const std::string typed = txtInputValue_->text().toStdString();
    if (typed != model_->sheet().grid().text(row, column)) textLeft_ = true;
    model_->editor().leaveEdit(typed);
    closeEdit();
    Grid1_->cells().refreshCell(row, column);
}

void FrmTable::closeEdit() {
    if (txtInputValue_->isHidden()) return;
    // Hiding takes the focus away, which must not count as leaving the box.
    const bool before = committing_;
    committing_ = true;
    txtInputValue_->hide();
    committing_ = before;
    letCursorGo();
}

void FrmTable::holdCursor() {
    model_->cursor().hold();
    showItems();
}

void FrmTable::letCursorGo() {
    model_->cursor().letGo();
    showItems();
}

void FrmTable::cellDoubleClicked() {
    if (!model_ || waits() || !model_->estimates().showsValues()) return;
    holdCursor();
    openEdit(' ');
}

void FrmTable::headerDoubleClicked(int row, int column) {
    if (!model_ || waits()) return;
    const auto prompt = model_->editor().headerPrompt(row, column);
    if (!prompt) return;
    holdCursor();
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const auto typed =
        session_.dialogs().input(headerBoxTitle, *prompt, model->sheet().grid().text(row, column));
    if (!self) return;
    letCursorGo();
    if (!typed || model != model_ || model->editor().headerPrompt(row, column) != prompt) return;
    auto entered = model->editor().checkHeader(row, column, *typed);
    if (entered) entered = model->editor().enterHeader(row, column, *typed);
    if (!entered) return static_cast<void>(tell(entered));
    session_.markModified();
    showAll();
    sizeColumns();
    const std::string warning = model->editor().axisWarning(row, column);
    if (warning.empty()) return;
    session_.sysLog("TABLE: " + warning.substr(0, warning.find('\n')));
    // No numbered warning: the entry stands, and what was typed behind it goes on.
    session_.dialogs().show({"Warning", warning, Icon::Exclamation, Buttons::Ok});
}

void FrmTable::copy() {
    QApplication::clipboard()->setText(
        QString::fromStdString(model_->editor().clip()).replace(QLatin1Char('\r'), QLatin1Char('\n')));
}

void FrmTable::paste() {
    const int written = model_->sheet().cellsWritten();
    const auto refused = model_->editor().paste(QApplication::clipboard()->text().toStdString());
    markIfWritten(written);
    showAll();
    tell(refused);
}

void FrmTable::markIfWritten(int writtenBefore) {
    if (model_->sheet().cellsWritten() != writtenBefore) session_.markModified();
}

/// The pop-up of the main window, with the entries that suit the selection.
void FrmTable::showPopup(const QPoint& place) {
    if (!model_ || locked_) return;
    QMenu* popup = nullptr;
    for (QWidget* above = parentWidget(); above != nullptr && popup == nullptr;
         above = above->parentWidget()) {
        popup = above->findChild<QMenu*>(QLatin1String(popupName), Qt::FindDirectChildrenOnly);
    }
    if (popup == nullptr) return;
    const QModelIndex cell = Grid1_->indexAt(place);
    if (cell.isValid() && !model_->cursor().selection().present) Grid1_->setCurrentIndex(cell);
    const PopupItems items = model_->popupItems();
    for (QAction* entry : popup->actions()) {
        const QString name = entry->menu() != nullptr ? entry->menu()->objectName() : entry->objectName();
        if (name == "mnuInterpolate" || name == "mnuSmooth") entry->setVisible(items.interpolateAndSmooth);
        if (name.startsWith("mnuNew") || name.startsWith("mnuRmv")) entry->setVisible(items.rowsAndColumns);
    }
    popup->popup(Grid1_->viewport()->mapToGlobal(place));
}

// ---- txtTOG and txtIOT

bool FrmTable::timeFieldEvent(QLineEdit* field, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        const bool stays = staysInField(static_cast<QFocusEvent*>(event)->reason());
        if (!committing_ && !moving_ && !stays) takeTime(field);
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (isEnter(key)) {
        takeTime(field);
        return true;
    }
    if (key.key() != Qt::Key_Escape) return false;
    field->setText(QString::fromStdString(field == txtTOG_ ? model_->estimates().timeOfGap()
                                                           : model_->estimates().injectorOn()));
    return true;
}

/// Its text is the user's and not what the calibration holds; also while another window is in front of it.
bool FrmTable::timeBeingTyped(const QLineEdit& field) const {
    if (!model_ || !field.isModified()) return false;
    const bool gap = &field == txtTOG_;
    return field.text().toStdString() !=
           (gap ? model_->estimates().timeOfGap() : model_->estimates().injectorOn());
}

bool FrmTable::takeTime(QLineEdit* field) {
    const bool gap = field == txtTOG_;
    const std::string before = gap ? model_->estimates().timeOfGap() : model_->estimates().injectorOn();
    const std::string typed = field->text().toStdString();
    if (typed == before) return true;
    const auto entered = model_->enterTime(gap ? "scale1" : "INJ_On", typed);
    if (!tell(entered)) return false;
    field->setText(QString::fromStdString(
        entered ? (gap ? model_->estimates().timeOfGap() : model_->estimates().injectorOn()) : before));
    if (entered) {
        session_.markModified();
        ownChange_ =
            true;  // the table shows it already, and a new build would lose what "Discard" brings back
        session_.windows().tell(&WindowNews::showUnit);
        ownChange_ = false;
    } else if (!QString::fromStdString(typed).trimmed().isEmpty()) {
        // From the event loop, as the focus may be on its way to another control at this moment.
        QTimer::singleShot(0, field, [field] { field->setFocus(); });
    }
    Grid1_->cells().refresh();
    return static_cast<bool>(entered);
}

// ---- Toolbar commands

void FrmTable::home() {
    if (!model_) return;
    closeEdit();
    model_->home();
    showAll();
    sizeColumns();
}

bool FrmTable::saveGrid() {
    if (!model_) return true;
    if (txtInputValue_->isVisible()) leaveEdit();
    textLeft_ = false;
    const int written = model_->sheet().cellsWritten();
    const auto refused = model_->save();
    markIfWritten(written);
    showAll();
    return tell(refused) && refused.empty();
}

void FrmTable::toggleDocking() {
    setDocked(!docked_);
    Q_EMIT dockingAsked(docked_);
}

void FrmTable::discard() {
    if (!model_) return;
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const Answer answer = session_.dialogs().show(
        {"Discard Changes?", "Are you sure you want to reset the table back to it's original state?",
         Icon::Question, Buttons::YesNo});
    if (!self || model != model_ || answer != Answer::Yes) return;
    closeEdit();
    const int written = model_->sheet().cellsWritten();
    const auto refused = model_->restore();
    markIfWritten(written);
    showAll();
    tell(refused);
}

void FrmTable::toggleColors() {
    model_->cursor().toggleOverlay();
    showItems();
}

void FrmTable::colorsNorm() {
    setColourMode(0);
}
void FrmTable::colorsAfr() {
    setColourMode(1);
}

void FrmTable::setColourMode(int mode) {
    session_.TableColorMode = mode;
    session_.settings().set("System", "TableColor", numberText(mode));
    model_->overlay().colourMode(colourModeOf(mode));
    showItems();
}

void FrmTable::clearTableColours() {
    if (!model_) return;
    model_->overlay().colourMode(colourModeOf(session_.TableColorMode));
    model_->overlay().colorizeGraph(true);
    showItems();
    Grid1_->cells().refresh();
}

/// Kept: the state of a menu item; painting does not depend on it.
void FrmTable::colorsPersist() {
    colourPersist_ = !colourPersist_;
    actions_.at("ColorsPersist")->setText(colourPersist_ ? "Color Persist OFF" : "Color Persist ON");
}

void FrmTable::colorsWhiteOut() {
    model_->overlay().whiteOut();
    Grid1_->cells().refresh();
}

void FrmTable::invert() {
    closeEdit();
    model_->invert();
    showAll();
    sizeColumns();
}

void FrmTable::pulsewidth() {
    closeEdit();
    model_->togglePulsewidth();
    showAll();
    sizeColumns();
}

void FrmTable::dutyCycle() {
    closeEdit();
    model_->toggleDutyCycle();
    showAll();
    sizeColumns();
}

void FrmTable::absolute() {
    closeEdit();
    model_->toggleAbsolute();
    showAll();
    sizeColumns();
}

void FrmTable::resetTable() {
    closeEdit();
    model_->reset();
    showAll();
    sizeColumns();
}

void FrmTable::closeEvent(QCloseEvent* event) {
    event->accept();
    if (closing_) return;
    if (keysWait()) {
        event->ignore();
        return behindOwnKeys("Close", [this] { close(); });
    }
    if (!finishEntry()) return event->ignore();
    closing_ = true;
    closeEdit();
    tellClosed();
}

// ---- Live

void FrmTable::refreshLive() {
    const int linked = session_.link.linked().LinkedUnitKind;
    followPaint();
    if (!model_ || linked == 0 || linked != session_.slotInHand()) return;
    Show_Current_Activity();
}

void FrmTable::followPaint() {
    if (!model_ ||
        std::exchange(erasuresSeen_, session_.paintMemory.erasures()) == session_.paintMemory.erasures()) {
        return;
    }
    model_->overlay().paintAnew();
    Grid1_->cells().refresh();
}

void FrmTable::Show_Current_Activity(float x, float y) {
    if (!model_) return;
    // Each frame paints its cell; only the screen waits.
    dirtyCells_.push_back({model_->cursor().row(), model_->cursor().column()});
    model_->overlay().Show_Current_Activity(x, y);
    dirtyCells_.push_back({model_->cursor().row(), model_->cursor().column()});
    redraw_->request();
}

void FrmTable::drawLive() {
    ++redraws_;
    const std::vector<GridCell> cells = std::exchange(dirtyCells_, {});
    const GridCell* last = nullptr;
    for (const GridCell& cell : cells) {
        if (last == nullptr || !(cell == *last)) Grid1_->cells().refreshCell(cell.row, cell.column);
        last = &cell;
    }
    const LiveMarker& marker = model_->overlay().marker();
    Grid1_->placeMarker(marker.visible, marker.row, marker.column);
    showCursor();
    const LiveValues& live = session_.live;
    const std::string table = tableName();
    double value = live.INJ_VE;
    if (table == "SPW") value = live.INJ_STAGE;
    if (table == "ADV") value = live.ADV_TBL;
    lblDspTableVal_->setText(QString::fromStdString(formatNumber(value, table == "ADV" ? "#0.0" : "##0")));
}

}  // namespace zentaq
