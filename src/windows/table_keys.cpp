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
    {"0 to 9, -", "Type a value for all selected cells; Enter takes it, Esc leaves the cells as they are"},
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
    lstKeys_ = named(new QTreeWidget(this), "lstKeys", "Keys and what they do");
    lstKeys_->setColumnCount(2);
    lstKeys_->setHeaderLabels({"Key", "What it does"});
    lstKeys_->setRootIsDecorated(false);
    lstKeys_->setUniformRowHeights(true);
    const auto add = [this](const QString& keys, const QString& meaning) {
        lstKeys_->addTopLevelItem(new QTreeWidgetItem({keys, meaning}));
    };
    for (const KeyRow& row : typing) add(row.keys, row.meaning);
    for (const EditCommand& command : editCommands()) {
        if (!command.shortcut.empty()) add(qString(command.shortcut), qString(command.meaning));
    }
    for (const KeyRow& row : moving) add(row.keys, row.meaning);
    for (const KeyRow& row : showing) add(row.keys, row.meaning);
    lstKeys_->setCurrentItem(lstKeys_->topLevelItem(0));
    lstKeys_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(lstKeys_);
    whole->addWidget(buttons);
    const int rows = lstKeys_->topLevelItemCount() + 2;
    for (int column = 0; column < 2; ++column) lstKeys_->resizeColumnToContents(column);
    const int wide =
        lstKeys_->columnWidth(0) + lstKeys_->columnWidth(1) + 8 * fontMetrics().averageCharWidth();
    const int high = rows * lstKeys_->sizeHintForRow(0) + 3 * buttons->sizeHint().height();
    const QSize room = screen()->availableGeometry().size();
    resize(std::min(wide, room.width() * 9 / 10), std::min(high, room.height() * 9 / 10));
    lstKeys_->setFocus();
}

}  // namespace zentaq
