#include "qt/line_model.h"

namespace zentaq {

QVariant LineModel::data(const QModelIndex& index, int role) const {
    // What the width of the console cuts is told whole under the pointer.
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    const auto row = static_cast<std::size_t>(index.row());
    // The console may have been cleared since the last sync().
    if (!index.isValid() || row >= lines_.size()) return {};
    QString line = QString::fromStdString(lines_[row]);
    while (role == Qt::ToolTipRole && line.endsWith(u' ')) line.chop(1);
    return line;
}

bool LineModel::sync() {
    const int count = static_cast<int>(lines_.size());
    if (count < shown_) {
        beginResetModel();
        shown_ = count;
        endResetModel();
        return true;
    }
    // The shown lines may have changed: a result was added to the last one, or the list was cleared and
    // filled again beyond its former length.
    if (shown_ > 0) Q_EMIT dataChanged(index(0), index(shown_ - 1), {Qt::DisplayRole});
    if (count == shown_) return false;
    beginInsertRows({}, shown_, count - 1);
    shown_ = count;
    endInsertRows();
    return true;
}

}  // namespace zentaq
