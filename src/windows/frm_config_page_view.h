// A page of frmConfig as a list: each member with its value, unit, range and name.
#pragma once

#include <QTreeWidget>
#include <vector>

#include "config/page_rows.h"

namespace zentaq {

class PageView : public QTreeWidget {
    Q_OBJECT

 public:
    explicit PageView(QWidget* parent);

    /// Replaces what is shown. `onTheFly`: members that act on the running engine take the highlight colour.
    void show(const std::vector<PageRow>& rows, bool onTheFly);

    /// The help key of the current row, for Fast Help.
    QString helpKey() const;

 private:
    void add(QTreeWidgetItem* item, const Field& row, bool onTheFly);
};

}  // namespace zentaq
