// A list model over the lines of a console. It holds no copy: after each change of the console, sync() tells
// the view only what is new, so that a hundred thousand lines cost no more than ten.
#pragma once

#include <QAbstractListModel>
#include <deque>
#include <string>

namespace zentaq {

class LineModel : public QAbstractListModel {
    Q_OBJECT

 public:
    explicit LineModel(const std::deque<std::string>& lines, QObject* parent = nullptr)
        : QAbstractListModel(parent), lines_(lines) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : shown_; }
    QVariant data(const QModelIndex& index, int role) const override;

    /// Brings the model up to date. True when lines were added or taken away.
    bool sync();

 private:
    const std::deque<std::string>& lines_;
    int shown_ = 0;
};

}  // namespace zentaq
