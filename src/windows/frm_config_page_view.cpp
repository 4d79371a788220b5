#include "windows/frm_config_page_view.h"

#include <QApplication>
#include <QHeaderView>
#include <QSignalBlocker>
#include <algorithm>

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
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* item) {
        if (!item->text(memberColumn).isEmpty()) Q_EMIT memberAsked(item->text(memberColumn));
    });
}

void PageView::show(const std::vector<PageRow>& rows, bool onTheFly, bool again) {
    const RowPlace place = again ? placeInHand() : RowPlace();
    // Without news of a row that is in hand for a moment only: what is disabled by it would lose the
    // keyboard.
    const QSignalBlocker quiet(this);
    setUpdatesEnabled(false);
    clear();
    for (const PageRow& row : rows) {
        auto* item = new QTreeWidgetItem(this);
        add(item, row, onTheFly);
        for (const Field& element : row.elements) add(new QTreeWidgetItem(item), element, onTheFly);
        item->setExpanded(row.elements.size() <= openElements);
    }
    standOn(place);
    setUpdatesEnabled(true);
}

PageView::RowPlace PageView::placeInHand() const {
    QTreeWidgetItem* item = currentItem();
    if (item == nullptr) return {};
    QTreeWidgetItem* parent = item->parent();
    return {indexOfTopLevelItem(parent == nullptr ? item : parent),
            parent == nullptr ? RowPlace::noElement : parent->indexOfChild(item)};
}

void PageView::standOn(RowPlace place) {
    QTreeWidgetItem* row = topLevelItem(std::max(0, std::min(place.row, topLevelItemCount() - 1)));
    if (row == nullptr) return;
    QTreeWidgetItem* element = place.element < 0 ? nullptr : row->child(place.element);
    setCurrentItem(element == nullptr ? row : element);
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

// A long path leaves the columns behind it in sight.
void PageView::resizeEvent(QResizeEvent* event) {
    QTreeWidget::resizeEvent(event);
    header()->setMaximumSectionSize(std::max(width() * 2 / 5, header()->minimumSectionSize()));
}

QString PageView::helpKey() const {
    return currentItem() == nullptr ? QString() : currentItem()->data(captionColumn, helpKeyRole).toString();
}

}  // namespace zentaq
