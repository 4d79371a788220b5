// frmDetailInfo: the live values as numbers, in the place of the dashboard.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <vector>

#include "live/detail_info.h"
#include "qt/page_area.h"
#include "qt/value_label.h"

namespace zentaq {

class FrmDetailInfo : public QWidget {
    Q_OBJECT

 public:
    explicit FrmDetailInfo(QWidget* parent);

    void showForm();
    void hideForm();
    /// What stands already costs nothing.
    void updateDetailInfoValues(const std::vector<DetailCell>& cells);
    /// The values shown are those of now, or of a log; else they are dimmed.
    void setLive(bool live);

 Q_SIGNALS:
    /// btnShowDash, or Escape.
    void dashAsked();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    struct Cell {
        QWidget* box = nullptr;
        QLabel* caption = nullptr;
        ValueLabel* value = nullptr;
        std::string text;
    };
    void makeCells(const std::vector<DetailCell>& cells);
    void arrange();
    void colour();

    QPushButton* btnShowDash_ = nullptr;
    PageArea* area_ = nullptr;
    QWidget* page_ = nullptr;
    std::vector<Cell> cells_;
    int columns_ = 0;
    bool live_ = true;
};

}  // namespace zentaq
