#include "windows/log_values.h"

#include <QHeaderView>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

enum ValueColumn { captionColumn, valueColumn, unitColumn, valueColumns };
constexpr int captionLetters = 26;

}  // namespace

LogValues::LogValues(QWidget* parent) : QTableWidget(0, valueColumns, parent) {
    named(this, "lstValues", "Values of the row on show");
    setHorizontalHeaderLabels({"Channel", "Value", "Unit"});
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(captionColumn, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(valueColumn, QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(unitColumn, QHeaderView::ResizeToContents);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setAlternatingRowColors(true);
    setShowGrid(false);
}

QSize LogValues::sizeHint() const {
    return {fontMetrics().averageCharWidth() * captionLetters * 2, QTableWidget::sizeHint().height()};
}

void LogValues::showRow(const std::vector<ShownChannel>& rows) {
    if (rows.size() != shown_.size()) {
        setRowCount(static_cast<int>(rows.size()));
        for (int row = 0; row < rowCount(); ++row) {
            for (int column = 0; column < valueColumns; ++column) {
                auto* item = new QTableWidgetItem;
                if (column == valueColumn) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
                setItem(row, column, item);
            }
        }
        shown_.assign(rows.size(), {});
    }
    for (int row = 0; row < rowCount(); ++row) {
        const ShownChannel& now = rows[static_cast<std::size_t>(row)];
        ShownChannel& before = shown_[static_cast<std::size_t>(row)];
        if (now.caption != before.caption) item(row, captionColumn)->setText(qString(now.caption));
        if (now.value != before.value) item(row, valueColumn)->setText(qString(now.value));
        if (now.unit != before.unit) item(row, unitColumn)->setText(qString(now.unit));
        before = now;
    }
}

}  // namespace zentaq
