#include "windows/frm_config_page_view.h"

#include <QApplication>
#include <QHeaderView>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

enum Column { captionColumn, valueColumn, unitColumn, rangeColumn, memberColumn };
constexpr int helpKeyRole = Qt::UserRole;

/// Members of up to this many elements are shown open.
constexpr std::size_t openElements = 20;

}  // namespace

PageView::PageView(QWidget* parent) : QTreeWidget(parent) {
    named(this, "lstPage", "Values of the page");
    setHeaderLabels({"Parameter", "Value", "Unit", "Range", "Member"});
    setAlternatingRowColors(true);
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(true);
}

void PageView::show(const std::vector<PageRow>& rows, bool onTheFly) {
    setUpdatesEnabled(false);
    clear();
    for (const PageRow& row : rows) {
        auto* item = new QTreeWidgetItem(this);
        add(item, row, onTheFly);
        for (const Field& element : row.elements) add(new QTreeWidgetItem(item), element, onTheFly);
        item->setExpanded(row.elements.size() <= openElements);
    }
    if (topLevelItemCount() > 0) setCurrentItem(topLevelItem(0));
    setUpdatesEnabled(true);
}

void PageView::add(QTreeWidgetItem* item, const Field& row, bool onTheFly) {
    item->setText(captionColumn, shownString(row.caption));
    item->setText(valueColumn, shownString(row.text));
    item->setText(unitColumn, shownString(row.unit));
    item->setText(rangeColumn, shownString(row.limits));
    item->setText(memberColumn, QString::fromStdString(row.member));
    // Texts of rows that are no member read from the left.
    if (!row.member.empty()) item->setTextAlignment(valueColumn, Qt::AlignRight | Qt::AlignVCenter);
    item->setData(captionColumn, helpKeyRole, QString::fromStdString(row.help));
    if (!onTheFly || !row.onTheFly) return;
    const LookColors colors = lookColors(appliedLook(*qApp));
    item->setBackground(valueColumn, colors.highlight);
    item->setForeground(valueColumn, colors.highlightText);
}

QString PageView::helpKey() const {
    return currentItem() == nullptr ? QString() : currentItem()->data(captionColumn, helpKeyRole).toString();
}

}  // namespace zentaq
