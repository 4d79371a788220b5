// The program's style for controls that stand still in a state: hovered and focused without a pointer or a
// keyboard.
#pragma once

#include "gallery/gallery.h"
#include "qt/outlined_style.h"

namespace zentaq {

class PosingStyle : public OutlinedStyle {
    Q_OBJECT

 public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

 protected:
    bool hasKeyboard(const QWidget& view) const override;
};

void pose(QWidget& widget, Pose pose);

}  // namespace zentaq
