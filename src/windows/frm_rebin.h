// New axes for a table: the headers as two lists, and below them what becomes of the cells, before it is
// done.
#pragma once

#include "app/session.h"
#include "tables/rebin.h"

#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "windows/table_view.h"

namespace zentaq {

class FrmRebin : public QDialog {
    Q_OBJECT

 public:
    /// `sheet` must outlive it.
    FrmRebin(const TableSheet& sheet, DisplayMode mode, QWidget* parent);

    /// What the user has accepted.
    TableAxes wanted() const;

 private:
    QLineEdit* makeAxis(const QString& name, const QString& caption, const std::vector<float>& headers,
                        QFormLayout* form);
    void spread(QLineEdit& field);
    void preview();
    void say(const QString& text, bool good);

    const TableSheet& sheet_;
    QLineEdit* txtColumns_ = nullptr;
    QLineEdit* txtRows_ = nullptr;
    TableGridView* preview_ = nullptr;
    TableGrid cells_;
    QLabel* lblState_ = nullptr;
    QPushButton* cmdRebin_ = nullptr;
    DisplayMode mode_;
};

}  // namespace zentaq
