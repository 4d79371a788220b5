// frmAutoVE: starts and ends AutoVE on the table that it stands over.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include "app/auto_ve_tuning.h"

namespace zentaq {

class FrmAutoVE : public QDialog {
    Q_OBJECT

 public:
    FrmAutoVE(Session& session, AutoVeGrid& grid, QWidget* parent);

    AutoVeTuning& tuning() { return tuning_; }
    /// Shows what AutoVE tells now.
    void draw();

    void reject() override;

 protected:
    void closeEvent(QCloseEvent* event) override;

 private:
    void follow();
    void press(void (AutoVeTuning::*command)());

    AutoVeTuning tuning_;
    Session& session_;
    QLineEdit* txtAutoVEConst_ = nullptr;
    QPushButton* cmdLiveAutoVE_ = nullptr;
    QPushButton* cmdDataLogAutoVE_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QLabel* lblMessage_ = nullptr;
    QProgressBar* prgAutoVE_ = nullptr;
    QTimer* timer_ = nullptr;
};

}  // namespace zentaq
