// frmAbout: what the program is, and which calibration and unit it has in hand.
#pragma once

#include <QDialog>

#include "app/session.h"

namespace zentaq {

class FrmAbout : public QDialog {
    Q_OBJECT

 public:
    FrmAbout(Session& session, QWidget* parent);

 private:
    void showSystem();
};

}  // namespace zentaq
