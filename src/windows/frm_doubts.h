// What is in doubt before a program run: a list that Enter leaves to program, and Escape to go back.
#pragma once

#include <QDialog>
#include <vector>

#include "tables/calibration_check.h"

namespace zentaq {

class FrmDoubts : public QDialog {
    Q_OBJECT

 public:
    FrmDoubts(const std::vector<Doubt>& doubts, QWidget* parent);
};

}  // namespace zentaq
