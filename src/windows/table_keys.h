// The list of a table's keys.
#pragma once

#include <QDialog>
#include <QTreeWidget>

namespace zentaq {

class FrmTableKeys : public QDialog {
    Q_OBJECT

 public:
    explicit FrmTableKeys(QWidget* parent);

 private:
    QTreeWidget* lstKeys_ = nullptr;
};

}  // namespace zentaq
