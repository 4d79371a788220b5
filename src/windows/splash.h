// frmSplash: the status of the start sequence, one text at a time.
#pragma once

#include <QLabel>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

#include "windows/form.h"

namespace zentaq {

class FrmSplash : public QWidget, public Form {
    Q_OBJECT

 public:
    /// How long each text stays, in milliseconds of a live event loop; less where nobody looks.
    static inline int holdMs = 80;
    /// All texts of a start together hold it up no longer than this.
    static constexpr int budgetMs = 1500;

    /// `goes` tells whether it hides again behind a text.
    FrmSplash(const QString& version, QWidget* over, std::function<bool()> goes = {});

    /// On a text of the start.
    void openOn(const std::string& text, const std::string& title) override;

    /// Shows the text behind four blanks on top of everything and holds it; user events run meanwhile.
    void status(std::string_view text);

 private:
    void centre();
    void hold();

    QWidget* over_;
    std::function<bool()> goes_;
    int spentMs_ = 0;
    QLabel* lblOperation_;
};

}  // namespace zentaq
