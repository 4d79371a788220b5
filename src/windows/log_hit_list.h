// The hits of a search in a log, a line each: from, to, how long.
#pragma once

#include <QAbstractTableModel>
#include <QTreeView>

#include "logs/log_search.h"

namespace zentaq {

/// Over the hits of a search, which it holds no copy of.
class LogHitModel : public QAbstractTableModel {
    Q_OBJECT

 public:
    LogHitModel(const LogSearch& search, QObject* parent) : QAbstractTableModel(parent), search_(search) {}

    /// The hits are other ones.
    void refresh();
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
    const LogSearch& search_;
    int rows_ = 0;
};

class LogHitList : public QTreeView {
    Q_OBJECT

 public:
    LogHitList(const LogSearch& search, QWidget* parent);

    void refresh() { model_->refresh(); }

 Q_SIGNALS:
    void timeChosen(double seconds);

 private:
    const LogSearch& search_;
    LogHitModel* model_;
};

}  // namespace zentaq
