// The program's icons: one drawing each in data/icons, which take the colour that day or night asks for.
// docs/look.md says how one is added.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace zentaq {

/// Follows day and night by itself, is muted where it is disabled, and sharp on every screen. Names are those
/// of the files ("Save"). An unknown name gives an empty icon.
QIcon icon(const QString& name);
/// The same in a colour of its own.
QIcon icon(const QString& name, const QColor& color);

/// One picture; `size` in device-independent pixels, drawn sharp at `ratio` device pixels each.
QPixmap iconPixmap(const QString& name, const QColor& color, int size, qreal ratio);

QStringList iconNames();

}  // namespace zentaq
