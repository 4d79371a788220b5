// frmFastHelp: the window behind F2. It shows one entry of table FastHelp beside the field, and hands the
// focus back to that field when it closes.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include "refdata/database.h"

namespace zentaq {

class FrmFastHelp : public QDialog {
    Q_OBJECT

 public:
    explicit FrmFastHelp(QWidget* parent);

    using QDialog::show;
    /// Shows an entry; an open window takes the new one. The control that has the focus now gets it back.
    void show(const HelpRow& row);

 Q_SIGNALS:
    /// The user wants to read on in the guide, at "chapter" or "chapter#anchor".
    void guideAsked(const QString& topic);

 protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

 private:
    void rememberField();
    void askGuide();

    QLabel* lblTopic_ = nullptr;
    QLabel* lblHelp_ = nullptr;
    QPushButton* cmdGuide_ = nullptr;
    QPushButton* cmdClose_ = nullptr;
    QPointer<QWidget> field_;
    QString topic_;
};

}  // namespace zentaq
