// The row of a log that is on show, channel by channel: caption, value, unit.
#pragma once

#include <QTableWidget>
#include <vector>

#include "app/flight_record.h"

namespace zentaq {

class LogValues : public QTableWidget {
    Q_OBJECT

 public:
    explicit LogValues(QWidget* parent);

    /// What is shown already costs nothing.
    void showRow(const std::vector<ShownChannel>& rows);
    QSize sizeHint() const override;

 private:
    std::vector<ShownChannel> shown_;
};

}  // namespace zentaq
