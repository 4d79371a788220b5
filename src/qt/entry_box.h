// A text box for one entry: it hands the entry over when the user presses Enter or leaves it, and
// brings the former text back on Esc and after a refusal.
#pragma once

#include <QLineEdit>
#include <functional>

namespace zentaq {

class EntryBox : public QLineEdit {
    Q_OBJECT

 public:
    /// Answers whether the text was taken. It may show a box, and has shown the text to return by then.
    using Accept = std::function<bool(const QString& text)>;

    EntryBox(Accept accept, QWidget* parent);

    /// What is in hand now. A text that is just being typed stays.
    void showText(const QString& text);
    /// The user has typed something that has not been handed over.
    bool pending() const { return text() != shown_; }
    /// Esc: the former text.
    void bringBack();
    /// Hands a typed text over. False: refused, the former text is back and the box has the focus.
    bool commit();

 Q_SIGNALS:
    /// The mouse was about to press another control when the text was refused.
    void clickRefused();

 protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

 private:
    Accept accept_;
    QString shown_;
    bool committing_ = false;  ///< a check may show a box, which takes the focus and gives it back
};

}  // namespace zentaq
