// What the program's controls are drawn from: grounds with an edge, frames, ticks, arrows.
#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>
#include <QRectF>

class QFontMetrics;
class QStyleOption;

namespace zentaq {

/// The look's own colour where it is seen on this ground, else black or white: a ground may be the user's.
QColor seenOn(const QColor& color, const QColor& ground);

/// One line of the screen, in the painter's units.
qreal hairline(const QPainter& painter);

/// Corners are rounded by this much.
qreal rounding(const QFontMetrics& metrics);

/// A ground with a thin edge around it, inside the rectangle.
void drawFramed(QPainter& painter, const QRectF& area, qreal radius, const QColor& ground,
                const QColor& edge);
/// A frame of some width, inside the rectangle; what is inside of it stays.
void drawFrame(QPainter& painter, const QRectF& area, qreal radius, const QColor& color, qreal width);

void drawTick(QPainter& painter, const QRectF& box, const QColor& ink);
/// For a box that is neither ticked nor empty.
void drawBar(QPainter& painter, const QRectF& box, const QColor& ink);
/// A small triangle in the middle of an area, `width` wide.
void drawArrow(QPainter& painter, const QRectF& area, Qt::ArrowType to, qreal width, const QColor& ink);
/// Some points in a row along the longer side: what can be dragged.
void drawGrip(QPainter& painter, const QRectF& area, bool upright, const QColor& ink);

}  // namespace zentaq
