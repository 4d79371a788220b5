// A part of the state strip: a word on a ground that says how urgent it is. A button, so that keyboard, mouse
// and screen reader reach it.
#pragma once

#include <QPushButton>

#include "app/state_strip.h"
#include "qt/look.h"

namespace zentaq {

class StripButton : public QPushButton {
    Q_OBJECT

 public:
    /// `elides`: a long text is cut in its middle where there is no room for it.
    StripButton(const QString& name, bool elides, QWidget* parent);

    /// What it says; the same text and tone again cost nothing.
    void say(const QString& text, const QString& meaning, StripTone tone);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {leastWidth(), sizeHint().height()}; }
    /// The least width that it is of use with.
    int leastWidth() const;
    int widthOf(const QString& text) const;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    bool elides_;
    StripTone tone_ = StripTone::Plain;
};

}  // namespace zentaq
