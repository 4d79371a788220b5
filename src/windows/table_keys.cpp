#include "windows/table_keys.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "tables/edit_commands.h"

namespace zentaq {

namespace {

struct KeyRow {
    const char* keys;
    const char* meaning;
};

constexpr KeyRow typing[] = {
    {"0 to 9, -", "Type a value for all selected cells; Enter takes it, Esc leaves them"},
    {"Space", "Edit the text of the cell"},
    {"=  +  *  /", "Change the selected cells: =12, +3, *1.05, /2, +5%; -2 behind = and Backspace"},
    {".  ,", "Add or subtract 1 (0.1 in an air/fuel ratio)"},
    {"Ctrl+C, Ctrl+V", "Copy the selection, paste it, from and to a spreadsheet"},
};
constexpr KeyRow moving[] = {
    {"Arrows, Home, End", "Move; with Shift select"},
    {"Ctrl+A", "Select all cells"},
    {"Ctrl+Space, Shift+Space", "Select the column, the row"},
    {"Esc", "Give the cursor back to the engine"},
    {"Ctrl+H, Ctrl+Shift+H", "Enter a new header for this column, for this row"},
};
constexpr KeyRow showing[] = {
    {"Shift+A", "Absolute values (VE)"},
    {"Shift+P, Shift+D", "Pulse width and duty cycle (VE, staging)"},
    {"Shift+O", "Follow the engine, or hold the cursor"},
    {"Ctrl+Shift+D", "What is different from the calibration that you compare with"},
    {"Menu key", "The pop-up of the cells"},
    {"Shift+X", "Close the table"},
    {"?, F1", "This list"},
};

}  // namespace

FrmTableKeys::FrmTableKeys(QWidget* parent) : QDialog(parent) {
    named(this, "frmTableKeys", "Keys of a table");
    setWindowTitle("Keys of a Table");
    lstKeys_ = named(new QTableWidget(0, 2, this), "lstKeys", "Keys and what they do");
    lstKeys_->setHorizontalHeaderLabels({"Key", "What it does"});
    lstKeys_->verticalHeader()->hide();
    lstKeys_->setShowGrid(false);
    lstKeys_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstKeys_->setSelectionBehavior(QAbstractItemView::SelectRows);
    lstKeys_->setSelectionMode(QAbstractItemView::SingleSelection);
    lstKeys_->setTabKeyNavigation(false);
    const auto add = [this](const QString& keys, const QString& meaning) {
        const int row = lstKeys_->rowCount();
        lstKeys_->insertRow(row);
        lstKeys_->setItem(row, 0, new QTableWidgetItem(keys));
        lstKeys_->setItem(row, 1, new QTableWidgetItem(meaning));
    };
    for (const KeyRow& row : typing) add(row.keys, row.meaning);
    for (const EditCommand& command : editCommands()) {
        if (!command.shortcut.empty()) add(qString(command.shortcut), qString(command.meaning));
    }
    for (const KeyRow& row : moving) add(row.keys, row.meaning);
    for (const KeyRow& row : showing) add(row.keys, row.meaning);
    lstKeys_->setCurrentCell(0, 0);
    lstKeys_->verticalHeader()->setMinimumSectionSize(0);
    lstKeys_->horizontalHeader()->setHighlightSections(false);
    lstKeys_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    lstKeys_->resizeColumnsToContents();
    lstKeys_->resizeRowsToContents();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(lstKeys_);
    whole->addWidget(buttons);
    const int wide =
        lstKeys_->columnWidth(0) + lstKeys_->columnWidth(1) + 8 * fontMetrics().averageCharWidth();
    const int high = lstKeys_->verticalHeader()->length() + 6 * buttons->sizeHint().height();
    const QSize room = screen()->availableGeometry().size();
    resize(std::min(wide, room.width() * 9 / 10), std::min(high, room.height() * 9 / 10));
    // A meaning that is too long for its column goes on below.
    lstKeys_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    lstKeys_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    lstKeys_->setFocus();
}

}  // namespace zentaq
