// How the look draws whole controls: lists that open, sliders, scroll bars, tabs, headers, frames of lists.
#pragma once

#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionComplex;
class QWidget;

namespace zentaq {

/// False where the toolkit's own drawing is good.
bool drawOwnControl(QStyle::ControlElement element, const QStyleOption& option, QPainter& painter,
                    const QWidget* widget);
/// `style` says where the parts of a control are.
bool drawOwnComplex(const QStyle& style, QStyle::ComplexControl control, const QStyleOptionComplex& option,
                    QPainter& painter, const QWidget* widget);

}  // namespace zentaq
