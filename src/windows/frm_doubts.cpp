#include "windows/frm_doubts.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

FrmDoubts::FrmDoubts(const std::vector<Doubt>& doubts, QWidget* parent) : QDialog(parent) {
    named(this, "frmDoubts", "Before programming");
    setWindowTitle("Program ORB");
    QLabel* what = plainLines("lblWhat", "What is shown", this);
    what->setText(
        "The unit takes all of this, and yet it may not be meant. Enter programs the unit, Escape goes "
        "back to the calibration.");
    auto* list = named(new QTableWidget(static_cast<int>(doubts.size()), 4, this), "lstDoubts",
                       "To look at before programming");
    list->setHorizontalHeaderLabels({"Member", "Value", "Why", "What to do"});
    list->verticalHeader()->hide();
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setTabKeyNavigation(false);
    list->setWordWrap(true);
    for (int row = 0; row < list->rowCount(); ++row) {
        const Doubt& one = doubts[static_cast<std::size_t>(row)];
        int column = 0;
        for (const std::string& text : {one.member, one.value, one.why, one.advice})
            list->setItem(row, column++, new QTableWidgetItem(shownString(text)));
    }
    list->horizontalHeader()->setStretchLastSection(true);
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* program = buttons->addButton("&Program", QDialogButtonBox::AcceptRole);
    named(program, "cmdProgram", "Program")->setDefault(true);
    QPushButton* back = buttons->addButton("&Back", QDialogButtonBox::RejectRole);
    named(back, "cmdBack", "Back");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(what);
    whole->addWidget(list, 1);
    whole->addWidget(buttons);
    const QSize room = screen()->availableGeometry().size();
    resize(
        std::min(room.width() * 9 / 10, fontMetrics().averageCharWidth() * 120),
        std::min(room.height() * 8 / 10, fontMetrics().height() * (10 + 2 * std::min(list->rowCount(), 10))));
    const int wide = width() - 4 * space(fontMetrics(), Space::Wide);
    constexpr int shares[] = {0, 22, 32};
    list->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    for (int column = 1; column < 3; ++column) list->setColumnWidth(column, wide * shares[column] / 100);
    list->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    program->setFocus();
}

}  // namespace zentaq
