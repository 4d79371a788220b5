// Commands of the table window on the cells in hand: filling, smoothing, lines, formulas, new axes,
// comparing, printing. Each looks again, at the moment of acting, at what a box has let happen.
#include <QItemSelectionModel>
#include <QPointer>
#include <QShortcut>

#include "base/errors.h"
#include "qt/paper.h"
#include "qt/qt_text.h"
#include "tables/line_commands.h"
#include "tables/rebin.h"
#include "tables/table_context.h"
#include "windows/frm_graph_3d.h"
#include "windows/frm_rebin.h"
#include "windows/frm_table.h"
#include "windows/table_keys.h"

namespace zentaq {

namespace {

constexpr auto cellsMenu = "Cells";
constexpr auto compareMenu = "View";
constexpr auto changedMeanwhile = "New axes: not done, the table has changed meanwhile.";

QString bare(std::string_view caption) {
    return qString(caption).remove(u'&');
}

}  // namespace

// ---- Making

void FrmTable::addKey(const char* name, const char* keys, const std::function<void()>& command) {
    auto* shortcut = new QShortcut(QKeySequence(QLatin1String(keys)), this);
    shortcut->setObjectName(QLatin1String("key") + QLatin1String(name));
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this,
            [this, caption = QString(QLatin1String(name)), command] { inOrder(caption, command); });
}

void FrmTable::addCellCommands() {
    const auto add = [this](const char* name, std::string_view caption, std::string_view keys,
                            const std::function<void()>& command) {
        const QString text = qString(caption) + (keys.empty() ? QString() : "\t" + qString(keys));
        Toolbar1_->addNamed(
            name, text, [this, command](const QString& shown) { inOrder(shown, command); }, cellsMenu);
        if (!keys.empty()) addKey(name, keys.data(), command);
    };
    Toolbar1_->addNamed(
        "mnuFormula", "C&hange... (=12, +3, *1.05, +5%)\t=",
        [this](const QString& shown) { inOrder(shown, [this] { openFormula("="); }); }, cellsMenu);
    for (const EditCommand& command : editCommands()) {
        if (command.group) Toolbar1_->addSeparatorTo(cellsMenu);
        const QString group = command.parent == "mnuCopyOut" ? "Copy Outward: " : "";
        add(command.name.data(), (group + qString(command.caption)).toStdString(), command.shortcut,
            [this, &command] { runCommand(command); });
    }
    Toolbar1_->addSeparatorTo(cellsMenu);
    add("mnuRebin", "&New Axes...", "Ctrl+R", [this] { rebin(); });
    add("mnuHeaderColumn", "New Column &Header...", "Ctrl+H", [this] { newHeader(true); });
    add("mnuHeaderRow", "New Row Header...", "Ctrl+Shift+H", [this] { newHeader(false); });
    Toolbar1_->addSeparatorTo(cellsMenu);
    Toolbar1_->addNamed(
        "Keys", "&Keys of the Table\t?",
        [this](const QString& shown) { inOrder(shown, [this] { showKeys(); }); }, cellsMenu);
    Toolbar1_->explain(cellsMenu,
                       "Cells: fill, smooth, change and copy the selected cells, rows and columns, axes");
}

void FrmTable::addCompareCommands() {
    Toolbar1_->addSeparatorTo(compareMenu);
    const auto run = [this](const std::function<void()>& command) {
        return [this, command](const QString& shown) { inOrder(shown, command); };
    };
    Toolbar1_->add({"CompareFile", "Compare With Another &File..."}, run([this] { compareFile(); }),
                   compareMenu);
    Toolbar1_->add({"CompareOpened", "Compare With It As &Opened", "", true},
                   run([this] { compareOpened(); }), compareMenu);
    const auto difference = [this] {
        if (!model_) return;
        if (!model_->comparison().on()) {
            session_.notice("Choose first what the table is compared with.");
        } else {
            closeEdit();
            rebuilt(model_->toggleDifference());
        }
        showItems();
    };
    Toolbar1_->add({"Difference", "Show &Differences\tCtrl+Shift+D", "", true}, run(difference), compareMenu);
    addKey("Difference", "Ctrl+Shift+D", difference);
    Toolbar1_->add({"CompareOff", "&Compare No More"}, run([this] { compareNoMore(); }), compareMenu);
}

// ---- Commands of the rows

void FrmTable::tableCommand(const std::string& name) {
    if (name == "mnuGraphTable") return inOrder("Graph", [this] { graph(); });
    const EditCommand* command = editCommandOf(name);
    if (command != nullptr) inOrder(bare(command->caption), [this, command] { runCommand(*command); });
}

