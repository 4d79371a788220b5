// A page of frmConfig as a list: each member with its value, unit, range and name, line by line.
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
    /// `again`: it is the page that was shown, and the user stays on the row in hand.
    void show(const std::vector<PageRow>& rows, bool onTheFly, bool again);

    /// The help key of the current row, for Fast Help.
    QString helpKey() const;

 protected:
    void resizeEvent(QResizeEvent* event) override;

 Q_SIGNALS:
    /// Enter or a double click on a row of a member: "CHKTBL[3]".
    void memberAsked(const QString& member);

 private:
    /// Rows and elements count from 0.
    struct RowPlace {
        static constexpr int noElement = -1;
        int row = 0;
        int element = noElement;
    };
    RowPlace placeInHand() const;
    /// The nearest row where that one is gone.
    void standOn(RowPlace place);
    void add(QTreeWidgetItem* item, const Field& row, bool onTheFly);
};

}  // namespace zentaq
