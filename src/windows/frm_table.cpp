#include "windows/frm_table.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPointer>
#include <QVBoxLayout>

#include "base/settings_keys.h"
#include "config/tree.h"
#include "qt/enter_key.h"
#include "qt/field_focus.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "tables/table_badges.h"
#include "tables/table_context.h"
#include "windows/frm_config.h"
#include "windows/window_registry.h"

namespace zentaq {
namespace {

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

}  // namespace

FrmTable::FrmTable(Session& session, QWidget* parent)
    : QWidget(parent), DockingForm(this), session_(session) {
    named(this, qString(window::table), "Table");
    redraw_ = new RedrawGate(
        session.platform().clock, [this] { drawLive(); }, this, RedrawGate::markUs);
    makeToolbar();
    Grid1_ = named(new TableGridView(this), "Grid1", "Cells of the table");
    Grid1_->setContextMenuPolicy(Qt::CustomContextMenu);
    txtInputValue_ = new CellBox(*Grid1_);
    txtFormula_ = new FormulaLine(*Grid1_);
    Grid1_->cells().speakBy([this](int row, int column) {
        return model_ ? qString(cellInWords(*model_, row, column)) : QString();
    });
    ahead_ = new TypedAhead(session,
                            {.ready = [this] { return !locked_ && !closing_; },
                             .play = [this](const TypedAhead::Held& held) { return play(held); }},
                            this);
    for (QObject* watched : watchedObjects()) watched->installEventFilter(this);

    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(space(fontMetrics(), Space::Line));
    whole->addWidget(Toolbar1_);
    whole->addWidget(Grid1_, 1);

    connect(Grid1_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FrmTable::selectionChanged);
    connect(Grid1_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FrmTable::selectionChanged);
    connect(Grid1_, &QTableView::doubleClicked, this, &FrmTable::cellDoubleClicked);
    connect(Grid1_, &TableGridView::resized, this, &FrmTable::placeEdit);
    connect(Grid1_, &QWidget::customContextMenuRequested, this, &FrmTable::showPopup);
    for (QHeaderView* header : {Grid1_->horizontalHeader(), Grid1_->verticalHeader()}) {
        // A whole line is selected: the engine must not carry the cursor away.
        connect(header, &QHeaderView::sectionPressed, this, [this] {
            if (model_) holdCursor();
        });
    }
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
    for (QObject* watched : watchedObjects()) watched->removeEventFilter(this);
    Grid1_->selectionModel()->disconnect(this);
    Grid1_->cells().show(nullptr);
    session_.cellContext = {};
    if (const std::string names = ahead_->names(); !names.empty())
        session_.sysLog("TABLE: Closed before " + names + ".");
    session_.sysLog("TABLE App. Terminated.");
}

std::vector<QObject*> FrmTable::watchedObjects() const {
    return {Grid1_, Grid1_->viewport(), txtInputValue_, txtFormula_, txtTOG(), txtIOT()};
}

// ---- Building

void FrmTable::openOn(const std::string& table, const std::string& title) {
    if (tableName() != table) {
        const QPointer<FrmTable> self(this);
        if (!finishEntry() || !self) return;
        Setup_Grid(table, title);
        if (!self) return;  // gone under the box about its axes
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
    shown.overlay().heatScale(session_.heatScaleChosen());
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
    const auto refused = model_->rebuild();
    if (view != TableView::Values) model_->showView(view);
    if (cell != GridCell{model_->cursor().row(), model_->cursor().column()}) closeEdit();
    showAll();
    sizeColumns();
    placeEdit();
    tell(refused);
}

void FrmTable::sizeColumns() {
    Grid1_->sizeColumns(session_.settings().get(settings::system, settings::Column_Type) == "1");
}

void FrmTable::showAll() {
    const QString title = QString::fromStdString(model_->sheet().title());
    setWindowTitle(docked_ ? QString() : title);
    Grid1_->setAccessibleName(title);
    Grid1_->nameAxes(qString(cornerOf(model_->sheet())), qString(axesInWords(model_->sheet())));
    model_->noteDifferences();
    Grid1_->cells().refresh();
    showTimes();
    showItems();
    showCursor();
    tellContext(true);
}

void FrmTable::showTimes() {
    const auto show = [this](QLineEdit& field, const std::string& time) {
        // The same text once more would only move the cursor.
        if (!timeBeingTyped(field) && field.text().toStdString() != time) field.setText(qString(time));
    };
    for (QLineEdit* field : {txtTOG(), txtIOT()}) show(*field, storedTime(*field));
}

void FrmTable::showItems() {
    Toolbar1_->showItems(*model_, docked_);
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
    txtInputValue_->setMode(mode);
    txtFormula_->setMode(mode);
    Toolbar1_->setMode(mode);
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
        return tellContext(true);
    }
    const QItemSelectionRange& block = chosen.first();
    model_->cursor().selectAround({row, column},
                                  {block.top() + 1, block.bottom() + 1, block.left() + 1, block.right() + 1});
    tellContext(true);
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
    if (watched == txtFormula_) return formulaEvent(event);
    if (watched == txtTOG()) return timeFieldEvent(txtTOG(), event);
    if (watched == txtIOT()) return timeFieldEvent(txtIOT(), event);
    return false;
}

bool FrmTable::gridEvent(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // The edit menu and the guide have the same keys; on the grid they mean its cells.
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (isClipboardKey(key) || (key.key() == Qt::Key_F1 && isPlain(key))) event->accept();
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (!waits()) return gridKey(key);
    ahead_->holdKey(key);
    return true;
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
    const auto& click = *static_cast<QMouseEvent*>(event);
    const QModelIndex cell = Grid1_->indexAt(click.position().toPoint());
    if (click.button() == Qt::LeftButton && cell.isValid())
        ahead_->holdClick(click, {cell.row() + 1, cell.column() + 1});
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
    if (event.key() == Qt::Key_F1 && isPlain(event)) {
        showKeys();
        return true;
    }
    if (selectingKey(event)) return true;
    if (const char key = typedCharacter(event); key != 0) {
        pressed(key);
        return true;
    }
    if (movesCursor(event.key())) holdCursor();
    if (event.key() == Qt::Key_Escape) letCursorGo();
    return false;
}

bool FrmTable::boxEvent(QEvent* event) {
    return entryEvent(event, {[this] { leaveEdit(); }, [this] { commitEdit(); }, [this] { closeEdit(); }});
}

bool FrmTable::entryEvent(QEvent* event, const EntryEnds& ends) {
    if (event->type() == QEvent::FocusOut) {
        const bool stays = staysInField(static_cast<QFocusEvent*>(event)->reason());
        if (!committing_ && !moving_ && !stays) ends.leave();
        return false;
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    // Digits show up at once even while locked; only the change itself waits, and what is typed after it.
    if (keysWait() || (locked_ && isEnterKey(key))) {
        ahead_->holdKey(key);
        return true;
    }
    if (isEnterKey(key)) {
        ends.enter();
        return true;
    }
    if (key.key() != Qt::Key_Escape) return false;
    ends.close();
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
    ahead_->playLater();
}

// Never to the first field of the window by chance: the next digit would be an injector's time.
void FrmTable::takeFocus() {
    QWidget* typed = timeInHand();
    if (!txtFormula_->isHidden()) typed = txtFormula_;
    if (!txtInputValue_->isHidden()) typed = txtInputValue_;
    (typed != nullptr ? typed : Grid1_)->setFocus();
}

QLineEdit* FrmTable::timeInHand() const {
    for (QLineEdit* field : {txtTOG(), txtIOT()}) {
        if (timeBeingTyped(*field)) return field;
    }
    return nullptr;
}

bool FrmTable::play(const TypedAhead::Held& held) {
    if (held.command) {
        held.command();
        return true;
    }
    const int refusals = refusals_;
    const QPointer<FrmTable> self(this);
    if (held.click != QEvent::None) {
        click(held);
    } else {
        QKeyEvent press(QEvent::KeyPress, held.key, held.modifiers, held.text);
        QWidget* target = Grid1_;
        if (txtFormula_->isVisible()) target = txtFormula_;
        if (txtInputValue_->isVisible()) target = txtInputValue_;
        QApplication::sendEvent(target, &press);
    }
    return !self || refusals_ == refusals;
}

void FrmTable::click(const TypedAhead::Held& held) {
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

void FrmTable::closeEvent(QCloseEvent* event) {
    event->accept();
    if (closing_) return;
    if (keysWait()) {
        event->ignore();
        return ahead_->holdCommand(
            "Close", [this] { close(); }, true);
    }
    if (!finishEntry()) return event->ignore();
    closing_ = true;
    closeEdit();
    leaveAutoVe();
    tellClosed();
}

// ---- Live

void FrmTable::refreshLive() {
    const int linked = session_.link.linked().LinkedUnitKind;
    followPaint();
    if (!model_ || linked == 0 || linked != session_.slotInHand()) return;
    Show_Current_Activity();
    feedAutoVe();
}

void FrmTable::logRowShown(float rpm, float map) {
    // A run from a log moves the marker by its own records.
    if (!session_.AutoVEActive) Show_Current_Activity(rpm, map);
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
    for (const GridCell& cell : model_->overlay().takeFaded())
        Grid1_->cells().refreshCell(cell.row, cell.column);
    for (const GridCell& cell : cells) {
        if (last == nullptr || !(cell == *last)) Grid1_->cells().refreshCell(cell.row, cell.column);
        last = &cell;
    }
    const LiveMarker& marker = model_->overlay().marker();
    Grid1_->placeMarker(marker.visible, marker.row, marker.column);
    showCursor();
    Toolbar1_->showReading(model_->sheet().kind(), session_.live);
    Toolbar1_->showBadges(badgesOf(*model_));
    tellContext(false);
}

/// Its parent is the workspace.
template <>
Form* makeForm<FrmTable>(const FormNeeds& needs) {
    auto* workspace = static_cast<FrmConfig*>(needs.parent);
    auto* form = new FrmTable(needs.session, workspace);
    QObject::connect(form, &FrmTable::dockingAsked, workspace,
                     [workspace, form](bool docked) { workspace->dock().place(*form, docked); });
    return form;
}

}  // namespace zentaq
