// How the look draws the parts of controls: fields, boxes, buttons, frames, panels.
#pragma once

#include <QStyle>

class QPainter;
class QRect;
class QStyleOption;
class QStyleOptionViewItem;
class QWidget;

namespace zentaq {

/// False where the toolkit's own drawing is good.
bool drawOwnPrimitive(QStyle::PrimitiveElement element, const QStyleOption& option, QPainter& painter,
                      const QWidget* widget);

/// Around a selected row of a list without the keyboard, whose ground alone is pale; open between its
/// columns.
void drawRestingEdge(const QStyleOptionViewItem& row, QPainter& painter);

/// Around a dialog: by night it would lie without an end on the window behind.
void drawBoxEdge(QPainter& painter, const QRect& area);

}  // namespace zentaq