void FrmTable::runCommand(const EditCommand& command) {
    const QPointer<FrmTable> self(this);
    if (!model_ || !finishEntry() || !self || !model_) return;
    if (!agreed(command)) return;
    const std::string why = command.whyNot(*model_);
    if (!why.empty()) return session_.notice(bare(command.caption).toStdString() + ": " + why);
    const TableSheet& sheet = model_->sheet();
    const int written = sheet.cellsWritten();
    const std::pair size(sheet.rows(), sheet.columns());
    const auto refused = command.run(*model_);
    markIfWritten(written);
    if (size != std::pair(sheet.rows(), sheet.columns())) session_.markModified();
    Grid1_->cells().refresh();
    rebuilt(refused);
    if (self) tellOthers();
}

bool FrmTable::agreed(const EditCommand& command) {
    return !command.ofLines || !command.whyNot(*model_).empty() || axesAgreed();
}

bool FrmTable::axesAgreed() {
    const std::string question = axesQuestion(model_->sheet().unit());
    if (question.empty()) return true;
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const std::string table = model->sheet().table();
    // The engine runs: without this it would carry the cursor to another line before the command takes it.
    const TableCursor::Hold hold(model->cursor());
    const Answer answer =
        session_.dialogs().show({"Unit Connected", question, Icon::Exclamation, Buttons::YesNo, true});
    return self && model == model_ && table == tableName() && answer == Answer::Yes;
}

void FrmTable::tellOthers() {
    ownChange_ = true;  // the table shows it already, and a new build would lose what "Discard" brings back
    session_.windows().tell(&WindowNews::showUnit);
    ownChange_ = false;
}

// ---- Keys that select

bool FrmTable::selectingKey(const QKeyEvent& event) {
    if (event.key() != Qt::Key_Space) return false;
    const Qt::KeyboardModifiers with = event.modifiers() & ~Qt::KeypadModifier;
    if (with != Qt::ControlModifier && with != Qt::ShiftModifier) return false;
    holdCursor();
    selectLine(with == Qt::ControlModifier);
    return true;
}

void FrmTable::selectLine(bool column) {
    const QModelIndex current = Grid1_->currentIndex();
    if (!current.isValid()) return;
    const auto lines = column ? QItemSelectionModel::Columns : QItemSelectionModel::Rows;
    Grid1_->selectionModel()->select(current, QItemSelectionModel::ClearAndSelect | lines);
}

// ---- The formula

void FrmTable::openFormula(const QString& start) {
    const QPointer<FrmTable> self(this);
    if (!model_ || !finishEntry() || !self) return;
    if (!model_->estimates().showsValues())
        return session_.notice("The cells show no values of the table now: go back to the values first.");
    model_->cursor().takeToSelection();
    holdCursor();
    model_->cursor().beginEdit();
    showItems();
    txtFormula_->open(start, model_->cursor().row(), model_->cursor().column());
}

bool FrmTable::formulaEvent(QEvent* event) {
    return entryEvent(event,
                      {[this] { closeFormula(); }, [this] { commitFormula(); }, [this] { closeFormula(); }});
}

bool FrmTable::commitFormula() {
    // Nothing but the sign that opened the line is no wish.
    if (txtFormula_->text().trimmed().size() < 2) {
        closeFormula();
        Grid1_->setFocus();
        return true;
    }
    std::vector<Refusal> refused;
    std::string why;
    const int written = model_->sheet().cellsWritten();
    endOnFailure([&] { refused = applyFormula(*model_, txtFormula_->text().toStdString()); },
                 [&](const std::string& reason) { why = reason; });
    markIfWritten(written);
    if (why.empty() && refused.empty()) {
        closeFormula();
        Grid1_->setFocus();
        showAll();
        tellOthers();
        return true;
    }
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    ++refusals_;
    committing_ = true;
    if (!why.empty()) {
        session_.sysLog("TABLE: " + why);
        session_.dialogs().show({"Change Cells", why, Icon::Exclamation, Buttons::Ok});
    } else {
        const TableCursor::Hold hold(model->cursor());
        session_.messages.tell(refused);
    }
    if (!self) return false;
    committing_ = false;
    if (model == model_ && !txtFormula_->isHidden()) txtFormula_->setFocus();
    return false;
}

void FrmTable::closeFormula() {
    if (txtFormula_->isHidden()) return;
    const bool before = committing_;
    committing_ = true;
    txtFormula_->hide();
    committing_ = before;
    letCursorGo();
}

// ---- Headers, axes

void FrmTable::newHeader(bool column) {
    if (!model_) return;
    headerDoubleClicked(column ? 0 : model_->cursor().row(), column ? model_->cursor().column() : 0);
}

