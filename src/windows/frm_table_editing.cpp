// What the user types, pastes and enters in the table window, and the boxes about it.
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLocale>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <map>

#include "qt/enter_key.h"
#include "qt/field_focus.h"
#include "qt/qt_text.h"
#include "windows/frm_table.h"

namespace zentaq {
namespace {

constexpr auto popupName = "mnuPopupTable";
constexpr auto headerBoxTitle = "Table Setup";

/// Those of the user's country, as the spreadsheet beside this program has them.
TableEditor::Decimals spreadsheetDecimals() {
    return QLocale().decimalPoint() == QLatin1String(",") ? TableEditor::Decimals::CommaToo
                                                          : TableEditor::Decimals::Point;
}

}  // namespace

// ---- Keys

void FrmTable::pressed(char key) {
    if (key == '?') return showKeys();
    if (FormulaLine::opens(key) && model_->estimates().showsValues())
        return openFormula(QString(QLatin1Char(key)));
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
    speakRefusal(refused.front());
    session_.messages.tell(refused);
    if (!self) return false;
    committing_ = false;
    return model == model_;
}

/// The box is read when it comes; behind it the field itself still says why.
void FrmTable::speakRefusal(const Refusal& refused) {
    QWidget* field = txtInputValue_->isHidden() ? static_cast<QWidget*>(Grid1_) : txtInputValue_;
    field->setAccessibleDescription("Refused: " + qString(refused.brief()));
    QAccessibleEvent event(field, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void FrmTable::openEdit(char key) {
    const auto start = model_->editor().startEdit(key);
    showItems();
    if (!start) {
        Grid1_->setFocus();
        tell(TableEditor::checkFirstKey(key));
        return;
    }
    txtInputValue_->open(*start, model_->cursor().cell(), key != ' ');
}

void FrmTable::placeEdit() {
    if (model_) txtInputValue_->place(model_->cursor().cell());
}

bool FrmTable::finishEntry() {
    if (!model_) return true;
    for (QLineEdit* field : {txtTOG(), txtIOT()}) {
        if (timeBeingTyped(*field) && !takeTime(field)) return false;
    }
    if (!txtFormula_->isHidden() && !commitFormula()) return false;
    if (txtInputValue_->isHidden()) return true;
    if (txtInputValue_->holdsEntry()) return commitEdit();
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
        txtInputValue_->setAccessibleDescription({});
        session_.markModified();
        Grid1_->setFocus();
        showAll();
        return true;
    }
    if (!tell(entered)) return false;
    txtInputValue_->bringBack(model_->sheet().grid().text(model_->cursor().row(), model_->cursor().column()));
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
    QApplication::clipboard()->setText(QString::fromStdString(model_->editor().clip(spreadsheetDecimals()))
                                           .replace(QLatin1Char('\r'), QLatin1Char('\n')));
}

void FrmTable::paste() {
    const int written = model_->sheet().cellsWritten();
    const auto refused =
        model_->editor().paste(QApplication::clipboard()->text().toStdString(), spreadsheetDecimals());
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
    const bool values = model_->estimates().showsValues();
    const std::map<QString, bool> enabled{{"mnuNewCol", items.newColumn},
                                          {"mnuNewRow", items.newRow},
                                          {"mnuRmvCol", items.removeColumn},
                                          {"mnuRmvRow", items.removeRow}};
    for (QAction* entry : popup->actions()) {
        const QString name = entry->menu() != nullptr ? entry->menu()->objectName() : entry->objectName();
        if (name == "mnuInterpolate" || name == "mnuSmooth") {
            entry->setVisible(items.interpolateAndSmooth);
            entry->setEnabled(values);
        }
        const auto line = enabled.find(name);
        if (line == enabled.end()) continue;
        entry->setVisible(items.rowsAndColumns);
        entry->setEnabled(line->second && values);
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
    if (isEnterKey(key)) {
        takeTime(field);
        return true;
    }
    if (key.key() != Qt::Key_Escape) return false;
    field->setText(qString(storedTime(*field)));
    return true;
}

std::string FrmTable::storedTime(const QLineEdit& field) const {
    return &field == txtTOG() ? model_->estimates().timeOfGap() : model_->estimates().injectorOn();
}

/// Its text is the user's and not what the calibration holds; also while another window is in front of it.
bool FrmTable::timeBeingTyped(const QLineEdit& field) const {
    return model_ && field.isModified() && field.text().toStdString() != storedTime(field);
}

bool FrmTable::takeTime(QLineEdit* field) {
    const std::string before = storedTime(*field);
    const std::string typed = field->text().toStdString();
    if (typed == before) return true;
    const auto entered = model_->enterTime(field == txtTOG() ? "scale1" : "INJ_On", typed);
    if (!tell(entered)) return false;
    field->setText(qString(entered ? storedTime(*field) : before));
    if (entered) {
        session_.markModified();
        tellOthers();
    } else if (!QString::fromStdString(typed).trimmed().isEmpty()) {
        // From the event loop, as the focus may be on its way to another control at this moment.
        QTimer::singleShot(0, field, [field] { field->setFocus(); });
    }
    Grid1_->cells().refresh();
    return static_cast<bool>(entered);
}

}  // namespace zentaq
