#include "windows/log_hit_list.h"

#include <QHeaderView>
#include <algorithm>
#include <array>

#include "base/number_text.h"
#include "base/rounding.h"
#include "logs/plot_lines.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

enum HitColumn { fromColumn, toColumn, lengthColumn, hitColumns };
constexpr std::array<const char*, hitColumns> hitHeaders{"From", "To", "Seconds"};
constexpr std::size_t mostHitsShown = 1'000'000;

}  // namespace

void LogHitModel::refresh() {
    beginResetModel();
    rows_ = search_.valid() ? static_cast<int>(std::min(search_.hits().size(), mostHitsShown)) : 0;
    endResetModel();
}

int LogHitModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int LogHitModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : hitColumns;
}

QVariant LogHitModel::data(const QModelIndex& index, int role) const {
    // A log may have become another one since, until somebody says so.
    const auto place = static_cast<std::size_t>(index.row());
    if (!index.isValid() || !search_.valid() || place >= search_.hits().size()) return {};
    if (role == Qt::TextAlignmentRole) return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    const LogHit& hit = search_.hits()[place];
    const LogColumns& log = *search_.log();
    if (role == Qt::ToolTipRole) {
        return qString(many(static_cast<std::int64_t>(hit.last - hit.first) + 1, "row", "rows") +
                       " of the log, from row " + numberText(static_cast<int>(hit.first) + 1));
    }
    if (role != Qt::DisplayRole) return {};
    if (index.column() == lengthColumn) return qString(formatNumber(search_.secondsOf(hit), "0.00"));
    return qString(plotTimeText(log.seconds(index.column() == fromColumn ? hit.first : hit.last)));
}

QVariant LogHitModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= hitColumns)
        return {};
    return QString(hitHeaders[static_cast<std::size_t>(section)]);
}

LogHitList::LogHitList(const LogSearch& search, QWidget* parent)
    : QTreeView(parent), search_(search), model_(new LogHitModel(search, this)) {
    named(this, "lstHits", "What the search found");
    setModel(model_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setSectionResizeMode(QHeaderView::Stretch);
    header()->setMinimumSectionSize(0);
    const auto choose = [this](const QModelIndex& index) {
        const auto place = static_cast<std::size_t>(index.row());
        if (!search_.valid() || place >= search_.hits().size()) return;
        Q_EMIT timeChosen(search_.log()->seconds(search_.hits()[place].first));
    };
    connect(this, &QAbstractItemView::clicked, this, choose);
    connect(this, &QAbstractItemView::activated, this, choose);
}

}  // namespace zentaq
