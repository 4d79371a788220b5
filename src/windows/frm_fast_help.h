// frmFastHelp: the window behind F2. It shows one entry of table FastHelp beside the field, and hands the
// focus back to that field when it closes.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include "app/session.h"
#include "refdata/database.h"
#include "windows/form.h"

namespace zentaq {

class FrmFastHelp : public QDialog, public Form {
    Q_OBJECT

 public:
    FrmFastHelp(Session& session, QWidget* parent);

    /// The entry of the control in hand, else of the page in the workspace. A box tells where there is none.
    void openOn(const std::string& on, const std::string& title) override;

    using QDialog::show;
    /// Shows an entry; an open window takes the new one. The control that has the focus now gets it back.
    void show(const HelpRow& row);

 protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

 private:
    QString keyInHand() const;
    void rememberField();
    void askGuide();

    Session& session_;
    QLabel* lblTopic_ = nullptr;
    QLabel* lblHelp_ = nullptr;
    QPushButton* cmdGuide_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
    QPointer<QWidget> field_;
    QString topic_;
};

}  // namespace zentaq
