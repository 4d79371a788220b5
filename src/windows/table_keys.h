// The list of a table's keys.
#pragma once

#include <QDialog>
#include <QTableWidget>

namespace zentaq {

class FrmTableKeys : public QDialog {
    Q_OBJECT

 public:
    explicit FrmTableKeys(QWidget* parent);

 private:
    QTableWidget* lstKeys_ = nullptr;
};

}  // namespace zentaq
