// The program's icons, drawn from a few strokes each in the colour that day or night asks for.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>

namespace zentaq {

/// Names: the keys of the toolbar ("New" to "Shutdown"), the states of the link ("Connected", "Monitor",
/// "NoConnect", "Transfer", "Warning") and "Zentaq4". An unknown name gives an empty picture.
QIcon icon(const QString& name, const QColor& color);

/// One picture; `size` in device-independent pixels, drawn sharp at `ratio` device pixels each.
QPixmap iconPixmap(const QString& name, const QColor& color, int size, qreal ratio);

}  // namespace zentaq
