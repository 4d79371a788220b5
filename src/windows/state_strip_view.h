// The state strip in the status bar: a button for each part that has something to say. Where they have no
// room the least important ones fold into a menu.
#pragma once

#include <QMenu>
#include <QWidget>
#include <vector>

#include "app/state_strip.h"
#include "windows/strip_button.h"

namespace zentaq {

class StateStripView : public QWidget {
    Q_OBJECT

 public:
    explicit StateStripView(QWidget* parent);

    /// What is to be read, in the order of the parts. Texts are of the core: any of them may be hostile.
    void show(const std::vector<StripRow>& rows);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void pressed(const StripRow& row);
    /// What had the keyboard has nothing to say any more.
    void keyboardLeft();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void showRow(std::size_t place);
    void arrange();
    std::vector<bool> folded() const;
    void tellMore(const std::vector<bool>& folded);
    void fillMenu();
    int gap() const;

    std::vector<StripRow> rows_;
    std::vector<StripButton*> buttons_;  ///< one a part
    StripButton* more_ = nullptr;
    QMenu* menu_ = nullptr;
};

}  // namespace zentaq