void FrmTable::rebin() {
    const QPointer<FrmTable> self(this);
    if (!model_ || !finishEntry() || !self || !model_) return;
    const auto model = model_;
    const std::string table = tableName();
    const TableAxes before = axesOf(model->sheet());
    holdCursor();
    const QPointer<FrmRebin> box(new FrmRebin(model->sheet(), appliedLook(*qApp), this));
    const bool accepted = box->exec() == QDialog::Accepted;
    if (!self || !box) return;
    const TableAxes wanted = accepted ? box->wanted() : TableAxes();
    delete box;
    takeFocus();
    letCursorGo();
    if (!accepted || wanted == before) return;
    if (model != model_ || table != tableName() || before != axesOf(model->sheet()))
        return session_.notice(changedMeanwhile);
    if (!axesAgreed()) return;
    if (before != axesOf(model->sheet())) return session_.notice(changedMeanwhile);
    std::vector<Refusal> refused;
    bool done = false;
    endOnFailure(
        [&] {
            const Rebinning plan = rebinned(model->sheet(), wanted);
            refused = refusedOf(model->sheet(), plan);
            if (!refused.empty()) return;
            refused = store(model->sheet(), plan);
            done = true;
        },
        [&](const std::string& why) { session_.notice("New axes: " + why); });
    if (!done) return static_cast<void>(tell(refused));
    session_.markModified();
    auto further = model->rebuild();
    refused.insert(refused.end(), further.begin(), further.end());
    rebuilt(refused);
    if (self) tellOthers();
}

// ---- Comparing

void FrmTable::compareFile() {
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const auto other = chooseCompared(session_);
    if (self && model == model_ && other) compareWith(other);
}

void FrmTable::compareOpened() {
    const auto opened = comparedAsOpened(session_);
    if (!opened) return session_.notice("Nothing is known of this calibration as it was opened.");
    compareWith(opened);
}

void FrmTable::compareWith(const std::optional<ComparedCalibration>& other) {
    if (!model_) return;
    std::string why;
    endOnFailure([&] { model_->compare(*other->calibration, *other->kind, other->name); },
                 [&](const std::string& reason) { why = reason; });
    showAll();
    if (why.empty()) {
        const bool apart = model_->comparison().otherAxes();
        if (apart) session_.notice(other->name + " has other headers: its values are taken between them.");
        return;
    }
    session_.sysLog("TABLE: Not compared: " + why);
    session_.dialogs().show({"Compare", "The table is not compared (" + other->name + ").\n" + why + ".",
                             Icon::Exclamation, Buttons::Ok});
}

void FrmTable::compareNoMore() {
    if (!model_) return;
    model_->compareNoMore();
    showAll();
    sizeColumns();
}

// ---- The surface

void FrmTable::graph() {
    const QPointer<FrmTable> self(this);
    if (!model_ || !finishEntry() || !self) return;
    const TableView view = model_->estimates().view();
    openSurface(session_, tableName(), title(), view == TableView::Difference ? TableView::Values : view);
}

// The texts alone: what "Discard" brings back is what was read with the table.
void FrmTable::cellsChanged() {
    if (ownChange_ || !model_ || unit_ != &session_.currentUnitObject()) return;
    TableSheet& sheet = model_->sheet();
    if (model_->estimates().showsValues()) {
        for (int row = 1; row <= sheet.rows(); ++row) {
            for (int column = 1; column <= sheet.columns(); ++column) {
                if (sheet.isStored({row, column})) sheet.showStored(row, column);
            }
        }
    }
    model_->estimates().refresh();
    model_->overlay().paintAnew();
    showAll();
}

// ---- Key list, tree, paper

void FrmTable::showKeys() {
    const QPointer<FrmTable> self(this);
    const QPointer<FrmTableKeys> list(new FrmTableKeys(this));
    list->exec();
    if (list) delete list;
    if (self) takeFocus();
}

void FrmTable::manage() {
    session_.windows().open(window::config, tableName());
}

void FrmTable::print() {
    const QPointer<FrmTable> self(this);
    const auto model = model_;
    const Answer answer = session_.dialogs().show(
        {"Print", "Are you sure you want to print this form?", Icon::Question, Buttons::YesNo});
    if (!self || model != model_ || answer != Answer::Yes) return;
    session_.sysLog("USER: Print Table Information Requested.");
    if (print_) return print_(*this);
    if (!printTable(*Grid1_->model(), qString(title()), shownString(session_.CurrentFile), this))
        session_.sysLog("Print Request Aborted.");
}

// ---- The cell in hand

void FrmTable::tellContext(bool now) {
    if (!model_) return;
    const CellContext context{contextLine(*model_), contextInWords(*model_)};
    if (context.line == session_.cellContext.line && context.words == session_.cellContext.words) return;
    session_.cellContext = context;
    if (now) session_.windows().tell(&WindowNews::cellContextChanged);
}

}  // namespace zentaq
